// Local event monitors for GNUstep: a hook on -[NSApplication sendEvent:]
// runs the installed handlers before the original dispatch.

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@interface _TVLocalEventMonitor : NSObject {
 @public
  NSEventMask _mask;
  NSEvent * (^_handler)(NSEvent *);
  BOOL _removed;
}
@end

@implementation _TVLocalEventMonitor

- (void)dealloc {
  [_handler release];
  [super dealloc];
}

@end

// Installed monitors in installation order (main thread only).
static NSMutableArray *installedMonitors = nil;
static void (*originalSendEvent)(id, SEL, NSEvent *) = NULL;

static void TVSendEventThroughMonitors(id application, SEL selector, NSEvent *event) {
  if ([installedMonitors count] > 0 && event != nil) {
    NSEventMask eventBit = 1ull << [event type];
    // A snapshot retains every monitor (and with it its handler) while the
    // handlers run, so a handler may remove itself or any other monitor.
    NSArray *snapshot = [NSArray arrayWithArray:installedMonitors];
    for (_TVLocalEventMonitor *monitor in snapshot) {
      if (monitor->_removed || (monitor->_mask & eventBit) == 0) {
        continue;
      }
      event = monitor->_handler(event);
      if (event == nil) {
        return;
      }
      eventBit = 1ull << [event type];
    }
  }
  originalSendEvent(application, selector, event);
}

@implementation NSEvent (TalvoPlatformMonitors)

+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                   handler:(NSEvent * (^)(NSEvent *))block {
  if (block == nil) {
    return nil;
  }
  if (originalSendEvent == NULL) {
    originalSendEvent = (void (*)(id, SEL, NSEvent *))TVReplaceInstanceMethod(
        [NSApplication class], @selector(sendEvent:), (IMP)TVSendEventThroughMonitors);
    installedMonitors = [NSMutableArray new];
  }
  _TVLocalEventMonitor *monitor = [[_TVLocalEventMonitor new] autorelease];
  monitor->_mask = mask;
  monitor->_handler = [block copy];
  [installedMonitors addObject:monitor];
  return monitor;
}

+ (void)removeMonitor:(id)eventMonitor {
  if (![eventMonitor isKindOfClass:[_TVLocalEventMonitor class]]) {
    return;
  }
  _TVLocalEventMonitor *monitor = eventMonitor;
  monitor->_removed = YES;
  [installedMonitors removeObjectIdenticalTo:monitor];
}

@end
