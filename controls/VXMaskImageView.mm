#import <Talvo/VXMaskImageView.h>

#import <Talvo/NSImage+DrawColor.h>

#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXMaskImageView

#pragma mark - Lifecycle

- (instancetype)initWithFrame:(NSRect)frameRect {
  self = [super initWithFrame:frameRect];
  if (self != nil) {
    _fillColor = [[NSColor blackColor] retain];
  }
  return self;
}

- (void)dealloc {
  TalvoDestroy(_fillColor);
  TalvoDestroy(_maskImage);
  [super dealloc];
}

#pragma mark - Public

- (NSImage *)maskImage {
  return _maskImage;
}

- (void)setMaskImage:(NSImage *)maskImage {
  if (maskImage == _maskImage) return;
  NSImage *old = _maskImage;
  _maskImage = [maskImage retain];
  [old release];
  [self setNeedsDisplay:YES];
}

- (NSColor *)fillColor {
  return _fillColor;
}

- (void)setFillColor:(NSColor *)fillColor {
  if (fillColor == _fillColor) return;
  NSColor *old = _fillColor;
  _fillColor = [fillColor retain];
  [old release];
  [self setNeedsDisplay:YES];
}

- (void)drawRect:(NSRect)dirtyRect {
  [super drawRect:dirtyRect];
  if (![_maskImage isKindOfClass:[NSImage class]] || ![_fillColor isKindOfClass:[NSColor class]]) {
    return;
  }
  [_maskImage drawColor:_fillColor inRect:[self bounds] flipped:NO];
}

- (BOOL)allowsVibrancy {
  return YES;
}

@end
