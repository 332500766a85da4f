#import <Talvo/NSImage+Trim.h>

#import <Talvo/NSBitmapImageRep+Trim.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSImage (trim)

- (NSImage *)imageByTrimmingTransparentPixels {
  NSImage *trimmed = [[[NSImage alloc] initWithSize:[self size]] autorelease];
  for (NSImageRep *rep in [self representations]) {
    NSBitmapImageRep *bitmap = nil;
    if ([rep isKindOfClass:[NSBitmapImageRep class]]) {
      bitmap = (NSBitmapImageRep *)rep;
    } else {
      CGImageRef image = [rep CGImageForProposedRect:NULL context:nil hints:nil];
      if (image != NULL) {
        bitmap = [[[NSBitmapImageRep alloc] initWithCGImage:image] autorelease];
      }
    }
    // A representation with nothing filled has nothing to add.
    NSBitmapImageRep *cropped = [bitmap bitmapImageRepByTrimmingTransparentPixels];
    if (cropped != nil) {
      [trimmed addRepresentation:cropped];
    }
  }
  return trimmed;
}

@end
