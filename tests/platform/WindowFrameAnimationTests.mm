// -[NSWindow setFrame:display:animate:] blocks while the frame moves over
// animationResizeTime:, paced ease-in-out, pumping events; the manual
// animation clock makes the frames the same on every run.

#import "platform/WindowTestSupport.h"

#import <QuartzCore/QuartzCore.h>

#import "platform/QuartzCore/TVAnimationClock.h"

// Records every frame it is given and answers a fixed resize time.
@interface TVRecordingWindow : NSWindow {
  NSMutableArray *_frames;
  NSMutableArray *_times;
  NSTimeInterval _resizeTime;
}
@property(nonatomic, readonly) NSMutableArray *frames;
@property(nonatomic, readonly) NSMutableArray *times;
@property(nonatomic, assign) NSTimeInterval resizeTime;
@end

@implementation TVRecordingWindow
@synthesize frames = _frames;
@synthesize times = _times;
@synthesize resizeTime = _resizeTime;

- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSUInteger)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
  self = [super initWithContentRect:rect styleMask:style backing:backing defer:defer];
  if (self != nil) {
    _frames = [NSMutableArray new];
    _times = [NSMutableArray new];
  }
  return self;
}

- (void)dealloc {
  [_times release];
  [_frames release];
  [super dealloc];
}

- (void)setFrame:(NSRect)frame display:(BOOL)display {
  [_frames addObject:[NSValue valueWithRect:frame]];
  [_times addObject:[NSNumber numberWithDouble:CACurrentMediaTime()]];
  [super setFrame:frame display:display];
}

- (NSTimeInterval)animationResizeTime:(NSRect)frame {
  return _resizeTime;
}

@end

namespace {

class WindowFrameAnimation : public WindowServerTest {
 protected:
  void SetUp() override {
    WindowServerTest::SetUp();
    if (IsSkipped()) return;
    TVAnimationClockSetManual(YES);
    window_.reset([[TVRecordingWindow alloc] initWithContentRect:NSMakeRect(100, 100, 200, 100)
                                                       styleMask:NSBorderlessWindowMask
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO]);
    [window_.get() setReleasedWhenClosed:NO];
    [window_.get() orderFrontRegardless];
    [[window_.get() frames] removeAllObjects];
    [[window_.get() times] removeAllObjects];
  }
  void TearDown() override {
    if (window_.get() != nil) {
      [window_.get() close];
      window_.reset();
      TVAnimationClockSetManual(NO);
    }
    WindowServerTest::TearDown();
  }
  NSRect FrameAt(NSUInteger i) { return [[[window_.get() frames] objectAtIndex:i] rectValue]; }

  Owned<TVRecordingWindow> window_;
};

TEST_F(WindowFrameAnimation, MovesOverTheResizeTimeEasedAndEndsOnTarget) {
  TVRecordingWindow *window = window_.get();
  [window setResizeTime:0.5];
  NSRect target = NSMakeRect(300, 200, 400, 300);
  CFTimeInterval start = CACurrentMediaTime();
  [window setFrame:target display:YES animate:YES];
  CFTimeInterval end = CACurrentMediaTime();

  EXPECT_TRUE(NSEqualRects([window frame], target));
  EXPECT_NEAR(end - start, 0.5, 1.0 / 60 + 1e-9);
  NSUInteger count = [[window frames] count];
  EXPECT_GE(count, 30u);
  EXPECT_LE(count, 32u);
  // Eased: the first step is far shorter than a linear one (200 / 30).
  EXPECT_LT(NSMinX(FrameAt(0)) - 100, 2.0);
  // Halfway in time is halfway in space (the curve is symmetric).
  bool sawHalfway = false;
  for (NSUInteger i = 0; i < count; i++) {
    double t = [[[window times] objectAtIndex:i] doubleValue] - start;
    if (std::fabs(t - 0.25) < 1e-6) {
      sawHalfway = true;
      EXPECT_TRUE(NSEqualRects(FrameAt(i), NSMakeRect(200, 150, 300, 200))) << [NSStringFromRect(FrameAt(i)) UTF8String];
    }
  }
  EXPECT_TRUE(sawHalfway);
  // Never back, never past the target.
  for (NSUInteger i = 1; i < count; i++) {
    EXPECT_GE(NSMinX(FrameAt(i)), NSMinX(FrameAt(i - 1)));
    EXPECT_LE(NSWidth(FrameAt(i)), 400);
  }
}

TEST_F(WindowFrameAnimation, NoAnimationOrNoTimeJumpsInOneStep) {
  TVRecordingWindow *window = window_.get();
  [window setResizeTime:0.5];
  [window setFrame:NSMakeRect(10, 20, 30, 40) display:YES animate:NO];
  EXPECT_EQ([[window frames] count], 1u);
  [window setResizeTime:0];
  [window setFrame:NSMakeRect(50, 60, 70, 80) display:YES animate:YES];
  EXPECT_EQ([[window frames] count], 2u);
  [window setResizeTime:NAN];
  [window setFrame:NSMakeRect(20, 20, 70, 80) display:YES animate:YES];
  EXPECT_EQ([[window frames] count], 3u);
  EXPECT_TRUE(NSEqualRects([window frame], NSMakeRect(20, 20, 70, 80)));
  // A non-finite target is refused.
  [window setResizeTime:0.2];
  [window setFrame:NSMakeRect(INFINITY, 0, 10, 10) display:YES animate:YES];
  EXPECT_TRUE(NSEqualRects([window frame], NSMakeRect(20, 20, 70, 80)));
  // Off screen there is nothing to watch: one step.
  [window orderOut:nil];
  [window setFrame:NSMakeRect(0, 0, 90, 90) display:NO animate:YES];
  EXPECT_EQ([[window frames] count], 4u);
}

// Events queued before the call are handled while the frame moves.
TEST_F(WindowFrameAnimation, PumpsEventsWhileItRuns) {
  TVRecordingWindow *window = window_.get();
  [window setResizeTime:0.1];
  NSEvent *marker = [NSEvent otherEventWithType:NSApplicationDefined
                                       location:NSZeroPoint
                                  modifierFlags:0
                                      timestamp:0
                                   windowNumber:[window windowNumber]
                                        context:nil
                                        subtype:42
                                          data1:0
                                          data2:0];
  [NSApp postEvent:marker atStart:NO];
  [window setFrame:NSMakeRect(150, 150, 250, 120) display:YES animate:YES];
  NSEvent *left = [NSApp nextEventMatchingMask:NSApplicationDefinedMask
                                     untilDate:[NSDate distantPast]
                                        inMode:NSDefaultRunLoopMode
                                       dequeue:YES];
  EXPECT_EQ(left, (NSEvent *)nil);
}

}  // namespace
