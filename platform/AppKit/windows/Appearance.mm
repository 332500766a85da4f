// Named appearances and their inheritance. GNUstep 0.29's NSAppearance
// hands out its appearances +1, never allows vibrancy, matches and
// archives nothing, and nothing asks views or windows for one. Here the
// appearances are autoreleased and know their kind, and views, windows and
// the application carry an appearance that their descendants inherit.
// While a view draws, the current appearance is the view's effective one.

#import "platform/AppKit/windows/TVWindowPlatformState.h"

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

NSAppearance *defaultAppearance = nil;  // Aqua, for the process
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

// The plain appearance a vibrant one varies.
NSString *PlainCounterpart(NSString *name) {
  if ([name isEqualToString:NSAppearanceNameVibrantLight]) return NSAppearanceNameAqua;
  if ([name isEqualToString:NSAppearanceNameVibrantDark]) return NSAppearanceNameDarkAqua;
  return nil;
}

// GNUstep answers nil. The exact name wins wherever it is in the list; a
// vibrant appearance otherwise takes the plain one it varies; nothing else
// matches.
NSString *TVBestMatch(NSAppearance *self, SEL selector, NSArray *names) {
  if (![names isKindOfClass:[NSArray class]]) {
    return nil;
  }
  NSString *fallback = PlainCounterpart([self name]);
  NSString *found = nil;
  for (id name in names) {
    if (![name isKindOfClass:[NSString class]]) {
      continue;
    }
    if ([name isEqualToString:[self name]]) {
      return name;
    }
    if (found == nil && fallback != nil && [name isEqualToString:fallback]) {
      found = name;
    }
  }
  return found;
}

id (*originalInitWithName)(id, SEL, NSString *, NSBundle *) = NULL;
NSAppearance *(*originalCurrentAppearance)(id, SEL) = NULL;
void (*originalDisplayRect)(id, SEL, NSRect, NSGraphicsContext *) = NULL;

// A new appearance for every call, which the caller does not own (GNUstep
// hands it over +1). As AppKit does, a name it does not know still gets an
// appearance of that name (plain, not vibrant).
NSAppearance *TVAppearanceNamed(id cls, SEL selector, NSString *name) {
  if (![name isKindOfClass:[NSString class]]) {
    return nil;
  }
  return [[[NSAppearance alloc] initWithAppearanceNamed:name bundle:nil] autorelease];
}

// Vibrant appearances allow vibrancy, as on macOS.
id TVInitWithName(NSAppearance *self, SEL selector, NSString *name, NSBundle *bundle) {
  if (![name isKindOfClass:[NSString class]]) {
    [self release];
    return nil;
  }
  self = originalInitWithName(self, selector, name, bundle);
  Ivar vibrancy = class_getInstanceVariable([NSAppearance class], "_allowsVibrancy");
  if (self != nil && vibrancy != NULL) {
    BOOL *flag = (BOOL *)((char *)self + ivar_getOffset(vibrancy));
    *flag = CanonicalName([self name]) != nil && IsVibrantName([self name]);
  }
  return self;
}

// What everything falls back to when nothing is set: one Aqua for the
// process.
NSAppearance *Aqua() {
  if (defaultAppearance == nil) {
    defaultAppearance = [[NSAppearance alloc] initWithAppearanceNamed:NSAppearanceNameAqua bundle:nil];
  }
  return defaultAppearance;
}

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
void TVDisplayRect(id view, SEL selector, NSRect rect, NSGraphicsContext *context) {
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

#pragma mark - Archiving

// Appearances archive their name (keyed under "NSAppearanceName", as
// interface files write it); GNUstep's write and read nothing. Replacing
// GNUstep's coding methods in place reroutes distributed objects' own
// coding on this runtime, so every appearance is made as this private
// subclass instead, which codes for itself under NSAppearance's name.
@interface _TVAppearance : NSAppearance
@end

@implementation _TVAppearance

+ (id)allocWithZone:(NSZone *)zone {
  return NSAllocateObject(self, 0, zone);
}

- (Class)classForCoder {
  return [NSAppearance class];
}

- (Class)classForKeyedArchiver {
  return [NSAppearance class];
}

- (void)encodeWithCoder:(NSCoder *)coder {
  if ([coder allowsKeyedCoding]) {
    [coder encodeObject:[self name] forKey:@"NSAppearanceName"];
  } else {
    [coder encodeObject:[self name]];
  }
}

- (id)initWithCoder:(NSCoder *)coder {
  NSString *name = nil;
  @try {
    name = [coder allowsKeyedCoding] ? [coder decodeObjectForKey:@"NSAppearanceName"] : [coder decodeObject];
  } @catch (NSException *exception) {
    name = nil;
  }
  return [self initWithAppearanceNamed:([name isKindOfClass:[NSString class]] ? name : NSAppearanceNameAqua)
                                bundle:nil];
}

@end

@implementation NSAppearance (TalvoAllocation)

+ (id)allocWithZone:(NSZone *)zone {
  return self == [NSAppearance class] ? [_TVAppearance allocWithZone:zone] : NSAllocateObject(self, 0, zone);
}

@end

#pragma mark - NSAppearance

// AppKit's values of the high-contrast names; GNUstep's exports spell them
// differently. These definitions take the place of GNUstep's in every
// program linked with Talvo.
NSAppearanceName const NSAppearanceNameAccessibilityHighContrastAqua = @"NSAppearanceNameAccessibilityAqua";
NSAppearanceName const NSAppearanceNameAccessibilityHighContrastDarkAqua =
    @"NSAppearanceNameAccessibilityDarkAqua";
NSAppearanceName const NSAppearanceNameAccessibilityHighContrastVibrantLight =
    @"NSAppearanceNameAccessibilityVibrantLight";
NSAppearanceName const NSAppearanceNameAccessibilityHighContrastVibrantDark =
    @"NSAppearanceNameAccessibilityVibrantDark";

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
