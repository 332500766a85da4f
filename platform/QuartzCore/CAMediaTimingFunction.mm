// Timing functions: the named curves and the solver behind them.

#import <QuartzCore/QuartzCore.h>

#include "platform/QuartzCore/engine/TimingCurve.hpp"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

NSString *const kCAMediaTimingFunctionLinear = @"linear";
NSString *const kCAMediaTimingFunctionEaseIn = @"easeIn";
NSString *const kCAMediaTimingFunctionEaseOut = @"easeOut";
NSString *const kCAMediaTimingFunctionEaseInEaseOut = @"easeInEaseOut";
NSString *const kCAMediaTimingFunctionDefault = @"default";

@implementation CAMediaTimingFunction

#pragma mark - Lifecycle

+ (instancetype)functionWithName:(NSString *)name {
  static const struct {
    NSString *const *name;
    float points[4];
  } named[] = {
      {&kCAMediaTimingFunctionLinear, {0, 0, 1, 1}},
      {&kCAMediaTimingFunctionEaseIn, {0.42f, 0, 1, 1}},
      {&kCAMediaTimingFunctionEaseOut, {0, 0, 0.58f, 1}},
      {&kCAMediaTimingFunctionEaseInEaseOut, {0.42f, 0, 0.58f, 1}},
      {&kCAMediaTimingFunctionDefault, {0.25f, 0.1f, 0.25f, 1}},
  };
  for (const auto &entry : named) {
    if ([*entry.name isEqualToString:name]) {
      const float *p = entry.points;
      return [[[self alloc] initWithControlPoints:p[0] :p[1] :p[2] :p[3]] autorelease];
    }
  }
  NSLog(@"CAMediaTimingFunction: unknown timing function name %@", name);
  return nil;
}

+ (instancetype)functionWithControlPoints:(float)c1x :(float)c1y :(float)c2x :(float)c2y {
  return [[[self alloc] initWithControlPoints:c1x :c1y :c2x :c2y] autorelease];
}

- (instancetype)init {
  return [self initWithControlPoints:0 :0 :1 :1];
}

- (instancetype)initWithControlPoints:(float)c1x :(float)c1y :(float)c2x :(float)c2y {
  self = [super init];
  if (self != nil) {
    _points[0] = c1x;
    _points[1] = c1y;
    _points[2] = c2x;
    _points[3] = c2y;
  }
  return self;
}

#pragma mark - Public

- (void)getControlPointAtIndex:(size_t)index values:(float[2])values {
  if (values == NULL) {
    return;
  }
  switch (index) {
    case 0:
      values[0] = 0;
      values[1] = 0;
      break;
    case 1:
    case 2:
      values[0] = _points[(index - 1) * 2];
      values[1] = _points[(index - 1) * 2 + 1];
      break;
    case 3:
      values[0] = 1;
      values[1] = 1;
      break;
    default:
      break;
  }
}

- (float)_solveForInput:(float)t {
  return (float)[self _tv_solve:t];
}

// Full precision, for the animations' own use.
- (double)_tv_solve:(double)t {
  return talvo::animation::TimingCurve(_points[0], _points[1], _points[2], _points[3]).solve(t);
}

#pragma mark - NSObject

- (BOOL)isEqual:(id)other {
  if (other == self) {
    return YES;
  }
  if (![other isKindOfClass:[CAMediaTimingFunction class]]) {
    return NO;
  }
  CAMediaTimingFunction *function = other;
  for (int i = 0; i < 4; i++) {
    if (_points[i] != function->_points[i]) {
      return NO;
    }
  }
  return YES;
}

- (NSUInteger)hash {
  NSUInteger hash = 0;
  for (int i = 0; i < 4; i++) {
    hash = hash * 31 + (NSUInteger)(_points[i] * 1000);
  }
  return hash;
}

- (NSString *)description {
  return [NSString stringWithFormat:@"<CAMediaTimingFunction: %p (%g, %g) (%g, %g)>", (void *)self,
                                    _points[0], _points[1], _points[2], _points[3]];
}

@end
