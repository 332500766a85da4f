/*
 * Layer-backed views on GNUstep: a view with wantsLayer YES shows its
 * layer (-layer, or the one given to -setLayer:) in its window, drawn by
 * the window's own display.
 *
 * The view's bounds are the layer's: the layer's backgroundColor, then its
 * contents (CGImage or NSImage, placed by contentsGravity, upright), then
 * the view's drawRect: and subviews, then the layer's sublayers (placed in
 * the view's coordinates: from the top in a flipped view). The layer's
 * opacity applies to all of that as one group, composited over what lies
 * below; a hidden layer hides the view. alphaValue and the layer's opacity
 * are one value: setting either sets both, and the view redraws.
 * Changes to contents, contentsGravity, backgroundColor, opacity and
 * sublayers (of any layer in the tree) mark the view for display; other
 * layer changes show at the view's next display. At 1x and 2x (-GSScaleFactor).
 *
 * Not covered: the layer's own animations do not redraw the view frame by
 * frame (animate the view through its animator, as AppKit code does);
 * sublayers draw above the view's subviews whatever their order; drawing
 * the view into another context (displayRectIgnoringOpacity:inContext:
 * with a bitmap context, cacheDisplayInRect:, printing) shows the view's
 * own drawing without its layer; in windows whose backend lacks the
 * private details the groups rely on, layers draw without their opacity.
 *
 * -[CALayer renderInContext:] of a backing layer (or of its presentation
 * layer) draws the view too: background and contents, then the view's
 * drawRect: and its subviews (layer-backed ones through their layers, with
 * their opacity), then the sublayers, as macOS's layer tree would.
 */
#ifndef TALVO_PLATFORM_NSVIEW_LAYERDRAWING_H
#define TALVO_PLATFORM_NSVIEW_LAYERDRAWING_H

#import <AppKit/NSView+TalvoAnimation.h>

@interface NSView (TalvoLayerDrawing)
// Whether the private GNUstep details the opacity groups need are there.
+ (BOOL)talvo_layerGroupsAvailable;
@end

#endif
