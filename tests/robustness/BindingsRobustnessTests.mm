// Bad input to the bindings subsystem: each public method of each header
// with nil, objects of the wrong class, NaN, infinities and huge numbers.

#import <Talvo/Talvo.h>

#import "robustness/RobustnessSupport.h"
#import "support/TestSupport.h"

@interface TVRobustModel : NSObject {
  NSInteger _count;
}
@property(nonatomic, assign) NSInteger count;
@end

@implementation TVRobustModel
@synthesize count = _count;
@end

namespace {

class BindingsRobustness : public PooledTest {};

TEST_F(BindingsRobustness, ObservationCenter) {
  Owned<VXObservationCenter> center([VXObservationCenter new]);
  Owned<TVRobustModel> model([TVRobustModel new]);
  VXObservationChangeHandler handler = ^(NSDictionary *change) {
  };
  BOOL registered = YES;
  EXPECT_CALM(registered = [center.get() observeKeyPath:bad::WrongObject() ofObject:model options:0 changeHandler:handler]);
  EXPECT_FALSE(registered);
  EXPECT_CALM(registered = [center.get() observeKeyPath:@"no.such.key" ofObject:model options:0 changeHandler:handler]);
  EXPECT_CALM(registered = [center.get() observeKeyPath:@"" ofObject:model options:0 changeHandler:handler]);
  EXPECT_CALM(registered = [center.get() observeKeyPath:@"count" ofObject:model options:~0u changeHandler:handler]);
  EXPECT_CALM(registered = [center.get() observeKeyPath:@"count" ofObject:[NSNull null] options:0 changeHandler:handler]);
  EXPECT_CALM(registered = [center.get() observeKeyPath:@"count" ofObject:@"a string" options:0 changeHandler:handler]);
  EXPECT_CALM([center.get() unObserveKeyPath:bad::WrongObject() ofObject:model]);
  EXPECT_CALM([center.get() unObserveKeyPath:nil ofObject:model]);
  EXPECT_CALM([center.get() unObserveKeyPath:nil ofObject:[NSNull null]]);
  EXPECT_CALM([center.get() unObserveKeyPath:nil ofObject:@"a string"]);
  EXPECT_CALM([center.get() observeValueForKeyPath:nil ofObject:nil change:nil context:NULL]);
  EXPECT_CALM([center.get() observeValueForKeyPath:bad::WrongObject() ofObject:bad::WrongObject()
                                            change:(id)@"x" context:(void *)1]);
}

TEST_F(BindingsRobustness, TwoWayBinding) {
  Owned<TVRobustModel> model([TVRobustModel new]);
  EXPECT_CALM([model.get() notifyBindedObjectChangeForKeyPath:bad::WrongObject()]);
  EXPECT_CALM([model.get() notifyBindedObjectChangeForKeyPath:@""]);
  EXPECT_CALM([model.get() notifyBindedObjectChangeForKeyPath:@"count"]);
  EXPECT_CALM([[NSNull null] notifyBindedObjectChangeForKeyPath:@"count"]);
}

TEST_F(BindingsRobustness, Localizer) {
  Owned<VXLocalizer> localizer([VXLocalizer new]);
  id value = nil;
  EXPECT_CALM(value = [localizer.get() valueForKey:NullOf<NSString *>()]);
  EXPECT_CALM(value = [localizer.get() valueForKey:bad::WrongObject()]);
  EXPECT_CALM(value = [localizer.get() valueForKey:@""]);
  EXPECT_CALM([localizer.get() setFilename:bad::WrongObject()]);
  EXPECT_CALM([localizer.get() awakeFromNib]);
  Owned<TVRobustModel> observer([TVRobustModel new]);
  EXPECT_CALM([localizer.get() addObserver:observer forKeyPath:bad::WrongObject() options:0 context:NULL]);
  EXPECT_CALM([localizer.get() addObserver:NullOf<NSObject *>() forKeyPath:@"x" options:0 context:NULL]);
  EXPECT_CALM([localizer.get() removeObserver:observer forKeyPath:@"never" context:NULL]);
  EXPECT_CALM([localizer.get() removeObserver:NullOf<NSObject *>() forKeyPath:NullOf<NSString *>()]);
}

// The nine transformers, forwards and back, with values of every wrong kind.
TEST_F(BindingsRobustness, ValueTransformers) {
  NSArray *classes = @[
    [VXCollectionIsEmpty class], [VXCollectionNotEmpty class],
    [VXCollectionContainsMutipleElements class], [VXValidIndexValueTransformer class],
    [VXIndexSetIndexValueTransformer class], [VXOrderedSetArrayValueTransformer class],
    [VXObjectToArrayValueTransformer class], [VXSetArrayValueTransformer class],
    [VXStringToAttributedString class]
  ];
  NSArray *values = @[
    [NSNull null], @"text", @(NAN), @(INFINITY), @(-1), @(NSNotFound), @(1e300), @[], @[ @1, @2 ],
    [NSSet setWithObject:@1], [NSIndexSet indexSetWithIndex:3], [NSIndexSet indexSet],
    [NSOrderedSet orderedSetWithObject:@1], @{@"k" : @"v"}, [[NSObject new] autorelease],
    [[[NSAttributedString alloc] initWithString:@"a"] autorelease], [NSData data]
  ];
  for (Class cls in classes) {
    NSValueTransformer *transformer = [[cls new] autorelease];
    const char *name = class_getName(cls);
    EXPECT_CALM([transformer transformedValue:nil]) << name;
    EXPECT_CALM([transformer reverseTransformedValue:nil]) << name;
    for (id value in values) {
      EXPECT_CALM([transformer transformedValue:value]) << name;
      EXPECT_CALM([transformer reverseTransformedValue:value]) << name;
    }
  }
}

TEST_F(BindingsRobustness, CollectionIndexes) {
  NSArray *array = @[ @1, @2, @3 ];
  NSOrderedSet *ordered = [NSOrderedSet orderedSetWithArray:array];
  NSSet *set = [NSSet setWithArray:array];
  NSArray *wrong = @[ (id)@"string", @5, [NSNull null], @{}, [NSIndexSet indexSet] ];
  id result = nil;
  for (id argument in wrong) {
    EXPECT_CALM(result = [array indexesOfObjects:argument]);
    EXPECT_CALM(result = [array indexesOfObjectsNotInArray:argument]);
    EXPECT_CALM(result = [array arrayByRemovingObjectsFromArray:argument]);
    EXPECT_CALM(result = [ordered indexesOfObjects:argument]);
    EXPECT_CALM(result = [ordered indexesOfObjectsInOrderedSet:argument]);
    EXPECT_CALM(result = [ordered indexesOfObjectsNotInOrderedSet:argument]);
    EXPECT_CALM(result = [ordered arrayByRemovingObjectsFromOrderedSet:argument]);
    EXPECT_CALM(result = [set objectsInOrderedSet:argument]);
    EXPECT_CALM(result = [set objectsNotInOrderedSet:argument]);
  }
  EXPECT_CALM(result = [array indexesOfObjects:nil]);
  EXPECT_CALM(result = [ordered indexesOfObjectsInOrderedSet:nil]);
  EXPECT_CALM(result = [set objectsNotInOrderedSet:nil]);
  EXPECT_CALM(result = [@[] indexesOfObjectsNotInArray:array]);
}

TEST_F(BindingsRobustness, AttributedStringTrim) {
  NSAttributedString *text = [[[NSAttributedString alloc] initWithString:@" \n x \t"] autorelease];
  NSAttributedString *empty = [[[NSAttributedString alloc] initWithString:@""] autorelease];
  NSAttributedString *result = nil;
  for (id set : {(id)nil, bad::WrongObject(), bad::WrongString(), (id)[NSNull null],
                 (id)[NSCharacterSet illegalCharacterSet], (id)[[NSCharacterSet illegalCharacterSet] invertedSet]}) {
    EXPECT_CALM(result = [text attributedStringByTrimmingCharactersInSet:set]);
    EXPECT_NE(result, nil);
    EXPECT_CALM(result = [empty attributedStringByTrimmingCharactersInSet:set]);
  }
  EXPECT_CALM(result = [empty attributedStringByTrimmingWhitespace]);
}

TEST_F(BindingsRobustness, CalendarDays) {
  NSCalendar *calendar = [[[NSCalendar alloc] initWithCalendarIdentifier:NSGregorianCalendar] autorelease];
  NSMutableArray *dates = [NSMutableArray arrayWithObjects:[NSDate distantPast], [NSDate distantFuture], nil];
  for (double interval : bad::kValues) {
    [dates addObject:[[[TVFixedDate alloc] initWithTimeIntervalSinceReferenceDate:interval] autorelease]];
  }
  [dates addObject:@"2026-01-01"];
  [dates addObject:@12];
  [dates addObject:[NSNull null]];
  NSDate *result = nil;
  for (id date in dates) {
    EXPECT_CALM(result = [calendar beginningOfDayAtDate:date]);
    EXPECT_CALM(result = [calendar endOfDayAtDate:date]);
    for (int64_t days : {(int64_t)0, (int64_t)1, (int64_t)-1, INT64_MAX, INT64_MIN}) {
      EXPECT_CALM(result = [calendar dateByAddingNumberOfDay:days toDate:date]);
    }
  }
  for (double interval : {(double)NAN, (double)INFINITY, -(double)INFINITY}) {
    TVFixedDate *date = [[[TVFixedDate alloc] initWithTimeIntervalSinceReferenceDate:interval] autorelease];
    EXPECT_EQ([calendar beginningOfDayAtDate:date], nil);
    EXPECT_EQ([calendar dateByAddingNumberOfDay:1 toDate:date], nil);
  }
}

TEST_F(BindingsRobustness, HttpString) {
  NSMutableString *result = nil;
  EXPECT_CALM(result = [@{} httpString]);
  EXPECT_CALM(result = [(@{@1 : [NSNull null], @"k" : @[ @1 ], [NSNull null] : @{}}) httpString]);
  EXPECT_CALM(result = [(@{@"nan" : @(NAN), @"inf" : @(INFINITY)}) httpString]);
}

TEST_F(BindingsRobustness, KeyEquivalentMonitor) {
  id monitor = nil;
  NSEvent * (^handler)(NSEvent *) = ^NSEvent *(NSEvent *event) {
    return event;
  };
  for (id key : {(id)nil, bad::WrongObject(), (id)@"", (id)@"abc", (id)[NSNull null]}) {
    EXPECT_CALM(monitor = [NSEvent addLocalMonitorForEventsMatchingKeyEquivalent:key
                                                               withModifierFlags:~0ull
                                                                         handler:handler]);
    if (monitor != nil) {
      [NSEvent removeMonitor:monitor];
    }
  }
  EXPECT_CALM(monitor = [NSEvent addLocalMonitorForEventsMatchingKeyEquivalent:@"k"
                                                             withModifierFlags:0
                                                                       handler:NullOf<NSEvent * (^)(NSEvent *)>()]);
  if (monitor != nil) {
    [NSEvent removeMonitor:monitor];
  }
}

TEST_F(BindingsRobustness, UndoWithoutRedo) {
  Owned<NSUndoManager> undo([NSUndoManager new]);
  EXPECT_CALM([undo.get() undoWithoutRedo]);
  [undo.get() beginUndoGrouping];
  EXPECT_CALM([undo.get() undoWithoutRedo]);  // inside an open group
  [undo.get() endUndoGrouping];
  [undo.get() disableUndoRegistration];
  EXPECT_CALM([undo.get() undoWithoutRedo]);
  [undo.get() enableUndoRegistration];
}

}  // namespace
