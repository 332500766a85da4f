#import <Talvo/NSImage+Cap.h>

#include "core/images/ImageGeometry.hpp"
#import "images/TVOffscreenLimits.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

#pragma mark - Private

// Runs `draw` focused on `image`; images without area get no drawing (and
// GNUstep's focus raises without a window server: then nothing is drawn).
static void TVDrawIntoImage(NSImage *image, void (^draw)(void)) {
  NSSize size = [image size];
  if (!TVOffscreenSizeAllowed(size.width, size.height)) {
    return;
  }
  @try {
    [image lockFocus];
    @try {
      draw();
    } @finally {
      [image unlockFocus];
    }
  } @catch (NSException *exception) {
  }
}

// A new image (+1) of `span` of `source`, at the source's full height.
static NSImage *TVNewPiece(NSImage *source, talvo::images::Span span, CGFloat height) {
  NSImage *piece = [[NSImage alloc] initWithSize:NSMakeSize(span.width, height)];
  TVDrawIntoImage(piece, ^{
    [source drawInRect:NSMakeRect(0, 0, span.width, height)
              fromRect:NSMakeRect(span.x, 0, span.width, height)
             operation:NSCompositeCopy
              fraction:1.0];
  });
  return piece;
}

@implementation NSImage (cap)

#pragma mark - Public

- (NSImage *)imageWithleftCapWidth:(CGFloat)leftCapWidth
                       middleWidth:(CGFloat)middleWidth
                     rightCapWidth:(CGFloat)rightCapWidth {
  NSSize size = [self size];
  talvo::images::CapSlices slices =
      talvo::images::CapSlicesFor(size.width, leftCapWidth, middleWidth, rightCapWidth);
  NSImage *leftCap = TVNewPiece(self, slices.left, size.height);
  NSImage *middle = TVNewPiece(self, slices.middle, size.height);
  NSImage *rightCap = TVNewPiece(self, slices.right, size.height);

  NSImage *result = [[NSImage alloc] initWithSize:NSMakeSize(slices.resultWidth, size.height)];
  TVDrawIntoImage(result, ^{
    NSDrawThreePartImage(NSMakeRect(0, 0, slices.resultWidth, size.height), leftCap, middle,
                         rightCap, NO, NSCompositeSourceOver, 1.0, NO);
  });
  [rightCap release];
  [middle release];
  [leftCap release];
  return [result autorelease];
}

@end
