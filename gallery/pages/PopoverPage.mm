#import "gallery/pages/PopoverPage.h"

#import <Talvo/VXPopoverShape.h>

// Fills a popover outline and strokes the shape 2 points inside it.
@interface PopoverPageShapeView : NSView {
  VXPopoverShape *_shape;
}
- (instancetype)initWithFrame:(NSRect)frame shape:(VXPopoverShape *)shape;
@end

@implementation PopoverPageShapeView

- (instancetype)initWithFrame:(NSRect)frame shape:(VXPopoverShape *)shape {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _shape = [shape retain];
  }
  return self;
}

- (void)dealloc {
  [_shape release];
  [super dealloc];
}

- (void)drawRect:(NSRect)dirtyRect {
  [[NSColor colorWithCalibratedWhite:0.25 alpha:1] set];
  [[_shape path] fill];
  [[NSColor colorWithCalibratedRed:0.95 green:0.75 blue:0.3 alpha:1] set];
  NSBezierPath *inner = [[_shape popoverShapeWithOffset:2] path];
  [inner setLineWidth:1];
  [inner stroke];
}

@end

@implementation PopoverPage

- (NSString *)identifier {
  return @"popover";
}

- (NSString *)title {
  return @"Popover shape";
}

- (NSString *)caption {
  return @"Popover outlines at three sizes, the arrow centred, at either end, over a corner, "
         @"wide and flat, with the shape 2 points inside stroked.";
}

- (void)addShapeTo:(NSView *)page
             frame:(NSRect)frame
             apexX:(double)apexX
        arrowWidth:(double)width
       arrowHeight:(double)height
            radius:(double)radius
             label:(NSString *)label {
  VXPopoverShape *shape = [[VXPopoverShape alloc] init];
  NSRect bounds = NSInsetRect(NSMakeRect(0, 0, NSWidth(frame), NSHeight(frame)), 2, 2);
  [shape setBounds:bounds];
  [shape setArrowWidth:width];
  [shape setArrowHeight:height];
  [shape setRadius:radius];
  if (apexX < 0) {
    [shape setArrowOriginAtMiddle];
  } else {
    [shape setArrowXOrigin:apexX];
  }
  PopoverPageShapeView *view = [[PopoverPageShapeView alloc] initWithFrame:frame shape:shape];
  [page addSubview:view];
  [view release];
  [shape release];
  [page addSubview:GalleryLabel(label, NSMakeRect(NSMinX(frame), NSMinY(frame) - 22, 220, 18))];
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  NSView *page = [[[NSView alloc] initWithFrame:frame] autorelease];
  double top = NSHeight(frame);

  // Sizes, arrow centred (a negative apex asks for the middle).
  [self addShapeTo:page
             frame:NSMakeRect(20, top - 100, 90, 70)
             apexX:-1
        arrowWidth:10
       arrowHeight:10
            radius:4
             label:@"90 x 70, defaults"];
  [self addShapeTo:page
             frame:NSMakeRect(150, top - 150, 180, 120)
             apexX:-1
        arrowWidth:16
       arrowHeight:12
            radius:8
             label:@"180 x 120, radius 8"];
  [self addShapeTo:page
             frame:NSMakeRect(370, top - 190, 320, 160)
             apexX:-1
        arrowWidth:24
       arrowHeight:16
            radius:12
             label:@"320 x 160, radius 12"];

  // Arrow places along the top edge.
  double y = top - 400;
  [self addShapeTo:page
             frame:NSMakeRect(20, y, 150, 120)
             apexX:24
        arrowWidth:16
       arrowHeight:12
            radius:6
             label:@"apex near the left end"];
  [self addShapeTo:page
             frame:NSMakeRect(190, y, 150, 120)
             apexX:126
        arrowWidth:16
       arrowHeight:12
            radius:6
             label:@"apex near the right end"];
  [self addShapeTo:page
             frame:NSMakeRect(360, y, 150, 120)
             apexX:6
        arrowWidth:16
       arrowHeight:12
            radius:10
             label:@"apex over a corner"];
  [self addShapeTo:page
             frame:NSMakeRect(530, y, 160, 120)
             apexX:80
        arrowWidth:60
       arrowHeight:8
            radius:6
             label:@"wide, flat arrow"];
  return page;
}

@end
