// Shared helpers for the window tests: real windows under the window
// server, the animation clock driven by hand, pixels read back.
#pragma once

#import <AppKit/AppKit.h>

#import "platform/AnimationTestSupport.h"
#import "platform/GraphicsTestSupport.h"

// Records the names (and objects) of the notifications it observes.
@interface TVWindowNotificationLog : NSObject {
  NSMutableArray *_names;
}
@property(nonatomic, readonly) NSMutableArray *names;
- (void)observe:(NSString *)name object:(id)object;
// The zoom effect's two notifications and the window's resize and move.
- (void)observeZoomEffectOf:(NSWindow *)window;
@end

// Records every frame set through -setFrame:display:.
@interface TVWindowFrameRecorder : NSWindow {
  NSMutableArray *_frames;
}
@property(nonatomic, readonly) NSMutableArray *frames;
// A borderless recorder, not released when closed (+1).
+ (instancetype)newBorderlessWithContentRect:(NSRect)rect;
@end

// A view filled with one colour.
@interface TVWindowFilledView : NSView {
  NSColor *_color;
}
- (instancetype)initWithFrame:(NSRect)frame color:(NSColor *)color;
@end

// On the manual clock, with a window server (skipped without) and an
// application that has finished launching (key windows are tracked).
class WindowTest : public AnimationTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Pumps events for `seconds` (window-server traffic, queued blocks).
  void Pump(double seconds = 0.05);
  // Any animation window still on screen.
  bool AnimationWindowOnScreen();
};

// The pixels of `view` as its window shows them (+1; rows from the top).
NSBitmapImageRep *NewViewSnapshot(NSView *view);

// Pixel (x, y) of a view snapshot in points, y from the bottom, at `scale`
// pixels per point.
Pixel SnapshotPixel(NSBitmapImageRep *rep, double x, double y, double scale = 1.0);

// A titled or borderless window (released when the test ends), content
// filled with `color`.
NSWindow *NewFilledWindow(NSRect frame, NSUInteger styleMask, NSColor *color);
