#import <Talvo/VXVisualEffectWindow.h>

#import "support/TalvoLook.h"
#import "windows/TVWindowPlatform+Private.h"
#import "windows/VXCustomWindow+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXVisualEffectWindow

#pragma mark - Lifecycle

+ (Class)frameViewClass {
  // The older look's frame view is a plain view that lets the window draw.
  return TalvoUsesNewerLook() ? [NSVisualEffectView class] : [_VXWindowDrawingFrameView class];
}

+ (NSView *)frameViewForRect:(NSRect)rect {
  if (!TalvoUsesNewerLook()) {
    return [[[_VXWindowDrawingFrameView alloc] initWithFrame:rect] autorelease];
  }
  NSVisualEffectView *view = [[[NSVisualEffectView alloc] initWithFrame:rect] autorelease];
  [view setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameVibrantDark]];
  [view setMaterial:NSVisualEffectMaterialAppearanceBased];
  [view setBlendingMode:NSVisualEffectBlendingModeBehindWindow];
  [view setState:NSVisualEffectStateActive];
  return view;
}

- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSUInteger)styleMask
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
  self = [super initWithContentRect:contentRect styleMask:styleMask backing:backing defer:defer];
  if (self == nil) {
    return nil;
  }
  [self setHidesOnDeactivate:NO];
  [self setMovableByWindowBackground:YES];
  [self setOpaque:NO];
  [self setBackgroundColor:[NSColor colorWithCalibratedWhite:0.12 alpha:1.0]];
  return self;
}

#pragma mark - Public

- (NSVisualEffectView *)backgroundEffectView {
  return (NSVisualEffectView *)[self contentView];
}

- (void)drawRect:(NSRect)dirtyRect {
  if (TalvoUsesNewerLook()) {
    return;
  }
  [[self backgroundColor] setFill];
  if (TVIsSheet(self)) {
    NSRectFill(dirtyRect);
  } else {
    [[NSBezierPath bezierPathWithRoundedRect:[self bounds] xRadius:6.0 yRadius:6.0] fill];
  }
}

@end
