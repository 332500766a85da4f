// The nine binding transformers: exact result classes and values, both ways.

#import <Talvo/Talvo.h>

#import "support/TestSupport.h"

namespace {

class ValueTransformers : public PooledTest {
 protected:
  template <typename T>
  T *Make() {
    return [[T new] autorelease];
  }
};

TEST_F(ValueTransformers, CountTransformersAnswerIntegerNumbers) {
  NSArray *none = @[];
  NSArray *one = @[ @1 ];
  NSArray *two = @[ @1, @2 ];
  VXCollectionIsEmpty *isEmpty = Make<VXCollectionIsEmpty>();
  VXCollectionNotEmpty *notEmpty = Make<VXCollectionNotEmpty>();
  VXCollectionContainsMutipleElements *multiple = Make<VXCollectionContainsMutipleElements>();

  EXPECT_NSEQ([isEmpty transformedValue:none], @1);
  EXPECT_NSEQ([isEmpty transformedValue:one], @0);
  EXPECT_NSEQ([notEmpty transformedValue:none], @0);
  EXPECT_NSEQ([notEmpty transformedValue:one], @1);
  EXPECT_NSEQ([multiple transformedValue:one], @0);
  EXPECT_NSEQ([multiple transformedValue:two], @1);
  EXPECT_NSEQ([multiple transformedValue:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(0, 3)]], @1);
  EXPECT_STREQ([[isEmpty transformedValue:none] objCType], @encode(int));

  // nil and objects without a count count as empty.
  EXPECT_NSEQ([isEmpty transformedValue:nil], @1);
  EXPECT_NSEQ([notEmpty transformedValue:nil], @0);
  EXPECT_NSEQ([multiple transformedValue:nil], @0);
  EXPECT_NSEQ([isEmpty transformedValue:@42], @1);

  for (Class cls in @[ [VXCollectionIsEmpty class], [VXCollectionNotEmpty class],
                       [VXCollectionContainsMutipleElements class],
                       [VXValidIndexValueTransformer class] ]) {
    EXPECT_EQ([cls transformedValueClass], [NSNumber class]);
    EXPECT_FALSE([cls allowsReverseTransformation]);
  }
}

TEST_F(ValueTransformers, ValidIndexReadsThirtyTwoBits) {
  VXValidIndexValueTransformer *valid = Make<VXValidIndexValueTransformer>();
  EXPECT_NSEQ([valid transformedValue:@0], @(YES));
  EXPECT_NSEQ([valid transformedValue:@5], @(YES));
  EXPECT_NSEQ([valid transformedValue:@-1], @(NO));
  EXPECT_NSEQ([valid transformedValue:[NSNumber numberWithInteger:NSNotFound]], @(NO));
  EXPECT_NSEQ([valid transformedValue:@"12"], @(YES));
  EXPECT_NSEQ([valid transformedValue:nil], @(YES));
}

TEST_F(ValueTransformers, IndexSetIndexUsesMinusOneForNoSelectionBothWays) {
  VXIndexSetIndexValueTransformer *indexes = Make<VXIndexSetIndexValueTransformer>();
  EXPECT_NSEQ([indexes transformedValue:@3], [NSIndexSet indexSetWithIndex:3]);
  EXPECT_EQ([indexes transformedValue:@-1], nil);
  EXPECT_EQ([indexes transformedValue:@-7], nil);
  EXPECT_EQ([indexes transformedValue:[NSNumber numberWithInteger:NSNotFound]], nil);
  EXPECT_NSEQ([indexes transformedValue:nil], [NSIndexSet indexSetWithIndex:0]);

  NSMutableIndexSet *twoSeven = [NSMutableIndexSet indexSetWithIndex:7];
  [twoSeven addIndex:2];
  EXPECT_NSEQ([indexes reverseTransformedValue:twoSeven], @2);
  EXPECT_NSEQ([indexes reverseTransformedValue:[NSIndexSet indexSet]], @-1);
  EXPECT_NSEQ([indexes reverseTransformedValue:nil], @-1);
  EXPECT_TRUE([VXIndexSetIndexValueTransformer allowsReverseTransformation]);
}

TEST_F(ValueTransformers, OrderedSetArrayKeepsOrderAndDropsDuplicatesBack) {
  VXOrderedSetArrayValueTransformer *transformer = Make<VXOrderedSetArrayValueTransformer>();
  NSOrderedSet *ba = [NSOrderedSet orderedSetWithArray:@[ @"b", @"a" ]];
  EXPECT_NSEQ([transformer transformedValue:ba], (@[ @"b", @"a" ]));
  id back = [transformer reverseTransformedValue:@[ @"a", @"b", @"a" ]];
  EXPECT_TRUE([back isKindOfClass:[NSMutableOrderedSet class]]);
  EXPECT_NSEQ([back array], (@[ @"a", @"b" ]));
  EXPECT_EQ([VXOrderedSetArrayValueTransformer transformedValueClass], [NSMutableArray class]);
  EXPECT_EQ([transformer transformedValue:@"not a set"], nil);
}

TEST_F(ValueTransformers, ObjectToArrayAndSetArray) {
  VXObjectToArrayValueTransformer *objects = Make<VXObjectToArrayValueTransformer>();
  EXPECT_NSEQ([objects transformedValue:@"x"], (@[ @"x" ]));
  EXPECT_NSEQ([objects reverseTransformedValue:(@[ @"y", @"z" ])], @"y");
  EXPECT_NSEQ([objects transformedValue:nil], @[]);
  EXPECT_EQ([objects reverseTransformedValue:@[]], nil);
  EXPECT_EQ([objects reverseTransformedValue:nil], nil);

  VXSetArrayValueTransformer *sets = Make<VXSetArrayValueTransformer>();
  NSSet *set = [NSSet setWithObjects:@1, @2, @3, nil];
  EXPECT_NSEQ([sets transformedValue:set], [set allObjects]);
  EXPECT_NSEQ([sets reverseTransformedValue:(@[ @1, @2, @2 ])], ([NSSet setWithObjects:@1, @2, nil]));
  EXPECT_EQ([VXSetArrayValueTransformer transformedValueClass], [NSArray class]);
}

TEST_F(ValueTransformers, StringToAttributedStringHasNoAttributesAndComesBackPlain) {
  VXStringToAttributedString *transformer = Make<VXStringToAttributedString>();
  NSAttributedString *attributed = [transformer transformedValue:@"abc"];
  EXPECT_NSEQ([attributed string], @"abc");
  NSRange range;
  EXPECT_EQ([[attributed attributesAtIndex:0 effectiveRange:&range] count], 0u);

  NSAttributedString *styled = [[[NSAttributedString alloc]
      initWithString:@"bold"
          attributes:@{NSFontAttributeName : [NSFont boldSystemFontOfSize:12]}] autorelease];
  id plain = [transformer reverseTransformedValue:styled];
  EXPECT_NSEQ(plain, @"bold");
  EXPECT_FALSE([plain isKindOfClass:[NSMutableString class]]);
  EXPECT_EQ([transformer transformedValue:nil], nil);
  EXPECT_EQ([transformer reverseTransformedValue:nil], nil);
}

TEST_F(ValueTransformers, ThePlatformFindsEachTransformerByClassName) {
  for (NSString *name in @[ @"VXCollectionIsEmpty", @"VXCollectionNotEmpty",
                            @"VXCollectionContainsMutipleElements", @"VXValidIndexValueTransformer",
                            @"VXOrderedSetArrayValueTransformer", @"VXIndexSetIndexValueTransformer",
                            @"VXObjectToArrayValueTransformer", @"VXSetArrayValueTransformer",
                            @"VXStringToAttributedString" ]) {
    Class cls = NSClassFromString(name);
    ASSERT_NE(cls, Nil) << [name UTF8String];
    EXPECT_TRUE([cls isSubclassOfClass:[NSValueTransformer class]]);
  }
}

}  // namespace
