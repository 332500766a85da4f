// Named appearances and their inheritance. GNUstep 0.29's NSAppearance
// makes a new object (+1) for any name and nothing asks views or windows
// for one. Here the four named appearances are shared instances, unknown
// names answer nil, and views, windows and the application carry an
// appearance that their descendants inherit. While a view draws, the
// current appearance is the view's effective one.

#import "platform/AppKit/windows/TVWindowPlatformState.h"

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

NSMutableDictionary *namedAppearances = nil;  // name -> NSAppearance, for the process
NSAppearance *applicationAppearance = nil;
NSAppearance *drawingAppearance = nil;  // set while a view draws

NSString *CanonicalName(NSString *name) {
  NSString *known[] = {NSAppearanceNameAqua, NSAppearanceNameDarkAqua,
                       NSAppearanceNameVibrantLight, NSAppearanceNameVibrantDark};
  for (NSString *candidate : known) {
    if ([name isEqualToString:candidate]) {
      return candidate;
    }
  }
  return nil;
}

bool IsDarkName(NSString *name) {
  return [name isEqualToString:NSAppearanceNameDarkAqua] ||
         [name isEqualToString:NSAppearanceNameVibrantDark];
}

bool IsVibrantName(NSString *name) { return [name hasPrefix:@"NSAppearanceNameVibrant"]; }

// GNUstep answers nil. The exact name first, then one of the same darkness
// and vibrancy, then one of the same darkness.
NSString *TVBestMatch(NSAppearance *self, SEL selector, NSArray *names) {
  if (![names isKindOfClass:[NSArray class]]) {
    return nil;
  }
  for (id name in names) {
    if ([name isKindOfClass:[NSString class]] && [name isEqualToString:[self name]]) {
      return name;
    }
  }
  bool dark = IsDarkName([self name]);
  bool vibrant = IsVibrantName([self name]);
  NSString *fallback = nil;
  for (id name in names) {
    if (![name isKindOfClass:[NSString class]] || CanonicalName(name) == nil ||
        IsDarkName(name) != dark) {
      continue;
    }
    if (IsVibrantName(name) == vibrant) {
      return name;
    }
    if (fallback == nil) {
      fallback = name;
    }
  }
  return fallback;
}

id (*originalInitWithName)(id, SEL, NSString *, NSBundle *) = NULL;
NSAppearance *(*originalCurrentAppearance)(id, SEL) = NULL;
void (*originalDisplayRect)(id, SEL, NSRect, NSGraphicsContext *) = NULL;

NSAppearance *TVAppearanceNamed(id cls, SEL selector, NSString *name) {
  if (![name isKindOfClass:[NSString class]]) {
    return nil;
  }
  NSString *canonical = CanonicalName(name);
  if (canonical == nil) {
    return nil;
  }
  NSAppearance *appearance = [namedAppearances objectForKey:canonical];
  if (appearance == nil) {
    appearance = [[NSAppearance alloc] initWithAppearanceNamed:canonical bundle:nil];
    if (appearance == nil) {
      return nil;
    }
    if (namedAppearances == nil) {
      namedAppearances = [[NSMutableDictionary alloc] initWithCapacity:4];
    }
    [namedAppearances setObject:appearance forKey:canonical];
    [appearance release];
  }
  return [[appearance retain] autorelease];
}

// Vibrant appearances allow vibrancy, as on macOS.
id TVInitWithName(NSAppearance *self, SEL selector, NSString *name, NSBundle *bundle) {
  if (![name isKindOfClass:[NSString class]] || CanonicalName(name) == nil) {
    [self release];
    return nil;
  }
  self = originalInitWithName(self, selector, CanonicalName(name), bundle);
  Ivar vibrancy = class_getInstanceVariable([NSAppearance class], "_allowsVibrancy");
  if (self != nil && vibrancy != NULL) {
    BOOL *flag = (BOOL *)((char *)self + ivar_getOffset(vibrancy));
    *flag = IsVibrantName([self name]);
  }
  return self;
}

NSAppearance *Aqua() { return [NSAppearance appearanceNamed:NSAppearanceNameAqua]; }

NSAppearance *TVCurrentAppearance(id cls, SEL selector) {
  if (drawingAppearance != nil) {
    return drawingAppearance;
  }
  NSAppearance *set = originalCurrentAppearance(cls, selector);
  return set != nil ? set : Aqua();
}

NSAppearance *WindowEffectiveAppearance(NSWindow *window) {
  _TVWindowPlatformState *state = TVWindowPlatformState(window, NO);
  if (state != nil && state->_appearance != nil) {
    return state->_appearance;
  }
  return applicationAppearance != nil ? applicationAppearance : Aqua();
}

NSAppearance *ViewEffectiveAppearance(NSView *view) {
  for (NSView *v = view; v != nil; v = [v superview]) {
    NSAppearance *own = TVViewAppearance(v);
    if (own != nil) {
      return own;
    }
  }
  NSWindow *window = [view window];
  return window != nil ? WindowEffectiveAppearance(window)
                       : (applicationAppearance != nil ? applicationAppearance : Aqua());
}

// Each view draws under its own effective appearance; the one before comes
// back afterwards (views draw nested).
void TVDisplayRect(NSView *view, SEL selector, NSRect rect, NSGraphicsContext *context) {
  NSAppearance *outer = drawingAppearance;
  drawingAppearance = [ViewEffectiveAppearance(view) retain];
  @try {
    originalDisplayRect(view, selector, rect, context);
  } @finally {
    [drawingAppearance release];
    drawingAppearance = outer;
  }
}

bool IsAppearanceOrNil(id object) { return object == nil || [object isKindOfClass:[NSAppearance class]]; }

}  // namespace

#pragma mark - NSAppearance

@implementation NSAppearance (TalvoPlatform)

+ (void)load {
  TVReplaceInstanceMethod(object_getClass(self), @selector(appearanceNamed:), (IMP)TVAppearanceNamed);
  originalInitWithName = (id(*)(id, SEL, NSString *, NSBundle *))TVReplaceInstanceMethod(
      self, @selector(initWithAppearanceNamed:bundle:), (IMP)TVInitWithName);
  originalCurrentAppearance = (NSAppearance * (*)(id, SEL)) TVReplaceInstanceMethod(
      object_getClass(self), @selector(currentAppearance), (IMP)TVCurrentAppearance);
  originalDisplayRect = (void (*)(id, SEL, NSRect, NSGraphicsContext *))TVReplaceInstanceMethod(
      [NSView class], @selector(displayRectIgnoringOpacity:inContext:), (IMP)TVDisplayRect);
  TVReplaceInstanceMethod(self, @selector(bestMatchFromAppearancesWithNames:), (IMP)TVBestMatch);
}

- (BOOL)talvo_isDark {
  return IsDarkName([self name]);
}

@end

#pragma mark - Views, windows and the application

@implementation NSView (TalvoAppearance)

- (NSAppearance *)appearance {
  return TVViewAppearance(self);
}

- (void)setAppearance:(NSAppearance *)appearance {
  if (!IsAppearanceOrNil(appearance) || TVViewAppearance(self) == appearance) {
    return;
  }
  TVSetViewAppearance(self, appearance);
  [self setNeedsDisplay:YES];
}

- (NSAppearance *)effectiveAppearance {
  return ViewEffectiveAppearance(self);
}

@end

@implementation NSWindow (TalvoAppearance)

- (NSAppearance *)appearance {
  _TVWindowPlatformState *state = TVWindowPlatformState(self, NO);
  return state != nil ? state->_appearance : nil;
}

- (void)setAppearance:(NSAppearance *)appearance {
  if (!IsAppearanceOrNil(appearance)) {
    return;
  }
  _TVWindowPlatformState *state = TVWindowPlatformState(self, YES);
  if (state->_appearance == appearance) {
    return;
  }
  NSAppearance *old = state->_appearance;
  state->_appearance = [appearance retain];
  [old release];
  [[[self contentView] superview] setNeedsDisplay:YES];
  [[self contentView] setNeedsDisplay:YES];
}

- (NSAppearance *)effectiveAppearance {
  return WindowEffectiveAppearance(self);
}

@end

@implementation NSApplication (TalvoAppearance)

- (NSAppearance *)appearance {
  return applicationAppearance;
}

- (void)setAppearance:(NSAppearance *)appearance {
  if (!IsAppearanceOrNil(appearance) || applicationAppearance == appearance) {
    return;
  }
  NSAppearance *old = applicationAppearance;
  applicationAppearance = [appearance retain];
  [old release];
  for (NSWindow *window in [self windows]) {
    [[window contentView] setNeedsDisplay:YES];
  }
}

- (NSAppearance *)effectiveAppearance {
  return applicationAppearance != nil ? applicationAppearance : Aqua();
}

@end
