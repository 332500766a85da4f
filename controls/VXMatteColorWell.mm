#import <Talvo/VXMatteColorWell.h>

#import "controls/VXMatteColorWell+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// Made once, for this class only, and kept for the process.
static NSGradient *_backgroundGradient = nil;
static NSColor *_borderColor = nil;
static NSColor *_strokeColor = nil;

@implementation VXMatteColorWell

#pragma mark - Lifecycle

+ (void)initialize {
  if (self == [VXMatteColorWell class]) {
    _backgroundGradient =
        [[NSGradient alloc] initWithStartingColor:[NSColor colorWithCalibratedWhite:0.7 alpha:1.0]
                                      endingColor:[NSColor colorWithCalibratedWhite:0.9 alpha:1.0]];
    _borderColor = [[NSColor colorWithCalibratedWhite:0.87 alpha:1.0] retain];
    _strokeColor = [[NSColor colorWithCalibratedWhite:0.5 alpha:1.0] retain];
  }
}

- (void)awakeFromNib {
  [self setFrame:[self frame]];
}

#pragma mark - Public

- (void)setFrame:(NSRect)frame {
  [super setFrame:frame];
  CGFloat inset = [self isBordered] ? 5.0 : 3.0;
  colorRect = NSInsetRect([self bounds], inset, inset);
  borderRect = colorRect;
  borderRect.origin.y -= 1.0;
}

- (void)drawRect:(NSRect)dirtyRect {
  NSRect bounds = [self bounds];
  [[NSColor clearColor] set];
  NSRectFill(bounds);
  [_backgroundGradient drawInRect:bounds angle:[self isActive] ? -90.0 : 90.0];
  [_borderColor setFill];
  NSFrameRect(borderRect);
  NSColor *color = [self color];
  if (color != nil) {
    [color setFill];
    NSRectFill(colorRect);
  }
  [_strokeColor setFill];
  NSFrameRect(colorRect);
  NSFrameRect(bounds);
}

@end

@implementation VXMatteColorWell (Private)

- (CGRect)_colorRect {
  return colorRect;
}

- (CGRect)_borderRect {
  return borderRect;
}

@end
