// The animation objects: plain descriptions, copied when added to a layer.

#import <QuartzCore/QuartzCore.h>

#include <cmath>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

NSString *const kCAFillModeForwards = @"forwards";
NSString *const kCAFillModeBackwards = @"backwards";
NSString *const kCAFillModeBoth = @"both";
NSString *const kCAFillModeRemoved = @"removed";

NSString *const kCAAnimationLinear = @"linear";
NSString *const kCAAnimationDiscrete = @"discrete";
NSString *const kCAAnimationPaced = @"paced";
NSString *const kCAAnimationCubic = @"cubic";
NSString *const kCAAnimationCubicPaced = @"cubicPaced";

NSString *const kCAAnimationRotateAuto = @"auto";
NSString *const kCAAnimationRotateAutoReverse = @"autoReverse";

@implementation CAAnimation

@synthesize beginTime = _beginTime;
@synthesize duration = _duration;
@synthesize speed = _speed;
@synthesize timeOffset = _timeOffset;
@synthesize repeatCount = _repeatCount;
@synthesize repeatDuration = _repeatDuration;
@synthesize autoreverses = _autoreverses;
@synthesize fillMode = _fillMode;
@synthesize timingFunction = _timingFunction;
@synthesize delegate = _delegate;
@synthesize removedOnCompletion = _removedOnCompletion;

#pragma mark - Lifecycle

+ (instancetype)animation {
  return [[[self alloc] init] autorelease];
}

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _speed = 1;
    _fillMode = [kCAFillModeRemoved copy];
    _removedOnCompletion = YES;
  }
  return self;
}

- (void)dealloc {
  [_delegate release];
  _delegate = nil;
  [_timingFunction release];
  [_fillMode release];
  [super dealloc];
}

- (id)copyWithZone:(NSZone *)zone {
  CAAnimation *copy = [[[self class] allocWithZone:zone] init];
  copy->_beginTime = _beginTime;
  copy->_duration = _duration;
  copy->_speed = _speed;
  copy->_timeOffset = _timeOffset;
  copy->_repeatCount = _repeatCount;
  copy->_repeatDuration = _repeatDuration;
  copy->_autoreverses = _autoreverses;
  [copy->_fillMode release];
  copy->_fillMode = [_fillMode copy];
  copy->_timingFunction = [_timingFunction retain];
  copy->_delegate = [_delegate retain];
  copy->_removedOnCompletion = _removedOnCompletion;
  return copy;
}

#pragma mark - Public

- (void)setFillMode:(NSString *)fillMode {
  NSString *old = _fillMode;
  _fillMode = fillMode != nil ? [fillMode copy] : [kCAFillModeRemoved copy];
  [old release];
}

- (void)setDuration:(CFTimeInterval)duration {
  _duration = std::isfinite(duration) && duration > 0 ? duration : 0;
}

@end

@implementation CAAnimation (TalvoCAAction)

- (void)runActionForKey:(NSString *)event object:(id)anObject arguments:(NSDictionary *)dict {
  if ([anObject isKindOfClass:[CALayer class]]) {
    [(CALayer *)anObject addAnimation:self forKey:event];
  }
}

@end

@implementation CAPropertyAnimation

@synthesize keyPath = _keyPath;
@synthesize additive = _additive;
@synthesize cumulative = _cumulative;

+ (instancetype)animationWithKeyPath:(NSString *)path {
  CAPropertyAnimation *animation = [self animation];
  [animation setKeyPath:path];
  return animation;
}

- (void)dealloc {
  [_keyPath release];
  [super dealloc];
}

- (id)copyWithZone:(NSZone *)zone {
  CAPropertyAnimation *copy = [super copyWithZone:zone];
  copy->_keyPath = [_keyPath copy];
  copy->_additive = _additive;
  copy->_cumulative = _cumulative;
  return copy;
}

@end

@implementation CABasicAnimation

@synthesize fromValue = _fromValue;
@synthesize toValue = _toValue;
@synthesize byValue = _byValue;

- (void)dealloc {
  [_byValue release];
  [_toValue release];
  [_fromValue release];
  [super dealloc];
}

- (id)copyWithZone:(NSZone *)zone {
  CABasicAnimation *copy = [super copyWithZone:zone];
  copy->_fromValue = [_fromValue retain];
  copy->_toValue = [_toValue retain];
  copy->_byValue = [_byValue retain];
  return copy;
}

@end

@implementation CAKeyframeAnimation

@synthesize values = _values;
@synthesize path = _path;
@synthesize keyTimes = _keyTimes;
@synthesize timingFunctions = _timingFunctions;
@synthesize calculationMode = _calculationMode;
@synthesize rotationMode = _rotationMode;

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _calculationMode = [kCAAnimationLinear copy];
  }
  return self;
}

- (void)dealloc {
  [_rotationMode release];
  [_calculationMode release];
  [_timingFunctions release];
  [_keyTimes release];
  CGPathRelease(_path);
  _path = NULL;
  [_values release];
  [super dealloc];
}

- (id)copyWithZone:(NSZone *)zone {
  CAKeyframeAnimation *copy = [super copyWithZone:zone];
  copy->_values = [_values copy];
  copy->_path = CGPathRetain(_path);
  copy->_keyTimes = [_keyTimes copy];
  copy->_timingFunctions = [_timingFunctions copy];
  [copy->_calculationMode release];
  copy->_calculationMode = [_calculationMode copy];
  copy->_rotationMode = [_rotationMode copy];
  return copy;
}

- (void)setPath:(CGPathRef)path {
  if (path == _path) {
    return;
  }
  CGPathRef old = _path;
  _path = CGPathRetain(path);
  CGPathRelease(old);
}

- (void)setCalculationMode:(NSString *)mode {
  NSString *old = _calculationMode;
  _calculationMode = mode != nil ? [mode copy] : [kCAAnimationLinear copy];
  [old release];
}

@end

@implementation NSNull (TalvoCAAction)

- (void)runActionForKey:(NSString *)event object:(id)anObject arguments:(NSDictionary *)dict {
}

@end
