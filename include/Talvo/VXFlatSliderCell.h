#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A horizontal slider cell drawn entirely from the toolkit's artwork: a
 * three-part track, on artwork left of the knob's centre and off artwork
 * right of it (all off, at alpha 0.8, when disabled), and a knob image that
 * changes while the knob is pressed. Value handling, tracking and knob
 * placement stay AppKit's; tick marks and the focus ring are not drawn.
 * Missing artwork draws nothing in its place.
 */
@interface VXFlatSliderCell : NSSliderCell {
  BOOL isPressed;
 @public
  /** Free for the application; the cell neither reads nor writes it. */
  int trackHeight;
}

/** The track, then the knob across the full height of `cellFrame`. */
- (void)drawWithFrame:(NSRect)cellFrame inView:(nullable NSView *)controlView;
/** The track, centred in `rect` and 1 point up, 2 points in at each side. */
- (void)drawBarInside:(NSRect)rect flipped:(BOOL)flipped;
/** The knob image (the hover artwork while pressed) centred in `knobRect`. */
- (void)drawKnob:(NSRect)knobRect;
/** Marks the knob pressed, then tracks as AppKit does. */
- (BOOL)startTrackingAt:(NSPoint)startPoint inView:(nullable NSView *)controlView;
/** Marks the knob released, then ends tracking as AppKit does. */
- (void)stopTracking:(NSPoint)lastPoint
                  at:(NSPoint)stopPoint
              inView:(nullable NSView *)controlView
           mouseIsUp:(BOOL)flag;

@end

NS_ASSUME_NONNULL_END
