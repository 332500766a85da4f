#import <Talvo/NSCalendar+Day.h>

#include "core/bindings/DayOfMonth.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// Year, month and day: 4 + 8 + 16.
static const NSUInteger TVYearMonthDayUnits =
    NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit;
static_assert(TVYearMonthDayUnits == 28, "calendar unit bits");

// 24 hours 59 minutes 59 seconds.
static const NSTimeInterval TVEndOfDayOffset = 89999;

@implementation NSCalendar (day)

- (NSDate *)beginningOfDayAtDate:(NSDate *)date {
  if (date == nil) {
    return nil;
  }
  NSDateComponents *components = [self components:TVYearMonthDayUnits fromDate:date];
  return [self dateFromComponents:components];
}

- (NSDate *)endOfDayAtDate:(NSDate *)date {
  NSDate *beginning = [self beginningOfDayAtDate:date];
  if (beginning == nil) {
    return nil;
  }
  return [NSDate dateWithTimeInterval:TVEndOfDayOffset sinceDate:beginning];
}

- (NSDate *)dateByAddingNumberOfDay:(int64_t)numberOfDay toDate:(NSDate *)date {
  if (date == nil) {
    return nil;
  }
  // The day wraps within its month. Not every platform honours the wrap
  // option, so the wrapped day is worked out here and the platform is asked
  // for a move that stays inside the month, which it makes the same way
  // with or without the option.
  NSInteger day = [[self components:NSDayCalendarUnit fromDate:date] day];
  NSRange daysInMonth = [self rangeOfUnit:NSDayCalendarUnit inUnit:NSMonthCalendarUnit forDate:date];
  int64_t target =
      talvo::bindings::WrappedDayOfMonth(day, (int64_t)daysInMonth.length, numberOfDay);
  NSDateComponents *move = [[[NSDateComponents alloc] init] autorelease];
  [move setDay:(NSInteger)(target - day)];
  return [self dateByAddingComponents:move toDate:date options:NSWrapCalendarComponents];
}

@end
