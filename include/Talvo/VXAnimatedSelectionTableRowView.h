#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A table row view whose selection fades in (0.3 s through the animator)
 * and disappears at once. The standard selection is not drawn: subclasses
 * paint theirs in drawAnimatedSelectionInRect:, which is drawn at
 * backgroundAlpha.
 */
@interface VXAnimatedSelectionTableRowView : NSTableRowView {
  NSTrackingArea *_trackingArea;
  double _backgroundAlpha;
}

/** The selection's opacity, 0 to 1; a different value redraws the row. */
@property(atomic) double backgroundAlpha;

/** A basic animation for "backgroundAlpha"; the inherited answer otherwise. */
+ (nullable id)defaultAnimationForKey:(NSString *)key;
/** Fades the selection in over 0.3 s (in a window), or out at once. */
- (void)setSelected:(BOOL)selected;
/** The inherited drawing, then the selection at backgroundAlpha. */
- (void)drawRect:(NSRect)dirtyRect;
/** Nothing: the standard selection is suppressed. */
- (void)drawSelectionInRect:(NSRect)dirtyRect;
/** Nothing; subclasses paint their selection here. */
- (void)drawAnimatedSelectionInRect:(NSRect)dirtyRect;

@end

NS_ASSUME_NONNULL_END
