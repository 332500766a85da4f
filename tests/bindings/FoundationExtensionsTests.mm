// Trimming, query strings, day arithmetic and undo without redo.

#import <Talvo/Talvo.h>

#import "support/TestSupport.h"

// A date at any time at all, as Apple's NSDate allows (+inf included).

namespace {

class FoundationExtensions : public PooledTest {
 protected:
  NSCalendar *Calendar() {
    NSCalendar *calendar =
        [[[NSCalendar alloc] initWithCalendarIdentifier:NSGregorianCalendar] autorelease];
    [calendar setTimeZone:[NSTimeZone timeZoneWithName:@"Europe/Paris"]];
    return calendar;
  }
  NSDate *Date(NSCalendar *calendar, int year, int month, int day, int hour = 0, int minute = 0,
               int second = 0) {
    NSDateComponents *components = [[NSDateComponents new] autorelease];
    [components setYear:year];
    [components setMonth:month];
    [components setDay:day];
    [components setHour:hour];
    [components setMinute:minute];
    [components setSecond:second];
    return [calendar dateFromComponents:components];
  }
};

TEST_F(FoundationExtensions, TrimmingWhitespaceKeepsInnerCharactersAndTheirAttributes) {
  NSMutableAttributedString *text =
      [[[NSMutableAttributedString alloc] initWithString:@"  ab c \n"] autorelease];
  [text addAttribute:@"Mark" value:@"first" range:NSMakeRange(2, 1)];
  [text addAttribute:@"Mark" value:@"last" range:NSMakeRange(5, 1)];
  NSAttributedString *trimmed = [text attributedStringByTrimmingWhitespace];
  EXPECT_NSEQ([trimmed string], @"ab c");
  EXPECT_FALSE([trimmed isKindOfClass:[NSMutableAttributedString class]]);
  EXPECT_NSEQ([trimmed attribute:@"Mark" atIndex:0 effectiveRange:NULL], @"first");
  EXPECT_NSEQ([trimmed attribute:@"Mark" atIndex:3 effectiveRange:NULL], @"last");
  EXPECT_EQ([trimmed attribute:@"Mark" atIndex:1 effectiveRange:NULL], nil);
}

TEST_F(FoundationExtensions, TrimmingOnlySetCharactersGivesEmptyAndANilSetTrimsNothing) {
  NSAttributedString *blank = [[[NSAttributedString alloc] initWithString:@" \t\n "] autorelease];
  EXPECT_EQ([[blank attributedStringByTrimmingWhitespace] length], 0u);
  NSAttributedString *xs = [[[NSAttributedString alloc] initWithString:@"xxaxx"] autorelease];
  NSCharacterSet *x = [NSCharacterSet characterSetWithCharactersInString:@"x"];
  EXPECT_NSEQ([[xs attributedStringByTrimmingCharactersInSet:x] string], @"a");
  EXPECT_NSEQ([[xs attributedStringByTrimmingCharactersInSet:nil] string], @"xxaxx");
}

TEST_F(FoundationExtensions, HttpStringJoinsPairsInEnumerationOrderUnescaped) {
  EXPECT_NSEQ([@{@"a" : @1} httpString], @"a=1");
  EXPECT_NSEQ([@{} httpString], @"");
  NSDictionary *two = @{@"x" : @1, @"y" : @2};
  NSMutableArray *expected = [NSMutableArray array];
  for (id key in [two keyEnumerator]) {
    [expected addObject:[NSString stringWithFormat:@"%@=%@", key, [two objectForKey:key]]];
  }
  EXPECT_NSEQ([two httpString], [expected componentsJoinedByString:@"&"]);
  EXPECT_NSEQ([@{@"q" : @"a b&c"} httpString], @"q=a b&c");
  EXPECT_TRUE([[@{} httpString] isKindOfClass:[NSMutableString class]]);
}

TEST_F(FoundationExtensions, DayBoundariesInTheCalendarsTimeZone) {
  NSCalendar *calendar = Calendar();
  NSDate *afternoon = Date(calendar, 2026, 3, 10, 15, 42, 7);
  EXPECT_NSEQ([calendar beginningOfDayAtDate:afternoon], Date(calendar, 2026, 3, 10));
  // 89999 seconds: 00:59:59 of the next day, not 23:59:59.
  EXPECT_NSEQ([calendar endOfDayAtDate:afternoon], Date(calendar, 2026, 3, 11, 0, 59, 59));
  EXPECT_EQ([calendar beginningOfDayAtDate:nil], nil);
  EXPECT_EQ([calendar endOfDayAtDate:nil], nil);
}

// Dates no day holds, and arguments that are not dates: nil, never an
// exception.
TEST_F(FoundationExtensions, DayMethodsAnswerNilForDatesNoDayHolds) {
  NSCalendar *calendar = Calendar();
  for (double interval : {(double)INFINITY, -(double)INFINITY, (double)NAN}) {
    @try {
      // GNUstep's own dates refuse such times; Apple's hold them.
      TVFixedDate *date = [[[TVFixedDate alloc] initWithTimeIntervalSinceReferenceDate:interval] autorelease];
      EXPECT_EQ([calendar beginningOfDayAtDate:date], nil) << interval;
      EXPECT_EQ([calendar endOfDayAtDate:date], nil) << interval;
      EXPECT_EQ([calendar dateByAddingNumberOfDay:3 toDate:date], nil) << interval;
    } @catch (NSException *exception) {
      ADD_FAILURE() << interval << " raised " << [[exception reason] UTF8String];
    }
  }
  for (id notADate : {(id)@"2026-03-10", (id)@42, (id)[NSNull null]}) {
    @try {
      EXPECT_EQ([calendar beginningOfDayAtDate:notADate], nil);
      EXPECT_EQ([calendar endOfDayAtDate:notADate], nil);
      EXPECT_EQ([calendar dateByAddingNumberOfDay:1 toDate:notADate], nil);
    } @catch (NSException *exception) {
      ADD_FAILURE() << "raised " << [[exception reason] UTF8String];
    }
  }
}

// Trimming with an argument that is not a character set trims nothing.
TEST_F(FoundationExtensions, TrimmingWithANonSetTrimsNothing) {
  NSAttributedString *padded = [[[NSAttributedString alloc] initWithString:@"  x  "] autorelease];
  for (id notASet : {(id)@" ", (id)@32, (id)[NSNull null]}) {
    @try {
      NSAttributedString *trimmed = [padded attributedStringByTrimmingCharactersInSet:notASet];
      EXPECT_NSEQ([trimmed string], @"  x  ");
    } @catch (NSException *exception) {
      ADD_FAILURE() << "raised " << [[exception reason] UTF8String];
    }
  }
}

TEST_F(FoundationExtensions, AddingDaysWrapsWithinTheMonthAndKeepsTheTime) {
  NSCalendar *calendar = Calendar();
  EXPECT_NSEQ([calendar dateByAddingNumberOfDay:1 toDate:Date(calendar, 2026, 1, 31, 9)],
              Date(calendar, 2026, 1, 1, 9));
  EXPECT_NSEQ([calendar dateByAddingNumberOfDay:-1 toDate:Date(calendar, 2026, 2, 1, 9)],
              Date(calendar, 2026, 2, 28, 9));
  EXPECT_NSEQ([calendar dateByAddingNumberOfDay:3 toDate:Date(calendar, 2026, 4, 10, 18, 30)],
              Date(calendar, 2026, 4, 13, 18, 30));
  EXPECT_NSEQ([calendar dateByAddingNumberOfDay:-40 toDate:Date(calendar, 2024, 2, 10)],
              Date(calendar, 2024, 2, 28));  // leap February: 29 days
  EXPECT_EQ([calendar dateByAddingNumberOfDay:1 toDate:nil], nil);
}

}  // namespace

@interface TVUndoTarget : NSObject {
  NSInteger _value;
  NSUndoManager *_undoManager;
}
@property(nonatomic, assign) NSInteger value;
- (instancetype)initWithUndoManager:(NSUndoManager *)undoManager;
@end

@implementation TVUndoTarget
@synthesize value = _value;
- (instancetype)initWithUndoManager:(NSUndoManager *)undoManager {
  self = [super init];
  if (self != nil) {
    _undoManager = [undoManager retain];
  }
  return self;
}
- (void)dealloc {
  [_undoManager release];
  [super dealloc];
}
- (void)setValue:(NSInteger)value {
  [[_undoManager prepareWithInvocationTarget:self] setValue:_value];
  _value = value;
}
@end

namespace {

TEST_F(FoundationExtensions, UndoWithoutRedoUndoesAndLeavesNothingToRedo) {
  Owned<NSUndoManager> manager([NSUndoManager new]);
  [manager.get() setGroupsByEvent:NO];
  Owned<TVUndoTarget> target([[TVUndoTarget alloc] initWithUndoManager:manager]);
  [manager.get() beginUndoGrouping];
  [target.get() setValue:1];
  [manager.get() endUndoGrouping];
  [manager.get() beginUndoGrouping];
  [target.get() setValue:2];
  [manager.get() endUndoGrouping];

  [manager.get() undoWithoutRedo];
  EXPECT_EQ([target.get() value], 1);
  EXPECT_FALSE([manager.get() canRedo]);
  // The placeholder goes on the next pass of the run loop; the earlier
  // change can still be undone afterwards.
  RunMainLoopUntil([] { return false; }, 0.1);
  EXPECT_TRUE([manager.get() canUndo]);
  [manager.get() undo];
  EXPECT_EQ([target.get() value], 0);
  [manager.get() removeAllActions];
}

TEST_F(FoundationExtensions, UndoWithoutRedoWithNothingToUndoDoesNothing) {
  Owned<NSUndoManager> manager([NSUndoManager new]);
  [manager.get() undoWithoutRedo];
  EXPECT_FALSE([manager.get() canUndo]);
  EXPECT_FALSE([manager.get() canRedo]);
}

}  // namespace
