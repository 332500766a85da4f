#import <Talvo/VXAnimatedSelectionTableRowView.h>

#import <CoreGraphics/CoreGraphics.h>
#import <QuartzCore/QuartzCore.h>

#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

static NSString *const kBackgroundAlphaKey = @"backgroundAlpha";

@implementation VXAnimatedSelectionTableRowView

#pragma mark - Lifecycle

- (void)dealloc {
  TalvoDestroy(_trackingArea);
  [super dealloc];
}

#pragma mark - Public

- (double)backgroundAlpha {
  @synchronized(self) {
    return _backgroundAlpha;
  }
}

- (void)setBackgroundAlpha:(double)backgroundAlpha {
  @synchronized(self) {
    if (backgroundAlpha == _backgroundAlpha) return;
    _backgroundAlpha = backgroundAlpha;
  }
  [self setNeedsDisplay:YES];
}

+ (id)defaultAnimationForKey:(NSString *)key {
  if ([key isEqual:kBackgroundAlphaKey]) {
    return [CABasicAnimation animation];
  }
  return [super defaultAnimationForKey:key];
}

- (void)setSelected:(BOOL)selected {
  double alpha = selected ? 1.0 : 0.0;
  if ([self window] == nil) {
    [self setBackgroundAlpha:alpha];
    [super setSelected:selected];
    return;
  }
  [NSAnimationContext beginGrouping];
  [[NSAnimationContext currentContext] setDuration:selected ? 0.3 : 0.0];
  [[self animator] setBackgroundAlpha:alpha];
  [super setSelected:selected];
  [NSAnimationContext endGrouping];
}

- (void)drawRect:(NSRect)dirtyRect {
  [super drawRect:dirtyRect];
  double alpha = [self backgroundAlpha];
  if (!(alpha > 0.0)) return;
  [NSGraphicsContext saveGraphicsState];
  CGContextRef context = (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
  if (context != NULL) CGContextSetAlpha(context, alpha);
  [self drawAnimatedSelectionInRect:dirtyRect];
  [NSGraphicsContext restoreGraphicsState];
}

- (void)drawSelectionInRect:(NSRect)dirtyRect {
}

- (void)drawAnimatedSelectionInRect:(NSRect)dirtyRect {
}

@end
