#import <Talvo/VXPopoverViewsSegmentedControl.h>

#import <Talvo/VXBottomPopupWindow.h>
#import "windows/TVWindowGeometry+Private.h"

#include <cmath>
#include <vector>

#import "controls/VXPopoverViewsSegmentedControl+Private.h"
#include "core/controls/ControlGeometry.hpp"
#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// Left mouse down, right mouse down and right mouse up (bit 0 names no
// event type).
static const NSEventMask kDismissingClicks = 27;

static NSString *SegmentKey(NSInteger segment) {
  return [NSString stringWithFormat:@"%ld", (long)segment];
}

// Runs a block for every notification of one object, while registered.
@interface _VXPopoverWindowObserver : NSObject {
  void (^_handler)(NSNotification *);
}
- (instancetype)initWithHandler:(void (^)(NSNotification *))handler;
- (void)_observe:(NSNotification *)notification;
@end

@implementation _VXPopoverWindowObserver

- (instancetype)initWithHandler:(void (^)(NSNotification *))handler {
  self = [super init];
  if (self != nil) {
    _handler = [handler copy];
  }
  return self;
}

- (void)dealloc {
  TalvoDestroy(_handler);
  [super dealloc];
}

- (void)_observe:(NSNotification *)notification {
  // The handler may remove (and release) this observer.
  [[self retain] autorelease];
  void (^handler)(NSNotification *) = [[_handler retain] autorelease];
  if (handler != nil) handler(notification);
}

@end

@implementation VXPopoverViewsSegmentedControl

#pragma mark - Lifecycle

- (void)awakeFromNib {
  if (popoverWindow != nil) return;
  popoverWindow = [[VXBottomPopupWindow alloc] init];
  [popoverWindow setDelegate:self];
}

- (void)dealloc {
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  if (lostFocusObserver != nil) {
    [[NSNotificationCenter defaultCenter] removeObserver:lostFocusObserver];
    TalvoDestroy(lostFocusObserver);
  }
  if (localMouseDownEventMonitor != nil) {
    [NSEvent removeMonitor:localMouseDownEventMonitor];
    TalvoDestroy(localMouseDownEventMonitor);
  }
  [popoverWindow setDelegate:nil];
  TalvoDestroy(popoverWindow);
  TalvoDestroy(accessoryViews);
  [super dealloc];
}

#pragma mark - Public

- (void)setAccessoryView:(NSView *)view forSegment:(NSInteger)segment {
  if (accessoryViews == nil) {
    accessoryViews = [[NSMutableDictionary alloc] init];
  }
  if (view != nil && ![view isKindOfClass:[NSView class]]) return;
  [accessoryViews setValue:view forKey:SegmentKey(segment)];
}

- (NSView *)accessoryViewForSegment:(NSInteger)segment {
  return [accessoryViews valueForKey:SegmentKey(segment)];
}

- (void)mouseDown:(NSEvent *)event {
  // Without an event AppKit's tracking would wait for a mouse-up forever.
  if (![event isKindOfClass:[NSEvent class]]) return;
  [super mouseDown:event];
  [self showPopoverView];
}

- (void)showPopoverView {
  [self dismissPopoverView];
  NSView *view = [accessoryViews objectForKey:SegmentKey([self selectedSegment])];
  if (![view isKindOfClass:[NSView class]]) return;
  NSWindow *window = [self window];
  if (window == nil) return;
  if (popoverWindow == nil) [self awakeFromNib];
  if (popoverWindow == nil) return;

  [self _removeOtherAccessoryViewsFromPopup:view];
  // The popup takes the view's size, so that constraints pinning the view
  // inside it start satisfied.
  NSRect contentRect = NSMakeRect(0, 0, NSWidth([view frame]), NSHeight([view frame]));
  [popoverWindow setFrame:[popoverWindow frameRectForContentRect:contentRect] display:NO];
  [popoverWindow setContentView:view];
  // Constraints size the popup to its content before it is placed.
  if ([popoverWindow respondsToSelector:@selector(layoutIfNeeded)]) {
    [popoverWindow layoutIfNeeded];
  }
  [[popoverWindow contentView] setWantsLayer:YES];
  NSRect popup = [popoverWindow frame];
  NSRect target = [self _popupFrameForSize:popup.size];

  [popoverWindow setFrame:NSMakeRect(target.origin.x + target.size.width * 0.5,
                                     target.origin.y + target.size.height, 1.0, 1.0)
                  display:YES];
  [window addChildWindow:popoverWindow ordered:NSWindowAbove];
  [popoverWindow orderFront:self];
  [popoverWindow setFrame:target display:YES animate:YES];

  [self _watchClicksAndWindow:window];
}

- (void)dismissPopoverView {
  if ([popoverWindow isVisible]) {
    [popoverWindow orderOut:self];
    [popoverWindow setContentView:nil];
    [[self window] removeChildWindow:popoverWindow];
  }
  if (lostFocusObserver != nil) {
    [[NSNotificationCenter defaultCenter] removeObserver:lostFocusObserver];
    TalvoDestroy(lostFocusObserver);
  }
  if (localMouseDownEventMonitor != nil) {
    [NSEvent removeMonitor:localMouseDownEventMonitor];
    TalvoDestroy(localMouseDownEventMonitor);
  }
}

#pragma mark - Private

- (void)_watchClicksAndWindow:(NSWindow *)window {
  VXBottomPopupWindow *popup = popoverWindow;
  id monitor = [NSEvent
      addLocalMonitorForEventsMatchingMask:kDismissingClicks
                                   handler:^NSEvent *(NSEvent *event) {
                                     NSWindow *eventWindow = [event window];
                                     if (eventWindow == popup) return event;
                                     if (eventWindow != [self window] &&
                                         [eventWindow isMemberOfClass:[NSColorPanel class]]) {
                                       return event;
                                     }
                                     [self dismissPopoverView];
                                     return event;
                                   }];
  localMouseDownEventMonitor = [monitor retain];

  _VXPopoverWindowObserver *observer =
      [[_VXPopoverWindowObserver alloc] initWithHandler:^(NSNotification *notification) {
        NSString *name = [notification name];
        if (![name isEqualToString:NSWindowDidResignKeyNotification] &&
            ![name isEqualToString:NSWindowDidResizeNotification] &&
            ![name isEqualToString:NSWindowDidMiniaturizeNotification]) {
          return;
        }
        NSWindow *key = [NSApp keyWindow];
        if (key == nil && [name isEqualToString:NSWindowDidResignKeyNotification]) {
          // Where the old key window resigns before the new one is key, the
          // new one is known only once the change is complete.
          [self performSelector:@selector(_dismissUnlessKeyOrColorPanel)
                     withObject:nil
                     afterDelay:0
                        inModes:@[
                          NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode
                        ]];
          return;
        }
        if ([key isMemberOfClass:[NSColorPanel class]]) return;
        [self dismissPopoverView];
      }];
  [[NSNotificationCenter defaultCenter] addObserver:observer
                                           selector:@selector(_observe:)
                                               name:nil
                                             object:window];
  lostFocusObserver = observer;
}

- (void)_dismissUnlessKeyOrColorPanel {
  NSWindow *key = [NSApp keyWindow];
  if (key != nil && key == [self window]) return;
  if ([key isMemberOfClass:[NSColorPanel class]]) return;
  [self dismissPopoverView];
}

// Emptying the popup leaves the view it showed inside it, pinned to its
// edges. Another segment's view left there would be laid out at the new
// view's size (and take it as its own the next time it shows) and fight its
// constraints, so the views of the other segments are taken out first.
- (void)_removeOtherAccessoryViewsFromPopup:(NSView *)shown {
  NSView *holder = [popoverWindow contentView];
  NSArray *views = [accessoryViews allValues];
  for (NSView *subview in [[[holder subviews] copy] autorelease]) {
    if (subview != shown && [views indexOfObjectIdenticalTo:subview] != NSNotFound) {
      [subview removeFromSuperview];
    }
  }
}

- (NSRect)_popupFrameForSize:(NSSize)size {
  NSWindow *window = [self window];
  NSRect screen = NSZeroRect;
  if (window != nil) {
    screen = [window convertRectToScreen:[self convertRect:[self bounds] toView:nil]];
  }
  NSInteger count = [self segmentCount];
  std::vector<double> widths;
  for (NSInteger i = 0; i < count; ++i) widths.push_back([self widthForSegment:i]);
  // Segment widths are in points, screen rects in frame units (device
  // pixels on GNUstep at 2x): place in points, then scale back.
  double k = TVFrameUnitsPerPoint(window);
  double x = k * talvo::controls::SegmentPopupX(screen.origin.x / k, size.width / k, widths,
                                                (long)[self selectedSegment]);
  double y = screen.origin.y - size.height;
  return NSMakeRect(x, y, size.width, size.height);
}

- (VXBottomPopupWindow *)_popoverWindow {
  return popoverWindow;
}

- (BOOL)_isWatching {
  return localMouseDownEventMonitor != nil || lostFocusObserver != nil;
}

@end
