// Private to the platform layer: the layer renderer's entry for the AppKit
// side, which draws a view's backing layer in the view's own space.
#ifndef TALVO_PLATFORM_LAYER_RENDERING_H
#define TALVO_PLATFORM_LAYER_RENDERING_H

#import <QuartzCore/CALayer+TalvoRendering.h>

@interface CALayer (TalvoRenderingPrivate)
// Draws the layer's background and contents into `rect` (user space of
// `c`) and, when `sublayers` is YES, its sublayers in the space that maps
// the bounds onto `rect` (unflipped: the caller's space decides which way
// is up). Neither the opacity nor the hidden flag of the layer itself
// applies.
- (void)_tv_renderContentsInContext:(CGContextRef)c
                             inRect:(CGRect)rect
                          sublayers:(BOOL)sublayers;
@end

#endif
