#import <Talvo/VXPopoverShape.h>

#include "core/controls/PopoverOutline.hpp"
#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

using talvo::controls::OutlineStep;
using talvo::controls::PopoverGeometry;

@implementation VXPopoverShape

#pragma mark - Lifecycle

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    PopoverGeometry defaults;
    _arrowXOrigin = defaults.arrowXOrigin;
    _arrowWidth = defaults.arrowWidth;
    _arrowHeight = defaults.arrowHeight;
    _radius = defaults.radius;
    _bounds = NSZeroRect;
  }
  return self;
}

- (void)dealloc {
  TalvoDestroy(_path);
  [super dealloc];
}

#pragma mark - Public

- (NSBezierPath *)path {
  if (_path == nil) {
    [self _buildPath];
  }
  return _path;
}

- (CGFloat)arrowXOrigin {
  return _arrowXOrigin;
}

- (void)setArrowXOrigin:(CGFloat)arrowXOrigin {
  if (arrowXOrigin == _arrowXOrigin) {
    return;
  }
  _arrowXOrigin = arrowXOrigin;
  TalvoDestroy(_path);
}

- (CGFloat)arrowWidth {
  return _arrowWidth;
}

- (void)setArrowWidth:(CGFloat)arrowWidth {
  if (arrowWidth == _arrowWidth) {
    return;
  }
  _arrowWidth = arrowWidth;
  TalvoDestroy(_path);
}

- (CGFloat)arrowHeight {
  return _arrowHeight;
}

- (void)setArrowHeight:(CGFloat)arrowHeight {
  if (arrowHeight == _arrowHeight) {
    return;
  }
  _arrowHeight = arrowHeight;
  TalvoDestroy(_path);
}

- (CGFloat)radius {
  return _radius;
}

- (void)setRadius:(CGFloat)radius {
  if (radius == _radius) {
    return;
  }
  _radius = radius;
  TalvoDestroy(_path);
}

- (CGRect)bounds {
  return _bounds;
}

- (void)setBounds:(CGRect)bounds {
  if (NSEqualRects(bounds, _bounds)) {
    return;
  }
  _bounds = bounds;
  TalvoDestroy(_path);
}

- (void)setArrowOriginAtMiddle {
  [self setArrowXOrigin:talvo::controls::MiddleArrowX([self _geometry].bounds)];
}

- (VXPopoverShape *)popoverShapeWithOffset:(CGFloat)offset {
  PopoverGeometry shrunk = talvo::controls::ShrunkPopover([self _geometry], offset);
  VXPopoverShape *shape = [[[VXPopoverShape alloc] init] autorelease];
  // Through the setters, in this order, as a caller would.
  [shape setArrowHeight:shrunk.arrowHeight];
  [shape setArrowWidth:shrunk.arrowWidth];
  [shape setArrowXOrigin:shrunk.arrowXOrigin];
  [shape setBounds:NSMakeRect(shrunk.bounds.x, shrunk.bounds.y, shrunk.bounds.width,
                              shrunk.bounds.height)];
  [shape setRadius:shrunk.radius];
  return shape;
}

#pragma mark - Private

- (PopoverGeometry)_geometry {
  PopoverGeometry geometry;
  geometry.bounds = {_bounds.origin.x, _bounds.origin.y, _bounds.size.width, _bounds.size.height};
  geometry.arrowXOrigin = _arrowXOrigin;
  geometry.arrowWidth = _arrowWidth;
  geometry.arrowHeight = _arrowHeight;
  geometry.radius = _radius;
  return geometry;
}

- (void)_buildPath {
  NSBezierPath *path = [[NSBezierPath alloc] init];
  @try {
    for (const OutlineStep &step : talvo::controls::PopoverOutline([self _geometry])) {
      switch (step.kind) {
        case OutlineStep::Kind::Arc:
          [path appendBezierPathWithArcWithCenter:NSMakePoint(step.point.x, step.point.y)
                                           radius:step.radius
                                       startAngle:step.startAngle
                                         endAngle:step.endAngle];
          break;
        case OutlineStep::Kind::Line:
          [path lineToPoint:NSMakePoint(step.point.x, step.point.y)];
          break;
        case OutlineStep::Kind::Close:
          [path closePath];
          break;
      }
    }
  } @catch (NSException *exception) {
    // Whatever was appended stands; the caller still gets a path.
  }
  [path setLineJoinStyle:NSBevelLineJoinStyle];
  [path setLineCapStyle:NSButtLineCapStyle];
  [path setWindingRule:NSNonZeroWindingRule];
  _path = path;
}

@end
