/*
 * Template images for GNUstep 0.29, which has no such flag.
 *
 * `template` is a mark that controls read to decide how they draw an image
 * (a template is a black-and-clear shape to be tinted); the image itself
 * draws unchanged, as on macOS. The mark is kept by copy and by
 * copyWithZone:, and set on images loaded through -[NSBundle
 * imageForResource:] from a file whose name ends in "Template" and on those
 * +imageNamed: finds by such a name. Drawing a template directly draws its
 * pixels (AppKit tints templates in controls, not in -drawInRect:); GNUstep's
 * newer test suite expects a tinted fill there, and fails on that with
 * Talvo. Not covered: keyed archiving of the mark.
 */
#ifndef TALVO_PLATFORM_NSIMAGE_TEMPLATE_H
#define TALVO_PLATFORM_NSIMAGE_TEMPLATE_H

#import <AppKit/NSImage.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSImage (TalvoTemplate)

- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;

@end

NS_ASSUME_NONNULL_END

#endif
