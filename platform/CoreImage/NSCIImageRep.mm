// Bitmaps made from Core Image recipes.

#import <CoreImage/CoreImage.h>

#import "platform/CoreImage/TVCIImageRecipe.h"

#include <cstring>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@implementation NSBitmapImageRep (NSAppKitAdditions)

- (instancetype)initWithCIImage:(CIImage *)ciImage {
  TVCIRegion region;
  if (![ciImage isKindOfClass:[CIImage class]] || !TVCIRegionForRect([ciImage extent], &region) ||
      region.width > kTVCIMaxSide || region.height > kTVCIMaxSide ||
      region.width * region.height > kTVCIMaxPixels) {
    [self release];
    return nil;
  }
  NSInteger width = NSInteger(region.width), height = NSInteger(region.height);
  @try {
    self = [self initWithBitmapDataPlanes:NULL
                               pixelsWide:width
                               pixelsHigh:height
                            bitsPerSample:8
                          samplesPerPixel:4
                                 hasAlpha:YES
                                 isPlanar:NO
                           colorSpaceName:NSDeviceRGBColorSpace
                             bitmapFormat:NSBitmapFormat(0)
                              bytesPerRow:width * 4
                             bitsPerPixel:32];
  } @catch (NSException *e) {
    // Out of memory: GNUstep may have freed the half-made receiver.
    return nil;
  }
  if (!self || ![self bitmapData]) {
    [self release];
    return nil;
  }
  if (![ciImage _renderRegion:region into:[self bitmapData] bytesPerRow:[self bytesPerRow]]) {
    [self release];
    return nil;
  }
  return self;
}

@end
