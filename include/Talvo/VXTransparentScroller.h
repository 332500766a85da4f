#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** A scroller that draws only its knob, always in the light style, over a
 * transparent slot; it counts as an overlay scroller. */
@interface VXTransparentScroller : NSScroller

/** The inherited initialiser. */
- (instancetype)initWithFrame:(NSRect)frameRect;
/** Nothing. */
- (void)drawKnobSlotInRect:(NSRect)slotRect highlight:(BOOL)flag;
/** Nothing. */
- (void)drawArrow:(NSScrollerArrow)whichArrow highlight:(BOOL)flag;
/** NSScrollerKnobStyleLight, whatever was set. */
- (NSScrollerKnobStyle)knobStyle;
/** YES. */
+ (BOOL)isCompatibleWithOverlayScrollers;
/** NSScrollerStyleOverlay. */
+ (NSScrollerStyle)preferredScrollerStyle;

@end

NS_ASSUME_NONNULL_END
