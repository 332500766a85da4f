/*
 * The bridge between AppKit drawing and Core Graphics on GNUstep.
 *
 * -graphicsPort and -CGContext answer a CGContextRef for the context (not
 * owned by the caller). Its Quartz calls and AppKit drawing share one
 * graphics state: CTM (the focused view's user space, flipped views
 * included), colours, save/restore, clip, and — added to GNUstep's own
 * drawing — global alpha, shadow (CGContextSetShadow* and -[NSShadow set]),
 * blend mode and mask clips for fills, strokes, images, gradients and text.
 *
 * +graphicsContextWithGraphicsPort:flipped: and
 * +graphicsContextWithCGContext:flipped: with a bitmap CGContext draw into
 * its memory (AppKit drawing is there after -flushGraphics, after another
 * context becomes current, or once the context is gone);
 * +graphicsContextWithBitmapImageRep: draws into the rep's pixels the same
 * way (8-bit meshed gray/RGB reps, with or without alpha; others answer
 * nil). A rep whose size differs from its pixel size gets a scaled CTM.
 *
 * Conversions: -[NSBitmapImageRep initWithCGImage:] and -CGImage,
 * -[NSImage initWithCGImage:size:], -[NSImage CGImageForProposedRect:context:hints:],
 * -[NSImageRep CGImageForProposedRect:context:hints:], -[NSColor CGColor].
 * The CGImage and CGColor answers are autoreleased objects' lifetimes: valid
 * until the current autorelease pool drains (CGImageRetain to keep them).
 *
 * Not covered: blend modes set with -setCompositingOperation: on the
 * context, shadows of shapes that lie wholly outside the clip, an AppKit
 * compositing operation other than source-over combined with Quartz
 * effects (it then composites against a transparent layer), contexts of
 * deferred windows before they draw (no gstate: -graphicsPort is NULL).
 */
#ifndef TALVO_PLATFORM_NSGRAPHICSCONTEXT_H
#define TALVO_PLATFORM_NSGRAPHICSCONTEXT_H

#import <AppKit/NSBitmapImageRep.h>
#import <AppKit/NSGraphicsContext.h>
#import <AppKit/NSImage.h>
#include <CoreGraphics/CoreGraphics.h>

@interface NSGraphicsContext (TalvoPlatformGraphics)
// The private GNUstep details the bridge relies on that this GNUstep lacks;
// empty when everything is there.
+ (NSArray *)talvo_graphicsBridgeProblems;
// Whether the bridge and the effects on AppKit drawing are in place.
+ (BOOL)talvo_graphicsBridgeInstalled;
@end

@interface NSBitmapImageRep (TalvoPlatformGraphics)
// RGBA, 8 bits, premultiplied: the image drawn upright.
- (instancetype)initWithCGImage:(CGImageRef)image;
- (CGImageRef)CGImage;
@end

@interface NSImage (TalvoPlatformGraphics)
// One bitmap rep holding the image's pixels (premultiplied RGBA, as
// -[NSBitmapImageRep initWithCGImage:]) at `size` points; NSZeroSize: one
// point per pixel. Nil for a NULL image or a size that is negative, not
// finite or zero in one dimension only.
- (instancetype)initWithCGImage:(CGImageRef)image size:(NSSize)size;
// `proposedRect` (in points) gives the pixel size. NULL: an image whose one
// rep is a bitmap answers that bitmap's pixels; any other image is drawn
// at one pixel per point of its size.
- (CGImageRef)CGImageForProposedRect:(NSRect *)proposedRect
                             context:(NSGraphicsContext *)context
                               hints:(NSDictionary *)hints;
@end

#endif
