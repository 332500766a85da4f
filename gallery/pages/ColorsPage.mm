#import "gallery/pages/ColorsPage.h"

#import <Talvo/NSColor+Checkboard.h>
#import <Talvo/NSColor+Talvo.h>
#import <Talvo/NSColor+Transform.h>
#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/ReflectedGradient.h>

// Fills its bounds with a colour, pattern colours included (GNUstep's
// pattern colours take -set but not -setFill), then an optional gradient,
// so that transparent stops show the fill.
@interface ColorsPageFillView : NSView {
  NSColor *_fill;
  NSGradient *_gradient;
  CGFloat _angle;
}
- (instancetype)initWithFrame:(NSRect)frame
                         fill:(NSColor *)fill
                     gradient:(NSGradient *)gradient
                        angle:(CGFloat)angle;
@end

@implementation ColorsPageFillView

- (instancetype)initWithFrame:(NSRect)frame
                         fill:(NSColor *)fill
                     gradient:(NSGradient *)gradient
                        angle:(CGFloat)angle {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _fill = [fill retain];
    _gradient = [gradient retain];
    _angle = angle;
  }
  return self;
}

- (void)dealloc {
  [_gradient release];
  [_fill release];
  [super dealloc];
}

- (void)drawRect:(NSRect)dirtyRect {
  [_fill set];
  NSRectFill([self bounds]);
  [_gradient drawInRect:[self bounds] angle:_angle];
}

@end

@implementation ColorsPage

- (NSString *)identifier {
  return @"colors";
}

- (NSString *)title {
  return @"Colours and gradients";
}

- (NSString *)caption {
  return @"Checkerboards, darker and lighter ladders from the selection blue and a grey, the "
         @"preset gradients in the older and newer look, and reflected gradients.";
}

- (void)addLadderTo:(NSView *)page
               from:(NSColor *)color
               step:(NSColor * (^)(NSColor *))step
              label:(NSString *)label
                  y:(double)y {
  [page addSubview:GalleryLabel(label, NSMakeRect(20, y + 2, 150, 20))];
  NSColor *current = color;
  for (int i = 0; i < 6; i++) {
    [page addSubview:GallerySwatch(current, NSMakeRect(180 + i * 46, y, 40, 24))];
    current = step(current);
  }
}

- (void)addFill:(NSColor *)fill
       gradient:(NSGradient *)gradient
          angle:(CGFloat)angle
             to:(NSView *)page
          frame:(NSRect)frame {
  NSView *view = [[ColorsPageFillView alloc] initWithFrame:frame
                                                      fill:fill
                                                  gradient:gradient
                                                     angle:angle];
  [page addSubview:view];
  [view release];
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  NSView *page = [[[NSView alloc] initWithFrame:frame] autorelease];
  double top = NSHeight(frame);

  // Checkerboards and the selection colour.
  [page addSubview:GalleryLabel(@"Standard checkerboard", NSMakeRect(20, top - 36, 180, 20))];
  [self addFill:[NSColor standardCheckerboardColor]
       gradient:nil
          angle:0
             to:page
          frame:NSMakeRect(20, top - 110, 120, 70)];
  NSColor *custom = [NSColor checkerboardColorWithFirstColor:[NSColor selectedColor]
                                                 secondColor:[NSColor colorWithCalibratedWhite:1
                                                                                         alpha:1]
                                                 squareWidth:5];
  [page addSubview:GalleryLabel(@"Blue and white, 5 pt", NSMakeRect(180, top - 36, 180, 20))];
  [self addFill:custom gradient:nil angle:0 to:page frame:NSMakeRect(180, top - 110, 120, 70)];
  [page addSubview:GalleryLabel(@"Selection colour", NSMakeRect(340, top - 36, 180, 20))];
  [page addSubview:GallerySwatch([NSColor selectedColor], NSMakeRect(340, top - 110, 120, 70))];

  // Ladders: each swatch is the previous one transformed once more.
  NSColor *grey = [NSColor colorWithCalibratedWhite:0.35 alpha:1];
  [self addLadderTo:page
               from:[NSColor selectedColor]
               step:^NSColor *(NSColor *c) {
                 return [c darkerColor];
               }
              label:@"darkerColor"
                  y:top - 150];
  [self addLadderTo:page
               from:[NSColor selectedColor]
               step:^NSColor *(NSColor *c) {
                 return [c lighterColor];
               }
              label:@"lighterColor"
                  y:top - 180];
  [self addLadderTo:page
               from:grey
               step:^NSColor *(NSColor *c) {
                 return [c lighterColor:0.8];
               }
              label:@"lighterColor: 0.8 (grey)"
                  y:top - 210];
  [self addLadderTo:page
               from:[NSColor blackColor]
               step:^NSColor *(NSColor *c) {
                 return [c lighterColor:0.8];
               }
              label:@"lighterColor: 0.8 (black)"
                  y:top - 240];

  // Presets: older look on the left of each pair, newer on the right.
  [page
      addSubview:GalleryLabel(@"Presets, older | newer look", NSMakeRect(500, top - 36, 200, 20))];
  NSArray *names = [NSArray arrayWithObjects:@"gray", @"lightGray", @"blue", nil];
  for (NSUInteger i = 0; i < 3; i++) {
    double y = top - 90 - i * 60.0;
    [page addSubview:GalleryLabel([names objectAtIndex:i], NSMakeRect(500, y + 40, 100, 16))];
    for (int newer = 0; newer < 2; newer++) {
      NSGradient *gradient = i == 0   ? [NSGradient grayGradientForNewerLook:newer]
                             : i == 1 ? [NSGradient lightGrayGradientForNewerLook:newer]
                                      : [NSGradient blueGradientForNewerLook:newer];
      [self addFill:[NSColor whiteColor]
           gradient:gradient
              angle:90
                 to:page
              frame:NSMakeRect(500 + newer * 100, y, 90, 36)];
    }
  }

  // Reflected gradients over the checkerboard: the band and its fades.
  [page
      addSubview:GalleryLabel(@"Reflected: 0.15, 0.05, 0.35", NSMakeRect(20, top - 280, 300, 20))];
  double sizes[] = {0.15, 0.05, 0.35};
  for (int i = 0; i < 3; i++) {
    NSGradient *gradient =
        i == 0 ? reflectedGradientWithTargetColor([NSColor selectedColor])
               : reflectedSizedGradientWithTargetColor([NSColor selectedColor], sizes[i]);
    [self addFill:[NSColor standardCheckerboardColor]
         gradient:gradient
            angle:0
               to:page
            frame:NSMakeRect(20 + i * 230, top - 340, 210, 50)];
  }
  // Vertical, as a highlight band across a row.
  [self addFill:[NSColor standardCheckerboardColor]
       gradient:reflectedSizedGradientWithTargetColor([NSColor blackColor], 0.1)
          angle:90
             to:page
          frame:NSMakeRect(20, top - 420, 670, 60)];
  return page;
}

@end
