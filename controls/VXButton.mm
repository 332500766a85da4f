#import <Talvo/VXButton.h>

#import <Talvo/VXButtonCell.h>

#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXButton

#pragma mark - Lifecycle

+ (Class)cellClass {
  return [VXButtonCell class];
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  if (_trackingTag != 0) {
    [self removeTrackingRect:_trackingTag];
    _trackingTag = 0;
  }
  TalvoDestroy(_trackingArea);
  [super dealloc];
}

#pragma mark - Public

- (void)mouseEntered:(NSEvent *)event {
  [self _setCellMouseAbove:YES];
}

- (void)mouseExited:(NSEvent *)event {
  [self _setCellMouseAbove:NO];
}

- (void)updateTrackingAreas {
  // The area or rectangle tracked before is given up: one at a time.
  if (_trackingArea != nil && [self respondsToSelector:@selector(removeTrackingArea:)]) {
    [self removeTrackingArea:_trackingArea];
  }
  if (_trackingTag != 0) {
    [self removeTrackingRect:_trackingTag];
    _trackingTag = 0;
  }
  NSRect bounds = [self bounds];
  NSTrackingArea *area =
      [[NSTrackingArea alloc] initWithRect:bounds
                                   options:NSTrackingMouseEnteredAndExited | NSTrackingActiveAlways
                                     owner:self
                                  userInfo:nil];
  TalvoDestroy(_trackingArea);
  _trackingArea = area;
  if ([self respondsToSelector:@selector(addTrackingArea:)]) {
    // Areas follow the button when it moves or resizes.
    [self addTrackingArea:_trackingArea];
  } else if ([self window] != nil) {
    _trackingTag = [self addTrackingRect:bounds owner:self userData:NULL assumeInside:NO];
  }
  if ([NSView instancesRespondToSelector:@selector(updateTrackingAreas)]) {
    [super updateTrackingAreas];
  }
}

- (void)viewWillMoveToWindow:(NSWindow *)newWindow {
  // The old window must not keep a rectangle that names this button.
  if (_trackingTag != 0) {
    [self removeTrackingRect:_trackingTag];
    _trackingTag = 0;
  }
  [super viewWillMoveToWindow:newWindow];
}

- (void)viewDidMoveToWindow {
  [super viewDidMoveToWindow];
  NSWindow *window = [self window];
  if (window == nil) return;
  NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
  [center addObserver:self
             selector:@selector(_updateDisplay:)
                 name:NSWindowDidBecomeKeyNotification
               object:window];
  [center addObserver:self
             selector:@selector(_updateDisplay:)
                 name:NSWindowDidResignKeyNotification
               object:window];
  [self updateTrackingAreas];
}

#pragma mark - Private

- (void)_setCellMouseAbove:(BOOL)above {
  id cell = [self cell];
  if ([cell respondsToSelector:@selector(setMouseAbove:)]) {
    [cell setMouseAbove:above];
  }
  [self setNeedsDisplay:YES];
}

- (void)_updateDisplay:(NSNotification *)notification {
  [self setNeedsDisplay:YES];
}

@end
