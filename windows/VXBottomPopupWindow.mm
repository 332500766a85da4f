#import <Talvo/VXBottomPopupWindow.h>

#import "windows/TVWindowGeometry+Private.h"
#import "windows/TVWindowPlatform+Private.h"
#import "windows/VXBottomPopupWindow+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

static NSColor *_fillColor = nil;

@implementation VXBottomPopupWindow

#pragma mark - Lifecycle

+ (void)initialize {
  if (self == [VXBottomPopupWindow class]) {
    _fillColor = [[NSColor colorWithCalibratedWhite:0.94 alpha:1.0] retain];
  }
}

+ (Class)frameViewClass {
  return [_VXBottomPopupWindowFrameView class];
}

- (instancetype)init {
  return [self initWithContentRect:NSZeroRect
                         styleMask:NSBorderlessWindowMask
                           backing:NSBackingStoreBuffered
                             defer:YES];
}

- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSUInteger)styleMask
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
  self = [super initWithContentRect:contentRect styleMask:styleMask backing:backing defer:defer];
  if (self == nil) {
    return nil;
  }
  [self setHasShadow:YES];
  [self setExcludedFromWindowsMenu:YES];
  [self setHidesOnDeactivate:NO];
  if (TVResponds(self, @selector(setMovable:))) {
    [self setMovable:NO];
  }
  [self setContentTopMargin:5.0];
  return self;
}

#pragma mark - Public

- (void)drawRect:(NSRect)dirtyRect {
}

- (BOOL)canBecomeMainWindow {
  return NO;
}

- (BOOL)canBecomeKeyWindow {
  return NO;
}

- (BOOL)accessibilityIsIgnored {
  return YES;
}

- (id)accessibilityAttributeValue:(NSString *)attribute {
  if ([attribute isEqual:NSAccessibilityParentAttribute]) {
    return NSAccessibilityUnignoredAncestor([self parentWindow]);
  }
  if ([NSWindow instancesRespondToSelector:@selector(accessibilityAttributeValue:)]) {
    return [super accessibilityAttributeValue:attribute];
  }
  return nil;
}

@end

@implementation VXBottomPopupWindow (Private)

+ (NSColor *)_fillColor {
  return _fillColor;
}

@end

@implementation _VXBottomPopupWindowFrameView

- (void)drawRect:(NSRect)dirtyRect {
  NSRect bounds = [self bounds];
  talvo::windows::PopupShape shape =
      talvo::windows::BottomPopupShape(bounds.size.width, bounds.size.height);
  [NSGraphicsContext saveGraphicsState];
  NSBezierPath *path = [NSBezierPath bezierPath];
  NSPoint arrow[3];
  for (int i = 0; i < 3; ++i) {
    arrow[i] = NSMakePoint(shape.arrow[i].x, shape.arrow[i].y);
  }
  [path appendBezierPathWithPoints:arrow count:3];
  [path appendBezierPathWithRoundedRect:TVNSRect(shape.body)
                                xRadius:shape.radius
                                yRadius:shape.radius];
  [[VXBottomPopupWindow _fillColor] setFill];
  [path fill];
  [NSGraphicsContext restoreGraphicsState];
}

@end
