#import <Talvo/VXButtonCell.h>

#import <CoreGraphics/CoreGraphics.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXButtonCell

#pragma mark - Public

@synthesize mouseAbove = _mouseAbove;

- (void)drawInteriorWithFrame:(NSRect)cellFrame inView:(NSView *)controlView {
  if (![controlView isKindOfClass:[NSView class]]) controlView = nil;
  [NSGraphicsContext saveGraphicsState];
  CGContextRef context = (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
  if (context != NULL) {
    CGContextSetAlpha(context, [[controlView window] isKeyWindow] ? 1.0 : 0.3);
  }
  [super drawInteriorWithFrame:cellFrame inView:controlView];
  [NSGraphicsContext restoreGraphicsState];
}

@end
