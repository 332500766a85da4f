#import <Talvo/VXTabBarButtonCell.h>

#import "support/TalvoLook.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// Made on first use and kept for the process.
static NSGradient *gBezelGradient = nil;

@implementation VXTabBarButtonCell

#pragma mark - Lifecycle

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    [self setBezelStyle:NSTexturedRoundedBezelStyle];
  }
  return self;
}

#pragma mark - Public

- (NSInteger)nextState {
  return NSOnState;
}

- (void)drawBezelWithFrame:(NSRect)frame inView:(NSView *)controlView {
  if ([self state] != NSOnState) return;
  if (![controlView isKindOfClass:[NSView class]]) controlView = nil;
  [NSGraphicsContext saveGraphicsState];
  if (!TalvoUsesNewerLook()) {
    if (gBezelGradient == nil) {
      NSArray *colors = @[
        [NSColor colorWithCalibratedWhite:0.0 alpha:0.0],
        [NSColor colorWithCalibratedWhite:0.0 alpha:0.06],
        [NSColor colorWithCalibratedWhite:0.0 alpha:0.0]
      ];
      const CGFloat locations[] = {0.0, 0.5, 1.0};
      gBezelGradient = [[NSGradient alloc] initWithColors:colors
                                              atLocations:locations
                                               colorSpace:[NSColorSpace genericGrayColorSpace]];
    }
    if ([[controlView window] isMainWindow]) {
      [gBezelGradient drawInRect:frame angle:-90.0];
    }
    CGFloat x = frame.origin.x, y = frame.origin.y;
    CGFloat w = frame.size.width, h = frame.size.height;
    NSShadow *shadow = [[NSShadow alloc] init];
    [shadow setShadowOffset:NSMakeSize(1.0, 0.0)];
    [shadow setShadowBlurRadius:2.0];
    [shadow setShadowColor:[NSColor colorWithCalibratedWhite:0.0 alpha:0.5]];
    [shadow set];
    [[NSColor redColor] set];

    // Two half-discs just outside the frame: only their shadows fall inside.
    NSBezierPath *left = [NSBezierPath bezierPath];
    NSPoint leftCentre = NSMakePoint(x - h, y + h * 0.5);
    [left moveToPoint:leftCentre];
    [left appendBezierPathWithArcWithCenter:leftCentre radius:h startAngle:-90.0 endAngle:90.0];
    [left closePath];
    [left fill];

    [shadow setShadowOffset:NSMakeSize(-1.0, 0.0)];
    [shadow set];
    NSBezierPath *right = [NSBezierPath bezierPath];
    NSPoint rightCentre = NSMakePoint(x + w + h, y + h * 0.5);
    [right moveToPoint:rightCentre];
    [right appendBezierPathWithArcWithCenter:rightCentre radius:h startAngle:90.0 endAngle:270.0];
    [right closePath];
    [right fill];
    [shadow release];
  }
  [NSGraphicsContext restoreGraphicsState];
}

@end
