// Blocks as Objective-C objects: copies move to the heap, retain what they
// capture, and live in properties and collections.

#import <Foundation/Foundation.h>

#import "support/TestSupport.h"

@interface TVBlockHolder : NSObject {
  int (^_action)(void);
}
@property(nonatomic, copy) int (^action)(void);
@end

@implementation TVBlockHolder
@synthesize action = _action;
- (void)dealloc {
  [_action release];
  [super dealloc];
}
@end

namespace {

class BlocksRuntime : public PooledTest {};

int (^MakeStackBlock(TVDeathWatch *watch, int value))(void) {
  return [[^int {
    return value + ([watch deaths] != NULL ? 1 : 0);
  } copy] autorelease];
}

TEST_F(BlocksRuntime, CopyOfStackBlockMovesToHeapAndRetainsCapture) {
  int deaths = 0;
  TVDeathWatch *watch = [TVDeathWatch new];
  [watch setDeaths:&deaths];
  int (^stackBlock)(void) = ^int {
    return [watch deaths] != NULL ? 7 : 0;
  };
  id heap = [stackBlock copy];
  EXPECT_NE((void *)heap, (void *)stackBlock);
  EXPECT_NE([heap class], [(id)stackBlock class]);
  EXPECT_TRUE([heap isKindOfClass:[NSObject class]]);
  EXPECT_EQ([heap retainCount], 1u);
  [watch release];  // the heap block holds the only reference now
  EXPECT_EQ(deaths, 0);
  EXPECT_EQ(((int (^)(void))heap)(), 7);
  [heap release];
  EXPECT_EQ(deaths, 1);
}

TEST_F(BlocksRuntime, HeapBlockRetainAndCopyShareOneBlock) {
  int deaths = 0;
  TVDeathWatch *watch = [[TVDeathWatch new] autorelease];
  [watch setDeaths:&deaths];
  id heap = [MakeStackBlock(watch, 1) retain];
  EXPECT_EQ([heap retain], heap);
  EXPECT_EQ([heap copy], heap);
  EXPECT_EQ([heap retainCount], 4u);  // autoreleased copy + retain + retain + copy
  [heap release];
  [heap release];
  [heap release];
  EXPECT_EQ([heap retainCount], 1u);
}

TEST_F(BlocksRuntime, GlobalBlockIgnoresReferenceCounting) {
  int (^global)(void) = ^int {
    return 3;
  };
  id copy = [global copy];
  EXPECT_EQ((void *)copy, (void *)global);
  [copy release];
  [copy release];
  EXPECT_EQ(global(), 3);
}

TEST_F(BlocksRuntime, BlocksLiveInCollectionsAndCopyProperties) {
  int deaths = 0;
  TVDeathWatch *watch = [TVDeathWatch new];
  [watch setDeaths:&deaths];
  int (^stackBlock)(void) = ^int {
    return [watch deaths] != NULL ? 42 : 0;
  };
  TVBlockHolder *holder = [TVBlockHolder new];
  [holder setAction:stackBlock];
  NSMutableDictionary *dictionary = [NSMutableDictionary new];
  [dictionary setObject:[[stackBlock copy] autorelease] forKey:@"block"];
  NSArray *array = [[NSArray alloc] initWithObjects:[holder action], nil];
  [watch release];
  EXPECT_EQ([holder action](), 42);
  EXPECT_EQ(((int (^)(void))[dictionary objectForKey:@"block"])(), 42);
  EXPECT_EQ(((int (^)(void))[array objectAtIndex:0])(), 42);
  [holder release];
  [array release];
  EXPECT_EQ(deaths, 0);  // the dictionary's copy still holds it
  [dictionary release];
  [[NSAutoreleasePool new] drain];
}

TEST_F(BlocksRuntime, ByrefVariableIsSharedBetweenStackAndHeapCopies) {
  __block int counter = 0;
  void (^increment)(void) = ^{
    counter++;
  };
  void (^heap)(void) = [increment copy];
  heap();
  heap();
  increment();
  EXPECT_EQ(counter, 3);
  [heap release];
}

TEST_F(BlocksRuntime, NestedBlockCopiedWithItsOuterBlock) {
  int deaths = 0;
  TVDeathWatch *watch = [TVDeathWatch new];
  [watch setDeaths:&deaths];
  int (^inner)(void) = ^int {
    return [watch deaths] != NULL ? 5 : 0;
  };
  int (^outer)(void) = ^int {
    return inner() * 2;
  };
  id heap = [outer copy];
  [watch release];
  EXPECT_EQ(((int (^)(void))heap)(), 10);
  EXPECT_EQ(deaths, 0);
  [heap release];
  EXPECT_EQ(deaths, 1);
}

}  // namespace
