#import <Talvo/NSCalendar+Day.h>

#include <math.h>

#include "core/bindings/DayOfMonth.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// Year, month and day: 4 + 8 + 16.
static const NSUInteger TVYearMonthDayUnits =
    NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit;
static_assert(TVYearMonthDayUnits == 28, "calendar unit bits");

static const NSUInteger TVDateAndTimeUnits = NSEraCalendarUnit | TVYearMonthDayUnits |
                                            NSHourCalendarUnit | NSMinuteCalendarUnit |
                                            NSSecondCalendarUnit;

// 24 hours 59 minutes 59 seconds.
static const NSTimeInterval TVEndOfDayOffset = 89999;

// The number of days in the month of `components`: the last day that the
// calendar keeps in that month. (GNUstep's rangeOfUnit:inUnit:forDate:
// answers empty or wrong ranges, so the calendar is asked for dates.)
static NSInteger TVDaysInMonth(NSCalendar *calendar, NSDateComponents *components) {
  NSDateComponents *probe = [[NSDateComponents new] autorelease];
  [probe setEra:[components era]];
  [probe setYear:[components year]];
  [probe setMonth:[components month]];
  NSInteger longest = (NSInteger)NSMaxRange([calendar maximumRangeOfUnit:NSDayCalendarUnit]) - 1;
  for (NSInteger day = longest; day > 1; day--) {
    [probe setDay:day];
    NSDate *candidate = [calendar dateFromComponents:probe];
    if (candidate != nil &&
        [[calendar components:NSMonthCalendarUnit fromDate:candidate] month] == [components month]) {
      return day;
    }
  }
  return 1;
}

// `date` moved by `numberOfDay` days within its month.
static NSDate *TVDateByAddingDays(NSCalendar *calendar, int64_t numberOfDay, NSDate *date) {
  // The day wraps within its month: month, year and time of day stay. The
  // wrap option of dateByAddingComponents:toDate:options: does this on
  // macOS, but GNUstep adds nothing at all when asked through it, so the
  // wrapped day is worked out here and the date rebuilt from components.
  NSDateComponents *components = [calendar components:TVDateAndTimeUnits fromDate:date];
  NSInteger daysInMonth = TVDaysInMonth(calendar, components);
  [components setDay:(NSInteger)talvo::bindings::WrappedDayOfMonth([components day], daysInMonth,
                                                                   numberOfDay)];
  NSDate *moved = [calendar dateFromComponents:components];
  // Keep the sub-second part, which the components do not carry.
  NSTimeInterval fraction = [date timeIntervalSinceReferenceDate] -
                            floor([date timeIntervalSinceReferenceDate]);
  return [moved dateByAddingTimeInterval:fraction];
}

// A date the calendar can place in a day: an NSDate at a finite time.
static BOOL TVIsCalendarDate(id date) {
  return [date isKindOfClass:[NSDate class]] &&
         isfinite([(NSDate *)date timeIntervalSinceReferenceDate]);
}

@implementation NSCalendar (day)

- (NSDate *)beginningOfDayAtDate:(NSDate *)date {
  if (!TVIsCalendarDate(date)) {
    return nil;
  }
  @try {
    NSDateComponents *components = [self components:TVYearMonthDayUnits fromDate:date];
    return [self dateFromComponents:components];
  } @catch (NSException *exception) {
    // Dates far outside the calendar's range.
    return nil;
  }
}

- (NSDate *)endOfDayAtDate:(NSDate *)date {
  NSDate *beginning = [self beginningOfDayAtDate:date];
  if (beginning == nil) {
    return nil;
  }
  return [NSDate dateWithTimeInterval:TVEndOfDayOffset sinceDate:beginning];
}

- (NSDate *)dateByAddingNumberOfDay:(int64_t)numberOfDay toDate:(NSDate *)date {
  if (!TVIsCalendarDate(date)) {
    return nil;
  }
  @try {
    return TVDateByAddingDays(self, numberOfDay, date);
  } @catch (NSException *exception) {
    // Dates far outside the calendar's range.
    return nil;
  }
}

@end
