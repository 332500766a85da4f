#import "gallery/pages/ImagesPage.h"

#import <Talvo/NSImage+Cap.h>
#import <Talvo/NSImage+DrawColor.h>
#import <Talvo/NSImage+FitSize.h>
#import <Talvo/NSImage+Trim.h>
#import <Talvo/VXImageTrimming.h>
#import <Talvo/VXOffscreenDrawing.h>

#pragma mark - Sample images

// A `width` x `height` pixel image with transparent borders around what
// `draw` paints (Quartz coordinates, y up); +1.
static CGImageRef NewSampleImage(size_t width, size_t height, void (^draw)(CGContextRef c)) {
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef context = CGBitmapContextCreate(NULL, width, height, 8, width * 4, space,
                                               kCGImageAlphaPremultipliedLast);
  CGColorSpaceRelease(space);
  if (context == NULL) {
    return NULL;
  }
  draw(context);
  CGImageRef image = CGBitmapContextCreateImage(context);
  CGContextRelease(context);
  return image;
}

static NSImage *ImageWithCGImage(CGImageRef cgImage) {
  if (cgImage == NULL) {
    return nil;
  }
  NSBitmapImageRep *rep = [[[NSBitmapImageRep alloc] initWithCGImage:cgImage] autorelease];
  NSImage *image = [[[NSImage alloc] initWithSize:[rep size]] autorelease];
  [image addRepresentation:rep];
  return image;
}

#pragma mark - Canvas

// Draws every sample; owns the images it shows.
@interface ImagesPageCanvas : NSView {
  NSMutableArray *_trimSamples;  // NSImage, one bitmap rep each
  NSImage *_offscreen;
  NSSize _offscreenPoints;
  NSImage *_capSource;
  NSImage *_mask;
  NSImage *_maskDemo;  // the tinted masks, drawn once
}
@end

@implementation ImagesPageCanvas

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) {
    return nil;
  }
  _trimSamples = [NSMutableArray new];
  CGImageRef samples[3] = {
      NewSampleImage(96, 64, ^(CGContextRef c) {
        CGContextSetRGBFillColor(c, 0.25, 0.45, 0.85, 1);
        CGContextFillEllipseInRect(c, CGRectMake(30, 10, 40, 36));
      }),
      NewSampleImage(96, 64, ^(CGContextRef c) {
        CGContextSetRGBFillColor(c, 0.90, 0.35, 0.30, 1);
        CGContextFillRect(c, CGRectMake(8, 40, 70, 8));
        CGContextFillRect(c, CGRectMake(60, 6, 6, 6));
      }),
      NewSampleImage(96, 64, ^(CGContextRef c) {
        // Barely visible: alpha 1/255 still counts as filled.
        CGContextSetRGBFillColor(c, 0, 0, 0, 1.0 / 255.0);
        CGContextFillRect(c, CGRectMake(20, 20, 20, 20));
        CGContextSetRGBFillColor(c, 0.30, 0.65, 0.40, 1);
        CGContextFillRect(c, CGRectMake(44, 30, 10, 10));
      }),
  };
  for (CGImageRef sample : samples) {
    NSImage *image = ImageWithCGImage(sample);
    if (image != nil) {
      [_trimSamples addObject:image];
    }
    CGImageRelease(sample);
  }

  // GNUstep always reports a backing scale of 1; its platform layer lets
  // the page ask for 2 while it renders.
  _offscreenPoints = NSMakeSize(90, 40);
#ifdef GNUSTEP
  CGFloat previous = [NSScreen talvo_backingScaleFactorOverride];
  [NSScreen talvo_setBackingScaleFactorOverride:2];
#endif
  CGImageRef drawn = CGCreateImageWithDrawingBlock(^(CGContextRef c) {
    [[NSColor colorWithCalibratedRed:0.95 green:0.70 blue:0.20 alpha:1] set];
    [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(2, 2, 36, 36)] fill];
    CGContextSetRGBStrokeColor(c, 0.2, 0.2, 0.2, 1);
    CGContextSetLineWidth(c, 0.5);
    for (int i = 0; i < 8; i++) {
      CGContextStrokeRect(c, CGRectMake(44 + i * 5.5, 4 + i * 4, 4, 4));
    }
  }, NSMakeRect(0, 0, _offscreenPoints.width, _offscreenPoints.height));
#ifdef GNUSTEP
  [NSScreen talvo_setBackingScaleFactorOverride:previous];
#endif
  _offscreen = [ImageWithCGImage(drawn) retain];
  [_offscreen setSize:_offscreenPoints];
  CGImageRelease(drawn);

  CGImageRef pill = NewSampleImage(30, 16, ^(CGContextRef c) {
    CGContextSetRGBFillColor(c, 0.25, 0.45, 0.85, 1);
    CGContextFillEllipseInRect(c, CGRectMake(0, 0, 16, 16));
    CGContextFillEllipseInRect(c, CGRectMake(14, 0, 16, 16));
    CGContextFillRect(c, CGRectMake(8, 0, 14, 16));
    CGContextSetRGBFillColor(c, 1, 1, 1, 1);
    CGContextFillRect(c, CGRectMake(8, 7, 14, 2));
  });
  _capSource = [ImageWithCGImage(pill) retain];
  CGImageRelease(pill);

  CGImageRef star = NewSampleImage(32, 32, ^(CGContextRef c) {
    CGContextSetRGBFillColor(c, 0, 0, 0, 1);
    CGContextMoveToPoint(c, 16, 31);
    for (int i = 1; i < 10; i++) {
      double angle = M_PI / 2 + i * M_PI / 5;
      double radius = (i % 2) ? 6 : 15;
      CGContextAddLineToPoint(c, 16 + radius * cos(angle), 16 + radius * sin(angle));
    }
    CGContextClosePath(c);
    CGContextFillPath(c);
    CGContextFillRect(c, CGRectMake(0, 0, 32, 3));  // a bar at the bottom shows the flip
  });
  _mask = [ImageWithCGImage(star) retain];
  CGImageRelease(star);

  // Drawn once, offscreen: converting the mask to a CGImage while a window
  // draws is what this would otherwise do on every redisplay.
  _maskDemo = [[NSImage alloc] initWithSize:NSMakeSize(220, 48)];
  [_maskDemo lockFocus];
  [self drawMasksAt:NSZeroPoint];
  [_maskDemo unlockFocus];

  [self addLabels];
  return self;
}

- (void)dealloc {
  [_maskDemo release];
  [_mask release];
  [_capSource release];
  [_offscreen release];
  [_trimSamples release];
  [super dealloc];
}

- (double)top {
  return NSHeight([self bounds]);
}

- (void)addLabels {
  double top = [self top];
  [self addSubview:GalleryLabel(@"Transparent borders: the found rectangle (pixels, from the top)",
                                NSMakeRect(20, top - 28, 420, 18))];
  NSInteger index = 0;
  for (NSImage *image in _trimSamples) {
    NSBitmapImageRep *rep = [[image representations] objectAtIndex:0];
    CGRect found = VXGetFilledRect([rep CGImage]);
    NSSize trimmed = [[[[image imageByTrimmingTransparentPixels] representations] lastObject] size];
    NSString *size = [NSString stringWithFormat:@"%ldx%ld -> %gx%g", (long)[rep pixelsWide],
                                                (long)[rep pixelsHigh], trimmed.width,
                                                trimmed.height];
    NSString *rect = [NSString stringWithFormat:@"{%g, %g, %g, %g}", found.origin.x,
                                                found.origin.y, found.size.width,
                                                found.size.height];
    [self addSubview:GalleryLabel(size, NSMakeRect(20 + index * 140, top - 118, 136, 18))];
    [self addSubview:GalleryLabel(rect, NSMakeRect(20 + index * 140, top - 134, 136, 18))];
    index++;
  }

  [self addSubview:GalleryLabel(@"Offscreen drawing block at scale 2",
                                NSMakeRect(460, top - 28, 250, 18))];
  NSBitmapImageRep *offscreenRep = [[_offscreen representations] lastObject];
  NSString *pixels = [NSString stringWithFormat:@"%gx%g pt -> %ldx%ld px", _offscreenPoints.width,
                                                _offscreenPoints.height,
                                                (long)[offscreenRep pixelsWide],
                                                (long)[offscreenRep pixelsHigh]];
  [self addSubview:GalleryLabel(pixels, NSMakeRect(460, top - 118, 250, 18))];

  [self addSubview:GalleryLabel(@"Three-part caps of a 30-point pill (caps 8 + 8)",
                                NSMakeRect(20, top - 158, 420, 18))];
  [self addSubview:GalleryLabel(@"Aspect fit into 60 x 60",
                                NSMakeRect(20, top - 300, 250, 18))];
  [self addSubview:GalleryLabel(@"Colour through a mask: plain, flipped, tinted",
                                NSMakeRect(400, top - 300, 300, 18))];
}

- (void)drawRect:(NSRect)dirtyRect {
  [[NSColor colorWithCalibratedWhite:0.96 alpha:1] set];
  NSRectFill(dirtyRect);
  double top = [self top];
  [self drawTrimSamplesAt:top - 100];
  [self drawOffscreenAt:NSMakePoint(460, top - 100)];
  [self drawCapsAt:top - 186];
  [self drawFitsAt:top - 380];
  [_maskDemo drawAtPoint:NSMakePoint(400, top - 360)
               fromRect:NSZeroRect
              operation:NSCompositeSourceOver
               fraction:1];
}

- (void)drawTrimSamplesAt:(double)y {
  NSInteger index = 0;
  for (NSImage *image in _trimSamples) {
    NSBitmapImageRep *rep = [[image representations] objectAtIndex:0];
    NSRect box = NSMakeRect(20 + index * 140, y, [rep pixelsWide], [rep pixelsHigh]);
    [[NSColor colorWithCalibratedWhite:0.85 alpha:1] set];
    NSRectFill(box);
    [image drawInRect:box fromRect:NSZeroRect operation:NSCompositeSourceOver fraction:1];
    // Pixel rows count from the top; the view's y grows upward.
    CGRect found = VXGetFilledRect([rep CGImage]);
    NSRect outline = NSMakeRect(NSMinX(box) + found.origin.x,
                                NSMaxY(box) - found.origin.y - found.size.height,
                                found.size.width, found.size.height);
    [[NSColor colorWithCalibratedRed:0.85 green:0.1 blue:0.1 alpha:1] set];
    NSFrameRect(NSInsetRect(outline, -1, -1));
    index++;
  }
}

- (void)drawOffscreenAt:(NSPoint)origin {
  NSRect box = NSMakeRect(origin.x, origin.y, _offscreenPoints.width * 2, _offscreenPoints.height * 2);
  [[NSColor whiteColor] set];
  NSRectFill(box);
  // Drawn twice its point size so that the 2x pixels show.
  [_offscreen drawInRect:box fromRect:NSZeroRect operation:NSCompositeSourceOver fraction:1];
}

- (void)drawCapsAt:(double)y {
  double x = 20;
  const CGFloat widths[] = {30, 60, 120, 220};
  for (CGFloat width : widths) {
    NSImage *capped = [_capSource imageWithleftCapWidth:8 middleWidth:width - 16 rightCapWidth:8];
    [capped drawAtPoint:NSMakePoint(x, y) fromRect:NSZeroRect operation:NSCompositeSourceOver fraction:1];
    NSString *text = [NSString stringWithFormat:@"%g", [capped size].width];
    [text drawAtPoint:NSMakePoint(x, y - 18) withAttributes:nil];
    x += width + 20;
  }
}

- (void)drawFitsAt:(double)y {
  NSSize sizes[] = {{200, 100}, {100, 200}, {20, 10}, {60, 60}};
  for (int i = 0; i < 4; i++) {
    NSImage *image = [[[NSImage alloc] initWithSize:sizes[i]] autorelease];
    NSSize fitted = [image scaledSizeThatFitInSize:NSMakeSize(60, 60)];
    NSRect box = NSMakeRect(20 + i * 90, y, 60, 60);
    [[NSColor colorWithCalibratedWhite:0.80 alpha:1] set];
    NSFrameRect(box);
    [[NSColor colorWithCalibratedRed:0.30 green:0.65 blue:0.40 alpha:1] set];
    NSRectFill(NSMakeRect(NSMinX(box), NSMinY(box), fitted.width, fitted.height));
    NSString *from = [NSString stringWithFormat:@"%gx%g", sizes[i].width, sizes[i].height];
    NSString *to = [NSString stringWithFormat:@"-> %gx%g", fitted.width, fitted.height];
    [from drawAtPoint:NSMakePoint(NSMinX(box), y - 18) withAttributes:nil];
    [to drawAtPoint:NSMakePoint(NSMinX(box), y - 34) withAttributes:nil];
  }
}

- (void)drawMasksAt:(NSPoint)origin {
  NSColor *colors[] = {[NSColor colorWithCalibratedRed:0.25 green:0.45 blue:0.85 alpha:1],
                       [NSColor colorWithCalibratedRed:0.90 green:0.35 blue:0.30 alpha:1],
                       [NSColor colorWithCalibratedRed:0.30 green:0.65 blue:0.40 alpha:0.6]};
  BOOL flips[] = {NO, YES, NO};
  for (int i = 0; i < 3; i++) {
    NSRect rect = NSMakeRect(origin.x + i * 80, origin.y, 48, 48);
    [_mask drawColor:colors[i] inRect:rect flipped:flips[i]];
  }
}

@end

#pragma mark - Page

@implementation ImagesPage

- (NSString *)identifier {
  return @"images";
}

- (NSString *)title {
  return @"Image trimming and composition";
}

- (NSString *)caption {
  return @"Filled rectangles of images with transparent borders, a drawing block rendered "
         @"offscreen at scale 2, three-part cap images at four widths, aspect-fitted sizes and "
         @"a colour drawn through an image mask.";
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  return [[[ImagesPageCanvas alloc] initWithFrame:frame] autorelease];
}

@end
