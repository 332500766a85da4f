/*
 * The cell and control API that GNUstep 0.29 lacks or leaves uncalled,
 * supplied by the platform layer (platform/AppKit/cells/).
 *
 * Button cells draw through -imageRectForBounds:, -titleRectForBounds:,
 * -drawImage:withFrame:inView: and -drawTitle:withFrame:inView:; controls
 * highlight their cell with -highlight:withFrame:inView: while tracking.
 * Pop-up button cells draw their bezel through -drawBezelWithFrame:inView:.
 * Segmented cells hit-test by segment widths, honour the three tracking
 * modes, open a segment's menu when it is pressed and ignore segment indexes
 * out of range. Slider cells lay out before the first draw, place and draw
 * tick marks, and take their bar and knob rects from -barRectFlipped: and
 * -knobRectFlipped: for drawing and tracking. Text field cells keep the
 * field editor where -editWithFrame:... or -selectWithFrame:... put it.
 *
 * Not covered: circular sliders keep GNUstep's drawing and tracking;
 * segment menus open at once (no press-and-hold delay); the knob styles of
 * scrollers draw a plain rounded knob.
 */
#ifndef TALVO_PLATFORM_NSCELL_H
#define TALVO_PLATFORM_NSCELL_H

#import <AppKit/NSSegmentedControl.h>
#import <AppKit/NSSlider.h>
#import <AppKit/NSSliderCell.h>

@interface NSSliderCell (TalvoPlatformGeometry)
// The rect the bar is drawn in: the track rect.
- (NSRect)barRectFlipped:(BOOL)flipped;
// Fixes the orientation instead of deriving it from the frame.
- (void)setVertical:(BOOL)vertical;
// Draws every tick mark in its -rectOfTickMarkAtIndex:.
- (void)drawTickMarks;
@end

@interface NSSlider (TalvoPlatformGeometry)
// Fixes its cell's orientation.
- (void)setVertical:(BOOL)vertical;
@end

@interface NSSegmentedControl (TalvoPlatformTracking)
- (NSSegmentSwitchTracking)trackingMode;
- (void)setTrackingMode:(NSSegmentSwitchTracking)mode;
@end

#endif
