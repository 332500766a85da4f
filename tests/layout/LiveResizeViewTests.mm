// The live-resize view: one notification per end of live resize, posted
// after NSView has handled it.

#import <Talvo/VXLiveResizeView.h>

#include <objc/runtime.h>

#include <string>
#include <vector>

#import "support/TestSupport.h"

namespace {

std::vector<std::string> *events = nullptr;

void RecordingDidEndLiveResize(id self, SEL _cmd) {
  if (events != nullptr) events->push_back("NSView");
}

}  // namespace

// Keeps the notifications it receives, in order.
@interface TVLiveResizeRecorder : NSObject {
  NSMutableArray *_received;
}
@property(nonatomic, readonly) NSMutableArray *received;
@end

@implementation TVLiveResizeRecorder
@synthesize received = _received;
- (instancetype)init {
  if ((self = [super init]) != nil) _received = [NSMutableArray new];
  return self;
}
- (void)dealloc {
  [_received release];
  [super dealloc];
}
- (void)record:(NSNotification *)notification {
  [_received addObject:notification];
  if (events != nullptr) events->push_back("posted");
}
@end

namespace {

class LiveResizeView : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    [[NSNotificationCenter defaultCenter] addObserver:recorder_.get()
                                             selector:@selector(record:)
                                                 name:@"VXViewDidEndLiveResize"
                                               object:nil];
  }
  void TearDown() override {
    [[NSNotificationCenter defaultCenter] removeObserver:recorder_.get()];
    PooledTest::TearDown();
  }
  NSMutableArray *received() { return [recorder_.get() received]; }

  Owned<VXLiveResizeView> view_{[[VXLiveResizeView alloc] initWithFrame:NSMakeRect(0, 0, 99, 99)]};
  Owned<TVLiveResizeRecorder> recorder_{[TVLiveResizeRecorder new]};
};

TEST_F(LiveResizeView, EachEndOfLiveResizePostsOneNotificationWithTheViewAsObject) {
  EXPECT_NSEQ(VXLiveResizeViewDidEndLiveResize, @"VXViewDidEndLiveResize");
  [view_.get() viewWillStartLiveResize];
  Owned<NSView> plain([[NSView alloc] initWithFrame:NSZeroRect]);
  [plain.get() viewDidEndLiveResize];
  EXPECT_EQ([received() count], 0u);

  [view_.get() viewDidEndLiveResize];
  ASSERT_EQ([received() count], 1u);
  NSNotification *notification = [received() objectAtIndex:0];
  EXPECT_EQ([notification object], view_.get());
  EXPECT_EQ([notification userInfo], nil);
  [view_.get() viewDidEndLiveResize];
  EXPECT_EQ([received() count], 2u);
}

TEST_F(LiveResizeView, NotificationFollowsNSViewsOwnHandling) {
  std::vector<std::string> log;
  Method method = class_getInstanceMethod([NSView class], @selector(viewDidEndLiveResize));
  ASSERT_NE(method, nullptr);
  IMP original = method_setImplementation(method, (IMP)RecordingDidEndLiveResize);
  events = &log;
  [view_.get() viewDidEndLiveResize];
  events = nullptr;
  method_setImplementation(method, original);
  EXPECT_EQ(log, (std::vector<std::string>{"NSView", "posted"}));
}

}  // namespace
