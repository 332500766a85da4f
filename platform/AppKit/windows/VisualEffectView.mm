// NSVisualEffectView that keeps its settings and draws. GNUstep 0.29's
// class has no storage behind its accessors (the settings read back as 0)
// and draws nothing; here the settings live in a side table and the view
// fills itself with its material's flat colour under its effective
// appearance.

#import "platform/AppKit/windows/TVWindowPlatformState.h"

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

struct Fill {
  CGFloat light;  // white level under a light appearance
  CGFloat dark;   // and under a dark one
};

// Flat stand-ins for the materials, light and dark. Materials with a tone
// of their own (Light, Dark, MediumLight, UltraDark, HUD) ignore the
// appearance.
Fill MaterialFill(NSVisualEffectMaterial material) {
  switch (material) {
    case NSVisualEffectMaterialLight: return {0.93, 0.93};
    case NSVisualEffectMaterialDark: return {0.16, 0.16};
    case NSVisualEffectMaterialMediumLight: return {0.85, 0.85};
    case NSVisualEffectMaterialUltraDark: return {0.08, 0.08};
    case NSVisualEffectMaterialHUDWindow: return {0.12, 0.12};
    case NSVisualEffectMaterialTitlebar: return {0.91, 0.18};
    case NSVisualEffectMaterialSelection: return {0.86, 0.27};
    case NSVisualEffectMaterialMenu: return {0.94, 0.15};
    case NSVisualEffectMaterialPopover: return {0.96, 0.19};
    case NSVisualEffectMaterialSidebar: return {0.91, 0.14};
    case NSVisualEffectMaterialHeaderView: return {0.97, 0.17};
    case NSVisualEffectMaterialSheet: return {0.95, 0.17};
    case NSVisualEffectMaterialWindowBackground: return {0.93, 0.20};
    case NSVisualEffectMaterialFullScreenUI: return {0.90, 0.10};
    case NSVisualEffectMaterialToolTip: return {0.98, 0.22};
    case NSVisualEffectMaterialContentBackground: return {1.0, 0.12};
    case NSVisualEffectMaterialUnderWindowBackground: return {0.86, 0.09};
    case NSVisualEffectMaterialUnderPageBackground: return {0.82, 0.13};
    default: return {0.93, 0.16};  // appearance-based
  }
}

bool HasOwnTone(NSVisualEffectMaterial material) {
  Fill fill = MaterialFill(material);
  return fill.light == fill.dark;
}

bool IsActive(NSVisualEffectView *view, _TVVisualEffectSettings *settings) {
  switch (settings->_state) {
    case NSVisualEffectStateActive:
      return true;
    case NSVisualEffectStateInactive:
      return false;
    default: {
      NSWindow *window = [view window];
      return window == nil || [window isKeyWindow] || [window isMainWindow];
    }
  }
}

NSColor *FillColor(NSVisualEffectView *view) {
  _TVVisualEffectSettings *settings = TVVisualEffectSettings(view);
  BOOL dark = [[view effectiveAppearance] talvo_isDark];
  NSVisualEffectMaterial material = settings->_material;
  if (material == NSVisualEffectMaterialSelection && settings->_emphasized) {
    return [NSColor colorWithDeviceRed:0.0 green:0.39 blue:0.88 alpha:1.0];
  }
  if (!IsActive(view, settings) && !HasOwnTone(material)) {
    material = NSVisualEffectMaterialWindowBackground;
  }
  Fill fill = MaterialFill(material);
  return [NSColor colorWithDeviceWhite:dark ? fill.dark : fill.light alpha:1.0];
}

void ObserveWindowActivity();

void TVEffectDrawRect(NSVisualEffectView *view, SEL selector, NSRect dirty) {
  ObserveWindowActivity();
  [FillColor(view) set];
  NSRectFill(NSIntersectionRect(dirty, [view bounds]));
}

NSVisualEffectMaterial TVMaterial(NSVisualEffectView *view, SEL selector) {
  return TVVisualEffectSettings(view)->_material;
}
void TVSetMaterial(NSVisualEffectView *view, SEL selector, NSVisualEffectMaterial material) {
  TVVisualEffectSettings(view)->_material = material;
  [view setNeedsDisplay:YES];
}
NSVisualEffectBlendingMode TVBlendingMode(NSVisualEffectView *view, SEL selector) {
  return TVVisualEffectSettings(view)->_blendingMode;
}
void TVSetBlendingMode(NSVisualEffectView *view, SEL selector, NSVisualEffectBlendingMode mode) {
  if (mode == NSVisualEffectBlendingModeBehindWindow || mode == NSVisualEffectBlendingModeWithinWindow) {
    TVVisualEffectSettings(view)->_blendingMode = mode;
    [view setNeedsDisplay:YES];
  }
}
NSVisualEffectState TVState(NSVisualEffectView *view, SEL selector) {
  return TVVisualEffectSettings(view)->_state;
}
void TVSetState(NSVisualEffectView *view, SEL selector, NSVisualEffectState state) {
  if (state >= NSVisualEffectStateFollowsWindowActiveState && state <= NSVisualEffectStateInactive) {
    TVVisualEffectSettings(view)->_state = state;
    [view setNeedsDisplay:YES];
  }
}
NSImage *TVMaskImage(NSVisualEffectView *view, SEL selector) {
  return TVVisualEffectSettings(view)->_maskImage;
}
void TVSetMaskImage(NSVisualEffectView *view, SEL selector, NSImage *image) {
  if (image != nil && ![image isKindOfClass:[NSImage class]]) {
    return;
  }
  _TVVisualEffectSettings *settings = TVVisualEffectSettings(view);
  NSImage *old = settings->_maskImage;
  settings->_maskImage = [image retain];
  [old release];
  [view setNeedsDisplay:YES];
}

// Views that follow their window's active state redraw when it changes.
void MarkEffectViews(NSView *view) {
  if ([view isKindOfClass:[NSVisualEffectView class]]) {
    [view setNeedsDisplay:YES];
  }
  for (NSView *subview in [view subviews]) {
    MarkEffectViews(subview);
  }
}

}  // namespace

@interface _TVVisualEffectWindowObserver : NSObject
+ (void)windowActivityChanged:(NSNotification *)notification;
@end

@implementation _TVVisualEffectWindowObserver

+ (void)windowActivityChanged:(NSNotification *)notification {
  NSWindow *window = [notification object];
  if ([window isKindOfClass:[NSWindow class]]) {
    NSView *content = [window contentView];
    MarkEffectViews([content superview] != nil ? [content superview] : content);
  }
}

@end

namespace {

// Registered when the first effect view draws: only views that drew need
// drawing again.
void ObserveWindowActivity() {
  static bool observing = false;
  if (observing) {
    return;
  }
  observing = true;
  NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
  NSString *names[] = {NSWindowDidBecomeKeyNotification, NSWindowDidResignKeyNotification,
                       NSWindowDidBecomeMainNotification, NSWindowDidResignMainNotification};
  for (NSString *name : names) {
    [center addObserver:[_TVVisualEffectWindowObserver class]
               selector:@selector(windowActivityChanged:)
                   name:name
                 object:nil];
  }
}

}  // namespace

@implementation NSVisualEffectView (TalvoPlatform)

+ (void)load {
  struct {
    SEL selector;
    IMP replacement;
  } hooks[] = {
      {@selector(drawRect:), (IMP)TVEffectDrawRect},
      {@selector(material), (IMP)TVMaterial},
      {@selector(setMaterial:), (IMP)TVSetMaterial},
      {@selector(blendingMode), (IMP)TVBlendingMode},
      {@selector(setBlendingMode:), (IMP)TVSetBlendingMode},
      {@selector(state), (IMP)TVState},
      {@selector(setState:), (IMP)TVSetState},
      {@selector(maskImage), (IMP)TVMaskImage},
      {@selector(setMaskImage:), (IMP)TVSetMaskImage},
  };
  for (auto &hook : hooks) {
    TVReplaceInstanceMethod(self, hook.selector, hook.replacement);
  }
}

- (BOOL)isEmphasized {
  return TVVisualEffectSettings(self)->_emphasized;
}

- (void)setEmphasized:(BOOL)emphasized {
  TVVisualEffectSettings(self)->_emphasized = emphasized ? YES : NO;
  [self setNeedsDisplay:YES];
}

@end
