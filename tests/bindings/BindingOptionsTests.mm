// Binding options as AppKit reads them, on GNUstep through the platform
// layer: NSNull is "not set", and -infoForBinding: reports every option.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

@interface TVOptionsModel : NSObject {
  id _title;
}
@property(nonatomic, retain) id title;
@end

@implementation TVOptionsModel
@synthesize title = _title;
- (void)dealloc {
  [_title release];
  [super dealloc];
}
@end

@interface TVOptionsTarget : NSObject {
  id _caption;
}
@property(nonatomic, retain) id caption;
@end

@implementation TVOptionsTarget
@synthesize caption = _caption;
+ (void)initialize {
  if (self == [TVOptionsTarget class]) {
    [self exposeBinding:@"caption"];
  }
}
- (void)dealloc {
  [_caption release];
  [super dealloc];
}
@end

namespace {

class BindingOptions : public PooledTest {
 protected:
  void TearDown() override {
    [target_.get() unbind:@"caption"];
    PooledTest::TearDown();
  }
  // Binds and reports whether that raised.
  bool Bind(id options) {
    @try {
      [target_.get() bind:@"caption" toObject:model_ withKeyPath:@"title" options:options];
    } @catch (NSException *exception) {
      ADD_FAILURE() << "bind: raised " << [[exception reason] UTF8String];
      return false;
    }
    return true;
  }
  NSDictionary *ReportedOptions() {
    return [[target_.get() infoForBinding:@"caption"] objectForKey:NSOptionsKey];
  }
  Owned<TVOptionsModel> model_{[TVOptionsModel new]};
  Owned<TVOptionsTarget> target_{[TVOptionsTarget new]};
};

TEST_F(BindingOptions, NullTransformerOptionsAreNotSet) {
  [model_.get() setTitle:@"first"];
  for (NSString *option in @[ NSValueTransformerBindingOption, NSValueTransformerNameBindingOption ]) {
    ASSERT_TRUE(Bind(@{option : [NSNull null]})) << [option UTF8String];
    EXPECT_NSEQ([target_.get() caption], @"first");
    [model_.get() setTitle:@"second"];
    EXPECT_NSEQ([target_.get() caption], @"second");  // observation carries on untransformed
    [target_.get() unbind:@"caption"];
    [model_.get() setTitle:@"first"];
  }
}

// A nil model value with an NSNull placeholder gives nil (GNUstep would
// write the NSNull itself); a real placeholder still applies.
TEST_F(BindingOptions, NullPlaceholderIsNoPlaceholder) {
  [model_.get() setTitle:@"x"];
  ASSERT_TRUE(Bind(@{NSNullPlaceholderBindingOption : [NSNull null]}));
  [model_.get() setTitle:nil];
  EXPECT_EQ([target_.get() caption], nil);
  [target_.get() unbind:@"caption"];
  ASSERT_TRUE(Bind(@{NSNullPlaceholderBindingOption : @"none"}));
  EXPECT_NSEQ([target_.get() caption], @"none");
}

TEST_F(BindingOptions, InfoReportsEveryOptionWithNullForUnset) {
  NSValueTransformer *transformer = [NSValueTransformer valueTransformerForName:NSNegateBooleanTransformerName];
  ASSERT_TRUE(Bind(@{
    NSValueTransformerBindingOption : transformer,
    NSNullPlaceholderBindingOption : [NSNull null],
    NSContinuouslyUpdatesValueBindingOption : @(YES)
  }));
  NSDictionary *options = ReportedOptions();
  ASSERT_TRUE([options isKindOfClass:[NSDictionary class]]);
  EXPECT_EQ([options objectForKey:NSValueTransformerBindingOption], transformer);
  EXPECT_NSEQ([options objectForKey:NSContinuouslyUpdatesValueBindingOption], @(YES));
  for (NSString *unset in @[ NSNullPlaceholderBindingOption, NSValueTransformerNameBindingOption,
                              NSMultipleValuesPlaceholderBindingOption, NSRaisesForNotApplicableKeysBindingOption,
                              NSValidatesImmediatelyBindingOption, NSAllowsNullArgumentBindingOption ]) {
    EXPECT_EQ([options objectForKey:unset], [NSNull null]) << [unset UTF8String];
  }
  EXPECT_EQ([options count], 24u);
  // The rest of the information is GNUstep's.
  NSDictionary *info = [target_.get() infoForBinding:@"caption"];
  EXPECT_EQ([info objectForKey:NSObservedObjectKey], model_.get());
  EXPECT_NSEQ([info objectForKey:NSObservedKeyPathKey], @"title");
}

TEST_F(BindingOptions, BindingWithoutOptionsReportsAllUnset) {
  ASSERT_TRUE(Bind(nil));
  NSDictionary *options = ReportedOptions();
  EXPECT_EQ([options count], 24u);
  for (id name in options) {
    EXPECT_EQ([options objectForKey:name], [NSNull null]) << [[name description] UTF8String];
  }
  EXPECT_EQ([target_.get() infoForBinding:@"unbound"], nil);
}

// Options that are not a dictionary are no options.
TEST_F(BindingOptions, OptionsOfTheWrongClassAreIgnored) {
  [model_.get() setTitle:@"t"];
  ASSERT_TRUE(Bind(@"options"));
  EXPECT_NSEQ([target_.get() caption], @"t");
  EXPECT_EQ([ReportedOptions() objectForKey:NSValueTransformerBindingOption], [NSNull null]);
}

// GNUstep's controls make their bindings themselves: the value binding of a
// text field with an NSNull transformer works too.
TEST_F(BindingOptions, ControlBindingsTakeNullOptions) {
  NSTextField *field = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 100, 20)] autorelease];
  [model_.get() setTitle:@"shown"];
  @try {
    [field bind:NSValueBinding
           toObject:model_
        withKeyPath:@"title"
            options:@{NSValueTransformerBindingOption : [NSNull null]}];
  } @catch (NSException *exception) {
    ADD_FAILURE() << "bind: raised " << [[exception reason] UTF8String];
  }
  EXPECT_NSEQ([field stringValue], @"shown");
  EXPECT_EQ([[[field infoForBinding:NSValueBinding] objectForKey:NSOptionsKey]
                objectForKey:NSValueTransformerBindingOption],
            [NSNull null]);
  [field unbind:NSValueBinding];
}

}  // namespace
