// Shared by the cell and control tests: a window to put controls in, clicks
// and drags as real queued events, and pixels read back from a view.
#pragma once

#import <AppKit/AppKit.h>

#import "support/TestSupport.h"

#include <initializer_list>

// Posts a mouse event for `view`'s window at `point` (view coordinates) to
// the end of the event queue.
inline void PostMouse(NSView *view, NSEventType type, NSPoint point) {
  NSPoint inWindow = [view convertPoint:point toView:nil];
  [NSApp postEvent:[NSEvent mouseEventWithType:type
                                      location:inWindow
                                 modifierFlags:0
                                     timestamp:[[NSProcessInfo processInfo] systemUptime]
                                  windowNumber:[[view window] windowNumber]
                                       context:nil
                                   eventNumber:0
                                    clickCount:1
                                      pressure:1]
           atStart:NO];
}

// Dispatches queued events until none is left, earlier tests' leftovers too
// (tracking loops inside take the events queued after the one that started
// them).
inline void DrainEvents() {
  for (int i = 0; i < 100000; i++) {
    NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.05]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event == nil) {
      return;
    }
    [NSApp sendEvent:event];
  }
}

// A click: down and up at `point`, then dispatched.
inline void Click(NSView *view, NSPoint point) {
  PostMouse(view, NSLeftMouseDown, point);
  PostMouse(view, NSLeftMouseUp, point);
  DrainEvents();
}

// A press at `from`, drags through `path`, release at the last point.
inline void Drag(NSView *view, NSPoint from, std::initializer_list<NSPoint> path) {
  PostMouse(view, NSLeftMouseDown, from);
  NSPoint last = from;
  for (NSPoint point : path) {
    PostMouse(view, NSLeftMouseDragged, point);
    last = point;
  }
  PostMouse(view, NSLeftMouseUp, last);
  DrainEvents();
}

// The view's pixels after a display; row 0 is the top of the view.
inline NSBitmapImageRep *Grab(NSView *view) {
  [view display];
  [view lockFocus];
  NSBitmapImageRep *rep = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
  [view unlockFocus];
  return rep;
}

// One pixel's red, green and blue (0...255), at (x, y) from the top left.
struct RGB {
  int r, g, b;
};
inline RGB PixelAt(NSBitmapImageRep *rep, int x, int y) {
  NSUInteger p[5] = {0, 0, 0, 0, 0};
  [rep getPixel:p atX:x y:y];
  return {(int)p[0], (int)p[1], (int)p[2]};
}

// Records the action messages it receives, and what the sender said then.
@interface TVActionRecorder : NSObject {
 @public
  int _count;
  NSInteger _selectedSegment;
  double _value;
}
- (void)act:(id)sender;
@end

// A fixture with a key window of 400x300 to put controls in.
class ControlWindowTest : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    [NSApplication sharedApplication];
    // Key windows exist only once the application has finished launching.
    static bool launched = false;
    if (!launched) {
      [NSApp finishLaunching];
      launched = true;
    }
    window_.reset([[NSWindow alloc] initWithContentRect:NSMakeRect(60, 60, 400, 300)
                                              styleMask:NSTitledWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]);
    [window_.get() setReleasedWhenClosed:NO];
    [window_.get() makeKeyAndOrderFront:nil];
    DrainEvents();
    // A click in a window that is not key would only make it key.
    ASSERT_TRUE([window_.get() isKeyWindow]);
    recorder_.reset([TVActionRecorder new]);
  }
  void TearDown() override {
    if (window_.get() != nil) {
      [window_.get() orderOut:nil];
      [window_.get() close];
    }
    window_.reset();
    recorder_.reset();
    PooledTest::TearDown();
  }
  // Adds `control` (+1, taken over) to the window, aimed at the recorder.
  template <typename T>
  T *Add(T *control) {
    [[window_.get() contentView] addSubview:control];
    [control release];
    if ([control isKindOfClass:[NSControl class]]) {
      [(NSControl *)control setTarget:recorder_.get()];
      [(NSControl *)control setAction:@selector(act:)];
    }
    return control;
  }
  TVActionRecorder *recorder() { return recorder_.get(); }

  Owned<NSWindow> window_;
  Owned<TVActionRecorder> recorder_;
};
