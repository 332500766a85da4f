// Pushing a bound property back to the object the binding observes.

#import <AppKit/AppKit.h>
#import <Talvo/NSObject+TwoWayBinding.h>
#import <Talvo/VXStringToAttributedString.h>

#import "support/TestSupport.h"

@interface TVBindingModel : NSObject {
  id _text;
  int _writes;
}
@property(nonatomic, retain) id text;
@property(nonatomic, readonly) int writes;
@end

@implementation TVBindingModel
@synthesize text = _text;
@synthesize writes = _writes;
- (void)setText:(id)text {
  _writes++;
  [text retain];
  [_text release];
  _text = text;
}
- (void)dealloc {
  [_text release];
  [super dealloc];
}
@end

// The view side: a `value` binding and a `value` property of the same name.
// With `fakeInfo` set, it reports that dictionary as its binding information
// instead of GNUstep's (whose bind: leaks when given an NSNull transformer).
@interface TVBoundView : NSView {
  id _value;
 @public
  NSDictionary *_fakeInfo;
}
@property(nonatomic, retain) id value;
@end

@implementation TVBoundView
@synthesize value = _value;
+ (void)initialize {
  if (self == [TVBoundView class]) {
    [self exposeBinding:@"value"];
  }
}
- (NSDictionary *)infoForBinding:(NSString *)binding {
  return _fakeInfo != nil ? _fakeInfo : [super infoForBinding:binding];
}
- (void)dealloc {
  [_value release];
  [_fakeInfo release];
  [super dealloc];
}
@end

namespace {

class TwoWayBinding : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    model_.reset([TVBindingModel new]);
    view_.reset([[TVBoundView alloc] initWithFrame:NSZeroRect]);
  }
  void TearDown() override {
    [view_.get() unbind:@"value"];
    view_.reset();
    model_.reset();
    PooledTest::TearDown();
  }
  void Bind(NSDictionary *options) {
    [view_.get() bind:@"value" toObject:model_ withKeyPath:@"text" options:options];
  }
  Owned<TVBindingModel> model_;
  Owned<TVBoundView> view_;
};

TEST_F(TwoWayBinding, ReverseTransformedValueIsWrittenToTheBoundObject) {
  VXStringToAttributedString *transformer = [[VXStringToAttributedString new] autorelease];
  Bind(@{NSValueTransformerBindingOption : transformer});
  NSAttributedString *shown = [[[NSAttributedString alloc] initWithString:@"typed"] autorelease];
  [view_.get() setValue:shown];
  [view_.get() notifyBindedObjectChangeForKeyPath:@"value"];
  EXPECT_NSEQ([model_.get() text], @"typed");
  EXPECT_TRUE([[model_.get() text] isKindOfClass:[NSString class]]);
}

TEST_F(TwoWayBinding, NullTransformerWritesTheValueItself) {
  view_.get()->_fakeInfo = [@{
    NSObservedObjectKey : model_.get(),
    NSObservedKeyPathKey : @"text",
    NSOptionsKey : @{NSValueTransformerBindingOption : [NSNull null]}
  } retain];
  NSString *value = [NSString stringWithFormat:@"%d", 42];
  [view_.get() setValue:value];
  [view_.get() notifyBindedObjectChangeForKeyPath:@"value"];
  EXPECT_EQ([model_.get() text], value);
}

// A real binding made with NSNull options, as AppKit code makes them:
// NSNull means "not set", so binding works and the value is written itself.
TEST_F(TwoWayBinding, NullOptionsOfARealBindingMeanNoTransformer) {
  for (NSString *option in @[ NSValueTransformerBindingOption, NSValueTransformerNameBindingOption ]) {
    [model_.get() setText:@"model"];
    @try {
      Bind(@{option : [NSNull null], NSNullPlaceholderBindingOption : [NSNull null]});
    } @catch (NSException *exception) {
      ADD_FAILURE() << [option UTF8String] << " raised " << [[exception reason] UTF8String];
      continue;
    }
    EXPECT_NSEQ([view_.get() value], @"model");  // forward, untransformed
    NSString *value = [NSString stringWithFormat:@"typed %@", option];
    [view_.get() setValue:value];
    [view_.get() notifyBindedObjectChangeForKeyPath:@"value"];
    EXPECT_EQ([model_.get() text], value) << [option UTF8String];
    [model_.get() setText:nil];  // an NSNull placeholder is no placeholder
    EXPECT_EQ([view_.get() value], nil);
    [view_.get() unbind:@"value"];
  }
}

// The transformer named by NSValueTransformerNameBindingOption runs in
// reverse, as the object given by NSValueTransformerBindingOption does.
TEST_F(TwoWayBinding, NamedTransformerIsReversed) {
  NSString *name = @"TVTwoWayStringToAttributedString";
  [NSValueTransformer setValueTransformer:[[VXStringToAttributedString new] autorelease] forName:name];
  Bind(@{NSValueTransformerNameBindingOption : name, NSValueTransformerBindingOption : [NSNull null]});
  [view_.get() setValue:[[[NSAttributedString alloc] initWithString:@"named"] autorelease]];
  [view_.get() notifyBindedObjectChangeForKeyPath:@"value"];
  EXPECT_NSEQ([model_.get() text], @"named");
  EXPECT_TRUE([[model_.get() text] isKindOfClass:[NSString class]]);
}

TEST_F(TwoWayBinding, BindingWithoutOptionsWritesTheValueItself) {
  Bind(nil);
  NSString *value = [NSString stringWithFormat:@"%d", 7];
  [view_.get() setValue:value];
  [view_.get() notifyBindedObjectChangeForKeyPath:@"value"];
  EXPECT_EQ([model_.get() text], value);
}

TEST_F(TwoWayBinding, NothingIsWrittenWhenTheBoundSideHoldsThatVeryObject) {
  NSString *value = [NSString stringWithFormat:@"%d", 5];
  [model_.get() setText:value];
  Bind(nil);
  int writesBefore = [model_.get() writes];
  [view_.get() setValue:value];
  [view_.get() notifyBindedObjectChangeForKeyPath:@"value"];
  EXPECT_EQ([model_.get() writes], writesBefore);

  // An equal but distinct object is written: identity, not equality.
  [view_.get() setValue:[NSString stringWithFormat:@"%d", 5]];
  [view_.get() notifyBindedObjectChangeForKeyPath:@"value"];
  EXPECT_EQ([model_.get() writes], writesBefore + 1);
}

TEST_F(TwoWayBinding, UnboundOrUnknownBindingsDoNothing) {
  [view_.get() setValue:@"x"];
  [view_.get() notifyBindedObjectChangeForKeyPath:@"value"];  // not bound yet
  [view_.get() notifyBindedObjectChangeForKeyPath:NullOf<NSString *>()];
  EXPECT_EQ([model_.get() writes], 0);
  [[[NSObject new] autorelease] notifyBindedObjectChangeForKeyPath:@"nothing"];
}

}  // namespace
