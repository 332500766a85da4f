// The observation registry: one handler per pair, exact KVO registrations,
// entries dropped with their last key path or with either side's death.

#import <Talvo/VXObservationCenter.h>

#import "support/TestSupport.h"

@interface TVObservedModel : TVDeathWatch {
  NSInteger _width;
  NSInteger _height;
}
@property(nonatomic, assign) NSInteger width;
@property(nonatomic, assign) NSInteger height;
@end

@implementation TVObservedModel
@synthesize width = _width;
@synthesize height = _height;
@end

// Every instance equal to every other: the registry must tell them apart.
@interface TVEqualModel : TVObservedModel
@end

@implementation TVEqualModel
- (BOOL)isEqual:(id)other {
  return [other isKindOfClass:[TVEqualModel class]];
}
- (NSUInteger)hash {
  return 1;
}
@end

// Exposes the registry for inspection.
@interface VXObservationCenter (TestAccess)
- (NSMapTable *)registry;
@end

@implementation VXObservationCenter (TestAccess)
- (NSMapTable *)registry {
  return _observedObjects;
}
@end

namespace {

class ObservationCenter : public PooledTest {
 protected:
  Owned<VXObservationCenter> center_{[VXObservationCenter new]};
  Owned<TVObservedModel> model_{[TVObservedModel new]};
};

TEST_F(ObservationCenter, SecondRegistrationOfAPairIsRefusedAndTheFirstHandlerStays) {
  __block int first = 0;
  __block int second = 0;
  EXPECT_TRUE([center_.get() observeKeyPath:@"width"
                                   ofObject:model_
                                    options:0
                              changeHandler:^(NSDictionary *change) {
                                first++;
                              }]);
  EXPECT_FALSE([center_.get() observeKeyPath:@"width"
                                    ofObject:model_
                                     options:NSKeyValueObservingOptionNew
                               changeHandler:^(NSDictionary *change) {
                                 second++;
                               }]);
  [model_.get() setWidth:3];
  EXPECT_EQ(first, 1);  // once: the center is registered once with KVO
  EXPECT_EQ(second, 0);
  [center_.get() unObserveKeyPath:@"width" ofObject:model_];
}

TEST_F(ObservationCenter, HandlerReceivesTheChangeDictionaryForItsOptions) {
  __block id newValue = nil;
  __block id oldValue = nil;
  [model_.get() setWidth:1];
  [center_.get() observeKeyPath:@"width"
                       ofObject:model_
                        options:NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld
                  changeHandler:^(NSDictionary *change) {
                    newValue = [[change objectForKey:NSKeyValueChangeNewKey] retain];
                    oldValue = [[change objectForKey:NSKeyValueChangeOldKey] retain];
                  }];
  [model_.get() setWidth:9];
  EXPECT_NSEQ(newValue, @9);
  EXPECT_NSEQ(oldValue, @1);
  [newValue release];
  [oldValue release];
  [center_.get() unObserveKeyPath:nil ofObject:model_];
}

TEST_F(ObservationCenter, UnobservingOneKeyPathKeepsTheOtherAndTheEntry) {
  __block int widths = 0;
  __block int heights = 0;
  [center_.get() observeKeyPath:@"width" ofObject:model_ options:0 changeHandler:^(NSDictionary *c) {
    widths++;
  }];
  [center_.get() observeKeyPath:@"height" ofObject:model_ options:0 changeHandler:^(NSDictionary *c) {
    heights++;
  }];
  [center_.get() unObserveKeyPath:@"width" ofObject:model_];
  [model_.get() setWidth:2];
  [model_.get() setHeight:2];
  EXPECT_EQ(widths, 0);
  EXPECT_EQ(heights, 1);
  EXPECT_EQ([[center_.get() registry] count], 1u);
  EXPECT_EQ([[[center_.get() registry] objectForKey:model_] count], 1u);

  [center_.get() unObserveKeyPath:@"height" ofObject:model_];
  EXPECT_EQ([[center_.get() registry] count], 0u);
  [model_.get() setHeight:3];
  EXPECT_EQ(heights, 1);
}

TEST_F(ObservationCenter, NilKeyPathRemovesEveryRegistrationOfTheObject) {
  __block int calls = 0;
  for (NSString *keyPath in @[ @"width", @"height" ]) {
    [center_.get() observeKeyPath:keyPath ofObject:model_ options:0 changeHandler:^(NSDictionary *c) {
      calls++;
    }];
  }
  [center_.get() unObserveKeyPath:nil ofObject:model_];
  EXPECT_EQ([[center_.get() registry] count], 0u);
  [model_.get() setWidth:5];
  [model_.get() setHeight:5];
  EXPECT_EQ(calls, 0);
  // Re-registering works: the KVO registrations really went.
  EXPECT_TRUE([center_.get() observeKeyPath:@"width" ofObject:model_ options:0 changeHandler:^(NSDictionary *c) {
    calls++;
  }]);
  [model_.get() setWidth:6];
  EXPECT_EQ(calls, 1);
  [center_.get() unObserveKeyPath:nil ofObject:model_];
}

TEST_F(ObservationCenter, TheRegistryDoesNotRetainObservedObjects) {
  int deaths = 0;
  TVObservedModel *model = [TVObservedModel new];
  [model setDeaths:&deaths];
  [center_.get() observeKeyPath:@"width" ofObject:model options:0 changeHandler:^(NSDictionary *c) {
  }];
  EXPECT_EQ([model retainCount], 1u);
  [center_.get() unObserveKeyPath:@"width" ofObject:model];
  [model release];
  EXPECT_EQ(deaths, 1);
}

TEST_F(ObservationCenter, AHandlerMayUnobserveItsOwnPair) {
  __block int calls = 0;
  VXObservationCenter *center = center_.get();
  TVObservedModel *model = model_.get();
  [center observeKeyPath:@"width" ofObject:model options:0 changeHandler:^(NSDictionary *c) {
    calls++;
    [center unObserveKeyPath:@"width" ofObject:model];
  }];
  [model setWidth:1];
  [model setWidth:2];
  EXPECT_EQ(calls, 1);
}

TEST_F(ObservationCenter, BadInputChangesNothingAndRaisesNothing) {
  VXObservationCenter *center = center_.get();
  EXPECT_FALSE([center observeKeyPath:NullOf<NSString *>() ofObject:model_ options:0 changeHandler:^(NSDictionary *c) {
  }]);
  EXPECT_FALSE([center observeKeyPath:@"width" ofObject:NullOf<id>() options:0 changeHandler:^(NSDictionary *c) {
  }]);
  EXPECT_FALSE([center observeKeyPath:@"width" ofObject:model_ options:0 changeHandler:NullOf<VXObservationChangeHandler>()]);
  [center unObserveKeyPath:@"width" ofObject:model_];  // never observed
  [center unObserveKeyPath:nil ofObject:model_];
  [center unObserveKeyPath:@"width" ofObject:NullOf<id>()];
  [center observeValueForKeyPath:@"width" ofObject:model_ change:@{} context:NULL];  // no handler
  EXPECT_EQ([[center registry] count], 0u);
}

// An object that dies while observed takes its entry with it: later
// lookups never reach the freed object (they used to send it -isEqual:).
TEST_F(ObservationCenter, AnObjectDeallocatedWhileObservedLeavesNoEntry) {
  __block int calls = 0;
  int deaths = 0;
  TVObservedModel *doomed = [TVObservedModel new];
  [doomed setDeaths:&deaths];
  ASSERT_TRUE([center_.get() observeKeyPath:@"width" ofObject:doomed options:0 changeHandler:^(NSDictionary *c) {
    calls++;
  }]);
  [center_.get() observeKeyPath:@"height" ofObject:doomed options:0 changeHandler:^(NSDictionary *c) {
    calls++;
  }];
  [doomed release];
  ASSERT_EQ(deaths, 1);
  EXPECT_EQ([[center_.get() registry] count], 0u);

  // Many fresh objects, some at the freed address: each is a new pair.
  for (int i = 0; i < 64; i++) {
    TVObservedModel *fresh = [TVObservedModel new];
    EXPECT_TRUE([center_.get() observeKeyPath:@"width" ofObject:fresh options:0 changeHandler:^(NSDictionary *c) {
      calls++;
    }]);
    [fresh setWidth:i + 1];
    [center_.get() observeValueForKeyPath:@"height" ofObject:fresh change:@{} context:NULL];
    [fresh release];
  }
  EXPECT_EQ(calls, 64);
  EXPECT_EQ([[center_.get() registry] count], 0u);
}

// The handlers of a dead object are released with its entry, and what they
// captured with them.
TEST_F(ObservationCenter, HandlersOfADeadObjectAreReleased) {
  int deaths = 0;
  TVDeathWatch *captured = [TVDeathWatch new];
  [captured setDeaths:&deaths];
  TVObservedModel *doomed = [TVObservedModel new];
  [center_.get() observeKeyPath:@"width" ofObject:doomed options:0 changeHandler:^(NSDictionary *c) {
    [captured self];
  }];
  [captured release];
  EXPECT_EQ(deaths, 0);  // the copied handler holds it
  [doomed release];
  EXPECT_EQ(deaths, 1);
}

// Two centers observing one object: both forget it when it dies, and a
// center that died first is not called back.
TEST_F(ObservationCenter, EitherSideMayGoFirst) {
  VXObservationCenter *other = [VXObservationCenter new];
  TVObservedModel *model = [TVObservedModel new];
  __block int calls = 0;
  [center_.get() observeKeyPath:@"width" ofObject:model options:0 changeHandler:^(NSDictionary *c) {
    calls++;
  }];
  [other observeKeyPath:@"width" ofObject:model options:0 changeHandler:^(NSDictionary *c) {
    calls += 10;
  }];
  [model setWidth:1];
  EXPECT_EQ(calls, 11);
  [other release];  // the observer side goes: its KVO registration with it
  [model setWidth:2];
  EXPECT_EQ(calls, 12);
  [model release];  // then the observed side
  EXPECT_EQ([[center_.get() registry] count], 0u);

  // And the other way round: the object first, then a center still holding
  // no entry for it is deallocated cleanly.
  VXObservationCenter *third = [VXObservationCenter new];
  TVObservedModel *second = [TVObservedModel new];
  [third observeKeyPath:@"height" ofObject:second options:0 changeHandler:^(NSDictionary *c) {
  }];
  [second release];
  EXPECT_EQ([[third registry] count], 0u);
  [third release];
}

TEST_F(ObservationCenter, EqualButDistinctObjectsAreSeparatePairs) {
  TVEqualModel *first = [[TVEqualModel new] autorelease];
  TVEqualModel *second = [[TVEqualModel new] autorelease];
  ASSERT_TRUE([first isEqual:second]);
  __block int calls = 0;
  EXPECT_TRUE([center_.get() observeKeyPath:@"width" ofObject:first options:0 changeHandler:^(NSDictionary *c) {
    calls++;
  }]);
  EXPECT_TRUE([center_.get() observeKeyPath:@"width" ofObject:second options:0 changeHandler:^(NSDictionary *c) {
    calls += 10;
  }]);
  [second setWidth:1];
  EXPECT_EQ(calls, 10);
  EXPECT_EQ([[center_.get() registry] count], 2u);
  [center_.get() unObserveKeyPath:nil ofObject:first];
  [center_.get() unObserveKeyPath:nil ofObject:second];
  EXPECT_EQ([[center_.get() registry] count], 0u);
}

TEST_F(ObservationCenter, SharedCenterIsOneObject) {
  VXObservationCenter *shared = [VXObservationCenter sharedObservationCenter];
  EXPECT_NE(shared, nil);
  EXPECT_EQ(shared, [VXObservationCenter sharedObservationCenter]);
}

}  // namespace
