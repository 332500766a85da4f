// Display accommodations read from the user defaults, and the workspace
// notification when one of them changes.

#import <AppKit/AppKit.h>

#include <objc/runtime.h>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

NSString *const NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification =
    @"NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification";

namespace {

NSString *const kReduceMotion = @"reduceMotion";
NSString *const kReduceTransparency = @"reduceTransparency";
NSString *const kIncreaseContrast = @"increaseContrast";

// The options as one bit set, to tell a change of them from any other
// change of the defaults.
unsigned CurrentOptions() {
  NSUserDefaults *defaults = [NSUserDefaults standardUserDefaults];
  return ([defaults boolForKey:kReduceMotion] ? 1u : 0u) |
         ([defaults boolForKey:kReduceTransparency] ? 2u : 0u) |
         ([defaults boolForKey:kIncreaseContrast] ? 4u : 0u);
}

}  // namespace

// Watches the defaults from the first read of an option on; lives as long
// as the process.
@interface _TVAccessibilityOptionsWatcher : NSObject {
  unsigned _options;
}
+ (void)startWatching;
@end

@implementation _TVAccessibilityOptionsWatcher

+ (void)startWatching {
  static _TVAccessibilityOptionsWatcher *watcher = nil;
  if (watcher != nil) {
    return;
  }
  watcher = [[self alloc] init];
  watcher->_options = CurrentOptions();
  [[NSNotificationCenter defaultCenter] addObserver:watcher
                                           selector:@selector(defaultsDidChange:)
                                               name:NSUserDefaultsDidChangeNotification
                                             object:nil];
}

- (void)defaultsDidChange:(NSNotification *)notification {
  unsigned options = CurrentOptions();
  if (options == _options) {
    return;
  }
  _options = options;
  // GNUstep's workspace centre sends what is posted on it to every
  // application through the distributed centre; each application sees
  // its own defaults change, so this one is delivered here only, by the
  // plain notification centre's posting.
  NSWorkspace *workspace = [NSWorkspace sharedWorkspace];
  NSNotificationCenter *center = [workspace notificationCenter];
  NSNotification *note =
      [NSNotification notificationWithName:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                                    object:workspace];
  SEL post = @selector(postNotification:);
  if ([center isKindOfClass:[NSNotificationCenter class]]) {
    IMP local = class_getMethodImplementation([NSNotificationCenter class], post);
    ((void (*)(id, SEL, NSNotification *))local)(center, post, note);
  }
}

@end

@implementation NSWorkspace (TalvoAccessibility)

- (BOOL)accessibilityDisplayShouldReduceMotion {
  [_TVAccessibilityOptionsWatcher startWatching];
  return [[NSUserDefaults standardUserDefaults] boolForKey:kReduceMotion];
}

- (BOOL)accessibilityDisplayShouldReduceTransparency {
  [_TVAccessibilityOptionsWatcher startWatching];
  return [[NSUserDefaults standardUserDefaults] boolForKey:kReduceTransparency];
}

- (BOOL)accessibilityDisplayShouldIncreaseContrast {
  [_TVAccessibilityOptionsWatcher startWatching];
  return [[NSUserDefaults standardUserDefaults] boolForKey:kIncreaseContrast];
}

@end
