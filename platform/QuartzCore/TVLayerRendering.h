// Private to the platform layer: the layer renderer's entry for the AppKit
// side, which draws a view's backing layer in the view's own space.
#ifndef TALVO_PLATFORM_LAYER_RENDERING_H
#define TALVO_PLATFORM_LAYER_RENDERING_H

#import <QuartzCore/CALayer+TalvoRendering.h>

@interface CALayer (TalvoRenderingPrivate)
// Draws the layer's background and contents (`content`) into `rect`
// (user space of `c`) and its sublayers (`sublayers`) in the space that
// maps the bounds onto `rect` (unflipped: the caller's space decides which
// way is up). Neither the opacity nor the hidden flag of the layer itself
// applies.
- (void)_tv_renderInContext:(CGContextRef)c
                     inRect:(CGRect)rect
                    content:(BOOL)content
                  sublayers:(BOOL)sublayers;
// Draws the layer as a sublayer would draw (its opacity, hidden flag and
// the view drawing into it included) with its bounds mapped onto `rect`,
// its own geometry flip left to the caller's space.
- (void)_tv_renderTreeInContext:(CGContextRef)c inRect:(CGRect)rect;
@end

#endif
