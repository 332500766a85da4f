#import <Talvo/Talvo.h>

#import "support/TestSupport.h"

namespace {

class CollectionIndexes : public PooledTest {};

NSIndexSet *Indexes(std::initializer_list<NSUInteger> values) {
  NSMutableIndexSet *set = [NSMutableIndexSet indexSet];
  for (NSUInteger value : values) {
    [set addIndex:value];
  }
  return set;
}

TEST_F(CollectionIndexes, ArrayMembersNonMembersAndRemovalKeepDuplicates) {
  NSArray *abcb = @[ @"a", @"b", @"c", @"b" ];
  NSArray *b = @[ @"b" ];
  EXPECT_NSEQ([abcb indexesOfObjects:b], Indexes({1, 3}));
  EXPECT_NSEQ([abcb indexesOfObjects:[NSSet setWithObject:@"b"]], Indexes({1, 3}));
  EXPECT_NSEQ([abcb indexesOfObjectsNotInArray:b], Indexes({0, 2}));
  EXPECT_NSEQ([abcb arrayByRemovingObjectsFromArray:b], (@[ @"a", @"c" ]));
  NSArray *aab = @[ @"a", @"a", @"b" ];
  EXPECT_NSEQ([aab arrayByRemovingObjectsFromArray:b], (@[ @"a", @"a" ]));
}

TEST_F(CollectionIndexes, EmptyReceiversAndNilArguments) {
  EXPECT_EQ([[@[] indexesOfObjects:@[ @1 ]] count], 0u);
  EXPECT_EQ([[@[] arrayByRemovingObjectsFromArray:@[ @1 ]] count], 0u);
  NSArray *xy = @[ @"x", @"y" ];
  EXPECT_EQ([[xy indexesOfObjects:nil] count], 0u);
  EXPECT_NSEQ([xy indexesOfObjectsNotInArray:nil], Indexes({0, 1}));
  EXPECT_NSEQ([xy arrayByRemovingObjectsFromArray:nil], xy);
  EXPECT_EQ([[xy indexesOfObjects:@"no containsObject:"] count], 0u);
  NSSet *pq = [NSSet setWithObjects:@"p", @"q", nil];
  EXPECT_EQ([[pq objectsInOrderedSet:nil] count], 0u);
  EXPECT_NSEQ([pq objectsNotInOrderedSet:nil], pq);
}

TEST_F(CollectionIndexes, OrderedSets) {
  NSOrderedSet *xyz = [NSOrderedSet orderedSetWithArray:@[ @"x", @"y", @"z" ]];
  NSOrderedSet *zx = [NSOrderedSet orderedSetWithArray:@[ @"z", @"x" ]];
  EXPECT_NSEQ([xyz indexesOfObjectsInOrderedSet:zx], Indexes({0, 2}));
  EXPECT_NSEQ([xyz indexesOfObjects:zx], Indexes({0, 2}));
  EXPECT_NSEQ([xyz indexesOfObjects:@[ @"y" ]], Indexes({1}));
  EXPECT_NSEQ([xyz indexesOfObjectsNotInOrderedSet:zx], Indexes({1}));
  id remaining = [xyz arrayByRemovingObjectsFromOrderedSet:zx];
  EXPECT_TRUE([remaining isKindOfClass:[NSArray class]]);
  EXPECT_NSEQ(remaining, (@[ @"y" ]));
}

TEST_F(CollectionIndexes, SetsAgainstOrderedSets) {
  NSSet *pqr = [NSSet setWithObjects:@"p", @"q", @"r", nil];
  NSOrderedSet *q = [NSOrderedSet orderedSetWithObject:@"q"];
  EXPECT_NSEQ([pqr objectsInOrderedSet:q], [NSSet setWithObject:@"q"]);
  EXPECT_NSEQ([pqr objectsNotInOrderedSet:q], ([NSSet setWithObjects:@"p", @"r", nil]));
}

}  // namespace
