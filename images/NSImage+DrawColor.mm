#import <Talvo/NSImage+DrawColor.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSImage (drawColor)

- (void)drawColor:(NSColor *)color inRect:(NSRect)rect flipped:(BOOL)flipped {
  NSGraphicsContext *current = [NSGraphicsContext currentContext];
  if (current == nil || color == nil) {
    return;
  }
  CGImageRef mask = [self CGImageForProposedRect:NULL context:current hints:nil];
  if (mask == NULL) {
    return;
  }
  @try {
    [NSGraphicsContext saveGraphicsState];
    // Restored on every path, a raising -setFill included.
    @try {
      CGContextRef context = (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
      if (context != NULL) {
        if (flipped) {
          // Mirror in place: y runs down from the top of the rectangle.
          CGContextTranslateCTM(context, 0, rect.origin.y);
          rect.origin.y = 0;
          CGContextConcatCTM(context, CGAffineTransformMake(1, 0, 0, -1, 0, rect.size.height));
        }
        CGContextClipToMask(context, rect, mask);
        [color setFill];
        NSRectFillUsingOperation(rect, NSCompositeSourceOver);
      }
    } @finally {
      [NSGraphicsContext restoreGraphicsState];
    }
  } @catch (NSException *exception) {
  }
}

@end
