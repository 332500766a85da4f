#import "support/TestSupport.h"

bool RunMainLoopUntil(const std::function<bool()> &done, double seconds) {
  NSDate *limit = [NSDate dateWithTimeIntervalSinceNow:seconds];
  while (!done()) {
    if ([limit timeIntervalSinceNow] <= 0) {
      return false;
    }
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.01]];
    [pool drain];
  }
  return true;
}

bool HasWindowServer() {
  return NSApp != nil;
}

NSEvent *KeyDownEvent(NSWindow *window, NSString *characters, NSString *charactersIgnoringModifiers,
                      NSUInteger modifierFlags) {
  return [NSEvent keyEventWithType:NSKeyDown
                          location:NSZeroPoint
                     modifierFlags:modifierFlags
                         timestamp:0
                      windowNumber:[window windowNumber]
                           context:nil
                        characters:characters
       charactersIgnoringModifiers:charactersIgnoringModifiers
                         isARepeat:NO
                           keyCode:0];
}

@implementation TVDeathWatch

@synthesize deaths = _deaths;

- (void)dealloc {
  if (_deaths != NULL) {
    (*_deaths)++;
  }
  [super dealloc];
}

@end

@implementation TVKeyRecorderView

@synthesize received = _received;

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _received = [NSMutableArray new];
  }
  return self;
}

- (void)dealloc {
  [_received release];
  [super dealloc];
}

- (BOOL)acceptsFirstResponder {
  return YES;
}

- (void)keyDown:(NSEvent *)event {
  [_received addObject:[event characters]];
}

@end

NSWindow *NewKeyWindowWithRecorder() {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 200, 150)
                                                 styleMask:NSTitledWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  TVKeyRecorderView *recorder =
      [[[TVKeyRecorderView alloc] initWithFrame:NSMakeRect(0, 0, 200, 150)] autorelease];
  [window setContentView:recorder];
  [window makeKeyAndOrderFront:nil];
  [window makeFirstResponder:recorder];
  return window;
}

void SendMouseEvent(NSView *view, NSEventType type, NSPoint point) {
  NSPoint inWindow = [view convertPoint:point toView:nil];
  [NSApp sendEvent:[NSEvent mouseEventWithType:type
                                      location:inWindow
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:[[view window] windowNumber]
                                       context:nil
                                   eventNumber:0
                                    clickCount:1
                                      pressure:1]];
}

@implementation TVFixedDate
// NSDate's primitive initialiser (its -init comes here).
- (instancetype)initWithTimeIntervalSinceReferenceDate:(NSTimeInterval)interval {
  _interval = interval;
  return self;
}
- (NSTimeInterval)timeIntervalSinceReferenceDate {
  return _interval;
}
@end

void PumpEvents(double seconds) {
  NSDate *end = [NSDate dateWithTimeIntervalSinceNow:seconds];
  do {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.01]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil) {
      [NSApp sendEvent:event];
    }
    [pool drain];
  } while ([end timeIntervalSinceNow] > 0);
}
