// -[NSBundle loadNibNamed:owner:topLevelObjects:] on GNUstep's loaders,
// with the interface file the tests install beside their binary.

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

class BundleNibLoading : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    [NSApplication sharedApplication];
    if ([[NSBundle mainBundle] pathForNibResource:@"WindowsObjects"] == nil) {
      GTEST_SKIP() << "WindowsObjects.xib is not installed beside the tests";
    }
  }
};

// The top-level objects come back, each with the reference the caller
// gives up; a nil owner is taken.
TEST_F(BundleNibLoading, LoadsTopLevelObjectsWithOrWithoutAnOwner) {
  for (id owner : {(id)nil, (id)[[[NSObject alloc] init] autorelease]}) {
    NSArray *objects = nil;
    ASSERT_TRUE([[NSBundle mainBundle] loadNibNamed:@"WindowsObjects"
                                              owner:owner
                                    topLevelObjects:&objects]);
    ASSERT_NE(objects, nil);
    // The fixture's window and its two free-standing views.
    NSUInteger views = 0, windows = 0;
    for (id object in objects) {
      views += [object isKindOfClass:[NSView class]];
      windows += [object isKindOfClass:[NSWindow class]];
    }
    EXPECT_EQ(views, 2u);
    EXPECT_EQ(windows, 1u);
    for (id object in objects) {
      [object release];
    }
  }
}

TEST_F(BundleNibLoading, MissingFilesAndBadNamesAnswerNo) {
  NSArray *objects = [NSArray array];
  EXPECT_FALSE([[NSBundle mainBundle] loadNibNamed:@"NoSuchNibAnywhere"
                                             owner:nil
                                   topLevelObjects:&objects]);
  EXPECT_EQ(objects, nil) << "cleared on failure";
  EXPECT_FALSE([[NSBundle mainBundle] loadNibNamed:@"" owner:nil topLevelObjects:NULL]);
  EXPECT_FALSE([[NSBundle mainBundle] loadNibNamed:NullOf<NSString *>() owner:nil topLevelObjects:NULL]);
  EXPECT_FALSE([[NSBundle mainBundle] loadNibNamed:(NSString *)[NSNumber numberWithInt:3]
                                             owner:nil
                                   topLevelObjects:NULL]);
}

}  // namespace
