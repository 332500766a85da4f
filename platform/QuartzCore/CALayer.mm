// Layers: model values, actions, and presentation copies that evaluate the
// running animations at the clock's current time.

#import "platform/QuartzCore/TVAnimationTrack.h"

#include <CoreGraphics/CGTalvoBridge.h>

#include <cmath>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

NSString *const kCAGravityCenter = @"center";
NSString *const kCAGravityTop = @"top";
NSString *const kCAGravityBottom = @"bottom";
NSString *const kCAGravityLeft = @"left";
NSString *const kCAGravityRight = @"right";
NSString *const kCAGravityTopLeft = @"topLeft";
NSString *const kCAGravityTopRight = @"topRight";
NSString *const kCAGravityBottomLeft = @"bottomLeft";
NSString *const kCAGravityBottomRight = @"bottomRight";
NSString *const kCAGravityResize = @"resize";
NSString *const kCAFilterNearest = @"nearest";
NSString *const kCAFilterLinear = @"linear";
NSString *const kCAFilterTrilinear = @"trilinear";
NSString *const kCAGravityResizeAspect = @"resizeAspect";
NSString *const kCAGravityResizeAspectFill = @"resizeAspectFill";

// Contents are objects or CGImages (which are not objects here): each is
// retained and released its own way.
static id TVRetainContents(id contents) {
  if (TVCGImageIsLive(contents)) {
    return (id)CGImageRetain((CGImageRef)contents);
  }
  return [contents retain];
}

static void TVReleaseContents(id contents) {
  if (TVCGImageIsLive(contents)) {
    CGImageRelease((CGImageRef)contents);
  } else {
    [contents release];
  }
}

@interface NSObject (TVLayerHost)
- (void)_tv_layerNeedsDisplay:(CALayer *)layer;
@end

// Tells whoever shows the tree (a layer-backed view, as the root layer's
// delegate) that it looks different now.
static void TVLayerChanged(CALayer *layer) {
  CALayer *root = layer;
  while ([root superlayer] != nil) {
    root = [root superlayer];
  }
  id delegate = [root delegate];
  if ([delegate respondsToSelector:@selector(_tv_layerNeedsDisplay:)]) {
    [delegate _tv_layerNeedsDisplay:layer];
  }
}

// Keys whose changes run an action by default.
static BOOL TVIsImplicitlyAnimatedKey(NSString *key) {
  return [key isEqualToString:@"bounds"] || [key isEqualToString:@"position"] ||
         [key isEqualToString:@"anchorPoint"] || [key isEqualToString:@"opacity"];
}

// Animations added without a key get one of their own, kept out of
// -animationKeys.
static NSString *const TVAnonymousKeyPrefix = @"\x01TVAnimation-";

namespace {

enum class StructProperty { Position, AnchorPoint, Bounds };
enum class FieldKind { Number, Point, Size, Rect };

struct StructField {
  NSString *path;
  StructProperty property;
  int first;  // component index within the property
  int count;
  FieldKind kind;
};

const StructField kStructFields[] = {
    {@"position", StructProperty::Position, 0, 2, FieldKind::Point},
    {@"position.x", StructProperty::Position, 0, 1, FieldKind::Number},
    {@"position.y", StructProperty::Position, 1, 1, FieldKind::Number},
    {@"anchorPoint", StructProperty::AnchorPoint, 0, 2, FieldKind::Point},
    {@"anchorPoint.x", StructProperty::AnchorPoint, 0, 1, FieldKind::Number},
    {@"anchorPoint.y", StructProperty::AnchorPoint, 1, 1, FieldKind::Number},
    {@"bounds", StructProperty::Bounds, 0, 4, FieldKind::Rect},
    {@"bounds.origin", StructProperty::Bounds, 0, 2, FieldKind::Point},
    {@"bounds.size", StructProperty::Bounds, 2, 2, FieldKind::Size},
    {@"bounds.origin.x", StructProperty::Bounds, 0, 1, FieldKind::Number},
    {@"bounds.origin.y", StructProperty::Bounds, 1, 1, FieldKind::Number},
    {@"bounds.size.width", StructProperty::Bounds, 2, 1, FieldKind::Number},
    {@"bounds.size.height", StructProperty::Bounds, 3, 1, FieldKind::Number},
};

const StructField *FieldNamed(NSString *path) {
  for (const StructField &field : kStructFields) {
    if ([field.path isEqualToString:path]) {
      return &field;
    }
  }
  return nullptr;
}

// A value's components (number, point, size or rect), or 0 for another value.
int ValueComponents(id value, double out[4]) {
  if ([value isKindOfClass:[NSNumber class]]) {
    out[0] = [value doubleValue];
    return 1;
  }
  if (![value isKindOfClass:[NSValue class]]) {
    return 0;
  }
  const char *type = [(NSValue *)value objCType];
  if (strcmp(type, @encode(NSPoint)) == 0) {
    NSPoint p = [value pointValue];
    out[0] = p.x;
    out[1] = p.y;
    return 2;
  }
  if (strcmp(type, @encode(NSSize)) == 0) {
    NSSize s = [value sizeValue];
    out[0] = s.width;
    out[1] = s.height;
    return 2;
  }
  if (strcmp(type, @encode(NSRect)) == 0) {
    NSRect r = [value rectValue];
    out[0] = r.origin.x;
    out[1] = r.origin.y;
    out[2] = r.size.width;
    out[3] = r.size.height;
    return 4;
  }
  return 0;
}

}  // namespace

@interface CALayer () <_TVAnimationHost>
- (void)_tv_setName:(NSString **)slot to:(NSString *)name fallback:(NSString *)fallback;
@end

@implementation CALayer

@synthesize bounds = _bounds;
@synthesize position = _position;
@synthesize anchorPoint = _anchorPoint;
@synthesize geometryFlipped = _geometryFlipped;
@dynamic contents;
@synthesize contentsScale = _contentsScale;
@synthesize opacity = _opacity;
@synthesize hidden = _hidden;
@synthesize name = _name;
@synthesize delegate = _delegate;
@synthesize actions = _actions;
@synthesize superlayer = _superlayer;
@synthesize masksToBounds = _masksToBounds;
@synthesize affineTransform = _affineTransform;
@dynamic contentsGravity;
@dynamic minificationFilter;
@dynamic magnificationFilter;
@dynamic backgroundColor;
@dynamic frame;
@dynamic sublayers;

#pragma mark - Lifecycle

+ (instancetype)layer {
  return [[[self alloc] init] autorelease];
}

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _anchorPoint = NSMakePoint(0.5, 0.5);
    _opacity = 1;
    _contentsScale = 1;
    _animationTracks = [NSMutableDictionary new];
    _animationKeys = [NSMutableArray new];
    _contentsGravity = [kCAGravityResize copy];
    _minificationFilter = [kCAFilterLinear copy];
    _magnificationFilter = [kCAFilterLinear copy];
    _affineTransform = CGAffineTransformIdentity;
  }
  return self;
}

- (instancetype)initWithLayer:(id)layer {
  self = [self init];
  if (self != nil && [layer isKindOfClass:[CALayer class]]) {
    CALayer *other = layer;
    _bounds = other->_bounds;
    _position = other->_position;
    _anchorPoint = other->_anchorPoint;
    _geometryFlipped = other->_geometryFlipped;
    _contents = TVRetainContents(other->_contents);
    _contentsScale = other->_contentsScale;
    _opacity = other->_opacity;
    _hidden = other->_hidden;
    _name = [other->_name copy];
    _delegate = other->_delegate;
    _actions = [other->_actions copy];
    _undeclaredValues = [other->_undeclaredValues mutableCopy];
    _backgroundColor = CGColorRetain(other->_backgroundColor);
    _contentsImage = CGImageRetain(other->_contentsImage);
    [_contentsGravity release];
    _contentsGravity = [other->_contentsGravity copy];
    [_minificationFilter release];
    _minificationFilter = [other->_minificationFilter copy];
    [_magnificationFilter release];
    _magnificationFilter = [other->_magnificationFilter copy];
    _masksToBounds = other->_masksToBounds;
    _affineTransform = other->_affineTransform;
  }
  return self;
}

- (void)dealloc {
  // Running animations stop without telling their delegates; their groups
  // count them as ended.
  for (NSString *key in [[_animationKeys copy] autorelease]) {
    _TVAnimationTrack *track = [_animationTracks objectForKey:key];
    [track endFinished:NO notifyDelegate:NO];
  }
  for (CALayer *sublayer in _sublayers) {
    sublayer->_superlayer = nil;
  }
  CGImageRelease(_contentsImage);
  [_contentsGravity release];
  [_minificationFilter release];
  [_magnificationFilter release];
  CGColorRelease(_backgroundColor);
  [_modelLayer release];
  [_undeclaredValues release];
  [_animationKeys release];
  [_animationTracks release];
  [_sublayers release];
  [_actions release];
  [_name release];
  TVReleaseContents(_contents);
  [super dealloc];
}

#pragma mark - Geometry

- (CGRect)frame {
  return NSMakeRect(_position.x - _anchorPoint.x * _bounds.size.width,
                    _position.y - _anchorPoint.y * _bounds.size.height, _bounds.size.width,
                    _bounds.size.height);
}

- (void)setFrame:(CGRect)frame {
  [self setPosition:NSMakePoint(frame.origin.x + _anchorPoint.x * frame.size.width,
                                frame.origin.y + _anchorPoint.y * frame.size.height)];
  CGRect bounds = _bounds;
  bounds.size = frame.size;
  [self setBounds:bounds];
}

- (void)setBounds:(CGRect)bounds {
  if (NSEqualRects(bounds, _bounds)) {
    return;
  }
  [self _tv_changeKey:@"bounds" by:^{ self->_bounds = bounds; }];
}

- (void)setPosition:(CGPoint)position {
  if (NSEqualPoints(position, _position)) {
    return;
  }
  [self _tv_changeKey:@"position" by:^{ self->_position = position; }];
}

- (void)setAnchorPoint:(CGPoint)anchorPoint {
  if (NSEqualPoints(anchorPoint, _anchorPoint)) {
    return;
  }
  [self _tv_changeKey:@"anchorPoint" by:^{ self->_anchorPoint = anchorPoint; }];
}

- (void)setOpacity:(float)opacity {
  if (opacity == _opacity) {
    return;
  }
  [self _tv_changeKey:@"opacity" by:^{ self->_opacity = opacity; }];
  if (_modelLayer == nil) {
    TVLayerChanged(self);
  }
}

#pragma mark - Appearance

- (id)contents {
  return _contents;
}

- (void)setContents:(id)contents {
  id old = _contents;
  _contents = TVRetainContents(contents);
  TVReleaseContents(old);
  CGImageRelease(_contentsImage);
  _contentsImage = NULL;
  if (_modelLayer == nil) {
    TVLayerChanged(self);
  }
}

- (NSString *)contentsGravity {
  return _contentsGravity;
}

- (void)setContentsGravity:(NSString *)gravity {
  [self _tv_setName:&_contentsGravity to:gravity fallback:kCAGravityResize];
}

// Unknown values are kept as given (Core Animation keeps them) and sample
// like kCAFilterLinear.
- (NSString *)minificationFilter {
  return _minificationFilter;
}

- (void)setMinificationFilter:(NSString *)filter {
  [self _tv_setName:&_minificationFilter to:filter fallback:kCAFilterLinear];
}

- (NSString *)magnificationFilter {
  return _magnificationFilter;
}

- (void)setMagnificationFilter:(NSString *)filter {
  [self _tv_setName:&_magnificationFilter to:filter fallback:kCAFilterLinear];
}

// A named setting (gravity, filter): anything but a string is `fallback`.
- (void)_tv_setName:(NSString **)slot to:(NSString *)name fallback:(NSString *)fallback {
  if (![name isKindOfClass:[NSString class]]) {
    name = fallback;
  }
  NSString *old = *slot;
  *slot = [name copy];
  [old release];
  if (_modelLayer == nil) {
    TVLayerChanged(self);
  }
}

- (CGColorRef)backgroundColor {
  return _backgroundColor;
}

- (void)setBackgroundColor:(CGColorRef)color {
  CGColorRef old = _backgroundColor;
  _backgroundColor = CGColorRetain(color);
  CGColorRelease(old);
  if (_modelLayer == nil) {
    TVLayerChanged(self);
  }
}

#pragma mark - Sublayers

- (NSArray *)sublayers {
  return [_sublayers count] > 0 ? [NSArray arrayWithArray:_sublayers] : nil;
}

- (void)setSublayers:(NSArray *)sublayers {
  for (CALayer *old in [[_sublayers copy] autorelease]) {
    [old removeFromSuperlayer];
  }
  for (CALayer *layer in sublayers) {
    [self addSublayer:layer];
  }
}

- (void)addSublayer:(CALayer *)layer {
  [self insertSublayer:layer atIndex:(unsigned)[_sublayers count]];
}

- (void)insertSublayer:(CALayer *)layer atIndex:(unsigned)index {
  if (![layer isKindOfClass:[CALayer class]] || layer == self) {
    return;
  }
  [[layer retain] autorelease];
  [layer removeFromSuperlayer];
  if (_sublayers == nil) {
    _sublayers = [NSMutableArray new];
  }
  [_sublayers insertObject:layer atIndex:MIN((NSUInteger)index, [_sublayers count])];
  layer->_superlayer = self;
  TVLayerChanged(self);
}

- (void)removeFromSuperlayer {
  CALayer *parent = _superlayer;
  if (parent == nil) {
    return;
  }
  _superlayer = nil;
  [parent->_sublayers removeObjectIdenticalTo:self];
  TVLayerChanged(parent);
}

#pragma mark - Undeclared keys

- (id)valueForUndefinedKey:(NSString *)key {
  return [_undeclaredValues objectForKey:key];
}

- (void)setValue:(id)value forUndefinedKey:(NSString *)key {
  if (_undeclaredValues == nil) {
    _undeclaredValues = [NSMutableDictionary new];
  }
  if (value != nil) {
    [_undeclaredValues setObject:value forKey:key];
  } else {
    [_undeclaredValues removeObjectForKey:key];
  }
}

#pragma mark - Animations

- (void)addAnimation:(CAAnimation *)animation forKey:(NSString *)key {
  if (![animation isKindOfClass:[CAPropertyAnimation class]]) {
    NSLog(@"CALayer: only property animations run here, not %@", animation);
    return;
  }
  if (_modelLayer != nil) {
    return;  // presentation copies do not animate
  }
  static unsigned long anonymous = 0;
  NSString *trackKey =
      key != nil ? key : [NSString stringWithFormat:@"%@%lu", TVAnonymousKeyPrefix, ++anonymous];
  NSString *keyPath = [(CAPropertyAnimation *)animation keyPath];
  // A replacement starts from what shows now, the old animation included.
  id presented = keyPath != nil ? [[self presentationLayer] _tv_valueForKeyPath:keyPath] : nil;
  [self removeAnimationForKey:trackKey];
  _TVAnimationTrack *track =
      [[_TVAnimationTrack alloc] initWithAnimation:(CAPropertyAnimation *)animation
                                               key:trackKey
                                              host:self
                                  presentedAtStart:presented];
  track->_appliesValues = YES;  // every frame marks the tree's view for display
  [_animationTracks setObject:track forKey:trackKey];
  [_animationKeys addObject:trackKey];
  [track start];
  [track release];
}

- (CAAnimation *)animationForKey:(NSString *)key {
  if (key == nil) {
    return nil;
  }
  _TVAnimationTrack *track = [_animationTracks objectForKey:key];
  return track != nil ? track->_animation : nil;
}

- (void)removeAnimationForKey:(NSString *)key {
  if (key == nil) {
    return;
  }
  _TVAnimationTrack *track = [_animationTracks objectForKey:key];
  if (track == nil) {
    return;
  }
  if (track->_ended) {
    [self _tv_forgetTrack:track];  // finished, kept by removedOnCompletion = NO
  } else {
    [track endFinished:NO notifyDelegate:YES];
  }
}

- (void)removeAllAnimations {
  for (NSString *key in [[_animationKeys copy] autorelease]) {
    [self removeAnimationForKey:key];
  }
}

- (NSArray *)animationKeys {
  NSMutableArray *keys = [NSMutableArray array];
  for (NSString *key in _animationKeys) {
    if (![key hasPrefix:TVAnonymousKeyPrefix]) {
      [keys addObject:key];
    }
  }
  return [keys count] > 0 ? keys : nil;
}

#pragma mark - Presentation

- (instancetype)presentationLayer {
  if (_modelLayer != nil) {
    return self;
  }
  CALayer *presentation = [[[[self class] alloc] initWithLayer:self] autorelease];
  presentation->_modelLayer = [self retain];
  CFTimeInterval now = TVAnimationClockNow();
  for (NSString *key in _animationKeys) {
    _TVAnimationTrack *track = [_animationTracks objectForKey:key];
    if (track->_keyPath == nil) {
      continue;
    }
    BOOL contributes = NO;
    id base = [presentation _tv_valueForKeyPath:track->_keyPath];
    id value = [track valueAtTime:now base:base contributes:&contributes];
    if (contributes && value != nil) {
      [presentation _tv_setValue:value forKeyPath:track->_keyPath];
    }
  }
  return presentation;
}

- (instancetype)modelLayer {
  return _modelLayer != nil ? _modelLayer : self;
}

#pragma mark - Actions

+ (id<CAAction>)defaultActionForKey:(NSString *)event {
  if (!TVIsImplicitlyAnimatedKey(event)) {
    return nil;
  }
  return [CABasicAnimation animationWithKeyPath:event];
}

// An action, or NSNull (which ends the search with no action).
static BOOL TVIsActionOrNull(id object) {
  return [object isKindOfClass:[NSNull class]] ||
         [object respondsToSelector:@selector(runActionForKey:object:arguments:)];
}

// A value found that is neither an action nor NSNull ends the search with
// no action, as NSNull does: it is never run.
- (id<CAAction>)actionForKey:(NSString *)event {
  if ([_delegate respondsToSelector:@selector(actionForLayer:forKey:)]) {
    id<CAAction> action = [_delegate actionForLayer:self forKey:event];
    if (action != nil) {
      return TVIsActionOrNull(action) ? action : nil;
    }
  }
  id<CAAction> action = [_actions isKindOfClass:[NSDictionary class]] ? [_actions objectForKey:event] : nil;
  if (action != nil) {
    return TVIsActionOrNull(action) ? action : nil;
  }
  return [[self class] defaultActionForKey:event];
}

#pragma mark - Private

// Sets a property through `change`, running the key's action: an implicit
// animation starts from what showed before the change.
- (void)_tv_changeKey:(NSString *)key by:(void (^)(void))change {
  id<CAAction> action = nil;
  if (_modelLayer == nil && ![CATransaction disableActions]) {
    action = [self actionForKey:key];
    // A subclass's -actionForKey: may answer anything: only actions run.
    if (![(id)action respondsToSelector:@selector(runActionForKey:object:arguments:)]) {
      action = nil;
    }
  }
  id previous = action != nil ? [[[self presentationLayer] _tv_valueForKeyPath:key] retain] : nil;
  change();
  if (action != nil) {
    id runnable = action;
    if ([(id)action isKindOfClass:[CAAnimation class]]) {
      CAAnimation *animation = [[(CAAnimation *)action copy] autorelease];
      if ([animation isKindOfClass:[CABasicAnimation class]]) {
        CABasicAnimation *basic = (CABasicAnimation *)animation;
        if ([basic fromValue] == nil && [basic toValue] == nil && [basic byValue] == nil) {
          [basic setFromValue:previous];
        }
      }
      if ([animation isKindOfClass:[CAPropertyAnimation class]] &&
          [(CAPropertyAnimation *)animation keyPath] == nil) {
        [(CAPropertyAnimation *)animation setKeyPath:key];
      }
      if ([animation timingFunction] == nil) {
        CAMediaTimingFunction *function = [CATransaction animationTimingFunction];
        [animation setTimingFunction:function != nil ? function : TVImplicitTimingFunction()];
      }
      runnable = animation;
    }
    [runnable runActionForKey:key object:self arguments:nil];
  }
  [previous release];
}

- (void)_tv_forgetTrack:(_TVAnimationTrack *)track {
  if ([_animationTracks objectForKey:track->_key] != track) {
    return;
  }
  [[track retain] autorelease];
  [_animationKeys removeObject:track->_key];
  [_animationTracks removeObjectForKey:track->_key];
}

- (id)_tv_valueForKeyPath:(NSString *)keyPath {
  const StructField *field = FieldNamed(keyPath);
  if (field != nullptr) {
    double all[4];
    switch (field->property) {
      case StructProperty::Position:
        all[0] = _position.x;
        all[1] = _position.y;
        break;
      case StructProperty::AnchorPoint:
        all[0] = _anchorPoint.x;
        all[1] = _anchorPoint.y;
        break;
      case StructProperty::Bounds:
        all[0] = _bounds.origin.x;
        all[1] = _bounds.origin.y;
        all[2] = _bounds.size.width;
        all[3] = _bounds.size.height;
        break;
    }
    const double *c = all + field->first;
    switch (field->kind) {
      case FieldKind::Number:
        return [NSNumber numberWithDouble:c[0]];
      case FieldKind::Point:
        return [NSValue valueWithPoint:NSMakePoint(c[0], c[1])];
      case FieldKind::Size:
        return [NSValue valueWithSize:NSMakeSize(c[0], c[1])];
      case FieldKind::Rect:
        return [NSValue valueWithRect:NSMakeRect(c[0], c[1], c[2], c[3])];
    }
  }
  if ([keyPath isEqualToString:@"opacity"]) {
    return [NSNumber numberWithFloat:_opacity];
  }
  @try {
    return [self valueForKeyPath:keyPath];
  } @catch (NSException *exception) {
    return nil;
  }
}

// Writes an animated value into a presentation copy, without actions.
- (void)_tv_setValue:(id)value forKeyPath:(NSString *)keyPath {
  const StructField *field = FieldNamed(keyPath);
  if (field != nullptr) {
    double in[4];
    if (ValueComponents(value, in) != field->count) {
      return;
    }
    double *target[4];
    switch (field->property) {
      case StructProperty::Position:
        target[0] = &_position.x;
        target[1] = &_position.y;
        break;
      case StructProperty::AnchorPoint:
        target[0] = &_anchorPoint.x;
        target[1] = &_anchorPoint.y;
        break;
      case StructProperty::Bounds:
        target[0] = &_bounds.origin.x;
        target[1] = &_bounds.origin.y;
        target[2] = &_bounds.size.width;
        target[3] = &_bounds.size.height;
        break;
    }
    for (int i = 0; i < field->count; i++) {
      *target[field->first + i] = in[i];
    }
    return;
  }
  if ([keyPath isEqualToString:@"opacity"]) {
    if ([value isKindOfClass:[NSNumber class]]) {
      _opacity = [value floatValue];
    }
    return;
  }
  @try {
    [self setValue:value forKeyPath:keyPath];
  } @catch (NSException *exception) {
  }
}

#pragma mark - _TVAnimationHost

- (id)_tv_baseValueForTrack:(_TVAnimationTrack *)track {
  return track->_keyPath != nil ? [self _tv_valueForKeyPath:track->_keyPath] : nil;
}

- (void)_tv_animationTrack:(_TVAnimationTrack *)track showsValue:(id)value {
  TVLayerChanged(self);
}

- (void)_tv_animationTrackDidEnd:(_TVAnimationTrack *)track finished:(BOOL)finished {
  TVLayerChanged(self);
  if (!finished || [track->_animation isRemovedOnCompletion]) {
    [self _tv_forgetTrack:track];
  }
}

@end
