// Side tables for the window and view state of the platform layer's window
// API, keyed by the object's address and cleared when it deallocates.

#import "platform/AppKit/windows/TVWindowPlatformState.h"

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@implementation _TVWindowPlatformState

- (void)dealloc {
  [_buttons release];
  _buttons = nil;
  [_appearance release];
  _appearance = nil;
  [super dealloc];
}

@end

@implementation _TVVisualEffectSettings

- (void)dealloc {
  [_maskImage release];
  _maskImage = nil;
  [super dealloc];
}

@end

namespace {

NSMapTable *windowStates = NULL;
NSMapTable *viewAppearances = NULL;
NSMapTable *effectSettings = NULL;

NSMapTable *NewTable() {
  return NSCreateMapTable(NSNonOwnedPointerMapKeyCallBacks, NSObjectMapValueCallBacks, 16);
}

// Takes the entry out before releasing it, so that a release that reaches
// back into the table finds nothing.
void RemoveEntry(NSMapTable *table, void *key) {
  if (table == NULL) {
    return;
  }
  id value = (id)NSMapGet(table, key);
  if (value != nil) {
    [value retain];
    NSMapRemove(table, key);
    [value release];
  }
}

void (*originalWindowDealloc)(id, SEL) = NULL;
void (*originalViewDealloc)(id, SEL) = NULL;

void TVWindowDealloc(id window, SEL selector) {
  RemoveEntry(windowStates, window);
  originalWindowDealloc(window, selector);
}

void TVViewDealloc(id view, SEL selector) {
  RemoveEntry(viewAppearances, view);
  RemoveEntry(effectSettings, view);
  originalViewDealloc(view, selector);
}

}  // namespace

_TVWindowPlatformState *TVWindowPlatformState(NSWindow *window, BOOL create) {
  if (window == nil) {
    return nil;
  }
  _TVWindowPlatformState *state = (_TVWindowPlatformState *)NSMapGet(windowStates, window);
  if (state == nil && create) {
    state = [[_TVWindowPlatformState alloc] init];
    NSMapInsert(windowStates, window, state);
    [state release];
  }
  return state;
}

NSAppearance *TVViewAppearance(NSView *view) {
  return view == nil ? nil : (NSAppearance *)NSMapGet(viewAppearances, view);
}

void TVSetViewAppearance(NSView *view, NSAppearance *appearance) {
  if (view == nil) {
    return;
  }
  if (appearance == nil) {
    RemoveEntry(viewAppearances, view);
  } else {
    NSMapInsert(viewAppearances, view, appearance);
  }
}

_TVVisualEffectSettings *TVVisualEffectSettings(NSView *view) {
  if (view == nil) {
    return nil;
  }
  _TVVisualEffectSettings *settings = (_TVVisualEffectSettings *)NSMapGet(effectSettings, view);
  if (settings == nil) {
    settings = [[_TVVisualEffectSettings alloc] init];
    NSMapInsert(effectSettings, view, settings);
    [settings release];
  }
  return settings;
}

@interface _TVWindowPlatformStateHooks : NSObject
@end

@implementation _TVWindowPlatformStateHooks

+ (void)load {
  windowStates = NewTable();
  viewAppearances = NewTable();
  effectSettings = NewTable();
  originalWindowDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      [NSWindow class], @selector(dealloc), (IMP)TVWindowDealloc);
  originalViewDealloc =
      (void (*)(id, SEL))TVReplaceInstanceMethod([NSView class], @selector(dealloc), (IMP)TVViewDealloc);
}

@end
