#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A view that paints its mask image's shape in one colour over its whole
 * bounds. Made in code it starts with black; decoded from an archive it
 * starts with no colour (and draws nothing until given one).
 */
@interface VXMaskImageView : NSView {
  NSImage *_maskImage;
  NSColor *_fillColor;
}

/** The shape; a different object redraws the view. */
@property(nonatomic, strong, nullable) NSImage *maskImage;
/** The paint; a different object redraws the view. */
@property(nonatomic, strong, nullable) NSColor *fillColor;

/** The inherited initialiser, then black as the fill colour. */
- (instancetype)initWithFrame:(NSRect)frameRect;
/** YES. */
- (BOOL)allowsVibrancy;

@end

NS_ASSUME_NONNULL_END
