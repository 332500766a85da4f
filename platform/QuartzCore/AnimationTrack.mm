// A running animation: its timing, the values it shows, and the groups
// waiting for it to end.

#import "platform/QuartzCore/TVAnimationTrack.h"

#import <AppKit/AppKit.h>  // the modal-panel and event-tracking run-loop modes

#include <string.h>

#include <cmath>
#include <vector>

#include "platform/QuartzCore/engine/Keyframes.hpp"
#include "platform/QuartzCore/engine/MediaTiming.hpp"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

using talvo::animation::CalculationMode;
using talvo::animation::Components;

@interface CAMediaTimingFunction (TalvoPrecision)
- (double)_tv_solve:(double)t;
@end

#pragma mark - Values

namespace {

enum class ValueKind { None, Number, Point, Size, Rect };

ValueKind KindOf(id value) {
  if ([value isKindOfClass:[NSNumber class]]) {
    return ValueKind::Number;
  }
  if (![value isKindOfClass:[NSValue class]]) {
    return ValueKind::None;
  }
  const char *type = [(NSValue *)value objCType];
  if (strcmp(type, @encode(NSPoint)) == 0) {
    return ValueKind::Point;
  }
  if (strcmp(type, @encode(NSSize)) == 0) {
    return ValueKind::Size;
  }
  if (strcmp(type, @encode(NSRect)) == 0) {
    return ValueKind::Rect;
  }
  return ValueKind::None;
}

bool ToComponents(id value, Components *out) {
  switch (KindOf(value)) {
    case ValueKind::Number:
      *out = {[(NSNumber *)value doubleValue]};
      return true;
    case ValueKind::Point: {
      NSPoint p = [(NSValue *)value pointValue];
      *out = {p.x, p.y};
      return true;
    }
    case ValueKind::Size: {
      NSSize s = [(NSValue *)value sizeValue];
      *out = {s.width, s.height};
      return true;
    }
    case ValueKind::Rect: {
      NSRect r = [(NSValue *)value rectValue];
      *out = {r.origin.x, r.origin.y, r.size.width, r.size.height};
      return true;
    }
    case ValueKind::None:
      break;
  }
  return false;
}

id FromComponents(const Components &c, ValueKind kind) {
  switch (kind) {
    case ValueKind::Number:
      return c.size() == 1 ? [NSNumber numberWithDouble:c[0]] : nil;
    case ValueKind::Point:
      return c.size() == 2 ? [NSValue valueWithPoint:NSMakePoint(c[0], c[1])] : nil;
    case ValueKind::Size:
      return c.size() == 2 ? [NSValue valueWithSize:NSMakeSize(c[0], c[1])] : nil;
    case ValueKind::Rect:
      return c.size() == 4 ? [NSValue valueWithRect:NSMakeRect(c[0], c[1], c[2], c[3])] : nil;
    case ValueKind::None:
      break;
  }
  return nil;
}

CalculationMode ModeNamed(NSString *name) {
  if ([name isEqualToString:kCAAnimationDiscrete]) {
    return CalculationMode::Discrete;
  }
  if ([name isEqualToString:kCAAnimationPaced] || [name isEqualToString:kCAAnimationCubicPaced]) {
    return CalculationMode::Paced;
  }
  return CalculationMode::Linear;
}

void AddPathElement(void *info, const CGPathElement *element) {
  auto *path = static_cast<talvo::animation::KeyframePath *>(info);
  const CGPoint *p = element->points;
  switch (element->type) {
    case kCGPathElementMoveToPoint:
      path->moveTo({p[0].x, p[0].y});
      break;
    case kCGPathElementAddLineToPoint:
      path->lineTo({p[0].x, p[0].y});
      break;
    case kCGPathElementAddQuadCurveToPoint:
      path->quadTo({p[0].x, p[0].y}, {p[1].x, p[1].y});
      break;
    case kCGPathElementAddCurveToPoint:
      path->curveTo({p[0].x, p[0].y}, {p[1].x, p[1].y}, {p[2].x, p[2].y});
      break;
    case kCGPathElementCloseSubpath:
      path->close();
      break;
  }
}

NSArray *RunLoopModes() {
  return [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                   NSEventTrackingRunLoopMode, nil];
}

}  // namespace

BOOL TVValueIsInterpolable(id value) {
  return KindOf(value) != ValueKind::None;
}

#pragma mark - Groups

@implementation _TVAnimationGroup

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _completions = [NSMutableArray new];
  }
  return self;
}

- (void)dealloc {
  [_completions release];
  [super dealloc];
}

- (void)addCompletion:(void (^)(void))block {
  if (block != nil && !_fired) {
    id copy = [block copy];
    [_completions addObject:copy];
    [copy release];
  }
}

- (void)trackStarted {
  _pending++;
}

- (void)trackEnded {
  if (_pending > 0) {
    _pending--;
  }
  if (_committed && _pending == 0) {
    [self fire];
  }
}

- (void)commit {
  if (_committed) {
    return;
  }
  _committed = YES;
  if (_pending > 0) {
    return;
  }
  // Nothing to wait for: complete from the run loop, after the code that
  // committed, on the main thread.
  if ([NSThread isMainThread]) {
    [[NSRunLoop currentRunLoop] performSelector:@selector(fire)
                                         target:self
                                       argument:nil
                                          order:0
                                          modes:RunLoopModes()];
  } else {
    [self performSelectorOnMainThread:@selector(fire)
                           withObject:nil
                        waitUntilDone:NO
                                modes:RunLoopModes()];
  }
}

- (void)fire {
  if (_fired || _pending > 0) {
    return;
  }
  _fired = YES;
  NSArray *completions = _completions;
  _completions = nil;
  for (void (^block)(void) in completions) {
    block();
  }
  [completions release];
}

@end

#pragma mark - Tracks

@implementation _TVAnimationTrack

- (instancetype)initWithAnimation:(CAPropertyAnimation *)animation
                              key:(NSString *)key
                             host:(id<_TVAnimationHost>)host
                 presentedAtStart:(id)presented {
  self = [super init];
  if (self != nil) {
    _animation = [animation copy];
    _key = [key copy];
    _keyPath = [([animation keyPath] != nil ? [animation keyPath] : key) copy];
    _host = host;
    _presentedAtStart = [presented retain];
    _groups = [NSMutableArray new];
    CFTimeInterval now = TVAnimationClockNow();
    _beginTime = [animation beginTime] > 0 ? [animation beginTime] : now;
    _duration = [animation duration];
    if (!(_duration > 0)) {
      _duration = TVCurrentTransaction()->_duration;
    }
    if (!(_duration > 0)) {
      _duration = 0.25;
    }
    // The host's copy tells when it really began and for how long.
    [_animation setBeginTime:_beginTime];
    [_animation setDuration:_duration];
  }
  return self;
}

- (void)dealloc {
  [_groups release];
  [_presentedAtStart release];
  [_keyPath release];
  [_key release];
  [_animation release];
  [super dealloc];
}

- (talvo::animation::TimingParameters)timing {
  talvo::animation::TimingParameters timing;
  timing.beginTime = _beginTime;
  timing.duration = _duration;
  timing.speed = [_animation speed];
  timing.timeOffset = [_animation timeOffset];
  timing.repeatCount = [_animation repeatCount];
  timing.repeatDuration = [_animation repeatDuration];
  timing.autoreverses = [_animation autoreverses];
  NSString *fill = [_animation fillMode];
  timing.fillForwards =
      [fill isEqualToString:kCAFillModeForwards] || [fill isEqualToString:kCAFillModeBoth];
  timing.fillBackwards =
      [fill isEqualToString:kCAFillModeBackwards] || [fill isEqualToString:kCAFillModeBoth];
  return timing;
}

- (CFTimeInterval)endTime {
  return talvo::animation::EndTime([self timing]);
}

- (void)start {
  for (_TVTransactionFrame *frame in TVOpenTransactions()) {
    [frame->_group trackStarted];
    [_groups addObject:frame->_group];
  }
  TVTouchImplicitTransaction();
  TVAnimationClockAddTrack(self);
}

#pragma mark - Values

- (id)basicValueAt:(double)t iteration:(double)iteration base:(id)base {
  CABasicAnimation *basic = (CABasicAnimation *)_animation;
  id fromValue = [basic fromValue];
  id toValue = [basic toValue];
  id byValue = [basic byValue];
  id presented = _presentedAtStart != nil ? _presentedAtStart : base;
  Components from, to, by, under;
  bool hasBy = ToComponents(byValue, &by);
  bool ok = true;
  if (fromValue != nil && toValue != nil) {
    ok = ToComponents(fromValue, &from) && ToComponents(toValue, &to);
  } else if (fromValue != nil && byValue != nil) {
    ok = ToComponents(fromValue, &from) && hasBy;
    to = talvo::animation::Add(from, by);
  } else if (byValue != nil && toValue != nil) {
    ok = ToComponents(toValue, &to) && hasBy;
    from = talvo::animation::Subtract(to, by);
  } else if (fromValue != nil) {
    ok = ToComponents(fromValue, &from) && ToComponents(base, &to);
    toValue = base;
  } else if (toValue != nil) {
    ok = ToComponents(presented, &from) && ToComponents(toValue, &to);
    fromValue = presented;
  } else if (byValue != nil) {
    ok = ToComponents(presented, &from) && hasBy;
    to = talvo::animation::Add(from, by);
  } else {
    ok = ToComponents(presented, &from) && ToComponents(base, &to);
    fromValue = presented;
    toValue = base;
  }
  if (!ok) {
    // Values that do not blend: the start holds until the end.
    return t < 1 ? fromValue : toValue;
  }
  Components value = talvo::animation::Interpolate(from, to, t);
  if ([basic isCumulative] && iteration > 0) {
    value = talvo::animation::Add(value, talvo::animation::Scale(talvo::animation::Subtract(to, from),
                                                                 iteration));
  }
  if ([basic isAdditive] && ToComponents(base, &under)) {
    value = talvo::animation::Add(value, under);
  }
  ValueKind kind = KindOf(toValue != nil ? toValue : (fromValue != nil ? fromValue : base));
  if (kind == ValueKind::None) {
    kind = KindOf(byValue);
  }
  return FromComponents(value, kind);
}

- (id)keyframeValueAt:(double)t iteration:(double)iteration base:(id)base {
  CAKeyframeAnimation *keyframes = (CAKeyframeAnimation *)_animation;
  CalculationMode mode = ModeNamed([keyframes calculationMode]);
  std::vector<double> keyTimes;
  for (NSNumber *time in [keyframes keyTimes]) {
    keyTimes.push_back([time doubleValue]);
  }
  Components under;
  bool additive = [keyframes isAdditive] && ToComponents(base, &under);

  if ([keyframes path] != NULL) {
    talvo::animation::KeyframePath path;
    CGPathApply([keyframes path], &path, AddPathElement);
    if (path.keyframeCount() == 0) {
      return nil;
    }
    talvo::animation::PathPoint p = path.evaluate(t, mode, keyTimes);
    Components value{p.x, p.y};
    if ([keyframes isCumulative] && iteration > 0) {
      talvo::animation::PathPoint first = path.evaluate(0, mode, keyTimes);
      talvo::animation::PathPoint last = path.evaluate(1, mode, keyTimes);
      value = talvo::animation::Add(value, {(last.x - first.x) * iteration,
                                            (last.y - first.y) * iteration});
    }
    if (additive) {
      value = talvo::animation::Add(value, under);
    }
    return FromComponents(value, ValueKind::Point);
  }

  NSArray *values = [keyframes values];
  size_t count = [values count];
  if (count == 0) {
    return nil;
  }
  std::vector<Components> points(count);
  bool blend = true;
  for (size_t i = 0; i < count; i++) {
    blend = blend && ToComponents([values objectAtIndex:i], &points[i]);
  }
  if (!blend) {
    mode = CalculationMode::Discrete;
  }

  std::vector<double> times;
  if (mode == CalculationMode::Paced) {
    std::vector<double> lengths;
    for (size_t i = 0; i + 1 < count; i++) {
      lengths.push_back(talvo::animation::Distance(points[i], points[i + 1]));
    }
    times = talvo::animation::PacedKeyTimes(lengths);
  } else {
    times = talvo::animation::EffectiveKeyTimes(keyTimes, count, mode);
  }
  talvo::animation::KeyframeLocation at = talvo::animation::LocateKeyframe(
      times, count, mode == CalculationMode::Paced ? CalculationMode::Linear : mode, t);
  if (!blend) {
    return [values objectAtIndex:at.index];
  }
  Components value;
  if (count == 1 || mode == CalculationMode::Discrete) {
    value = points[at.index];
  } else {
    double fraction = at.fraction;
    NSArray *functions = [keyframes timingFunctions];
    if (mode != CalculationMode::Paced && at.index < [functions count]) {
      id function = [functions objectAtIndex:at.index];
      if ([function isKindOfClass:[CAMediaTimingFunction class]]) {
        fraction = [function _tv_solve:fraction];
      }
    }
    value = talvo::animation::Interpolate(points[at.index], points[at.index + 1], fraction);
  }
  if ([keyframes isCumulative] && iteration > 0) {
    value = talvo::animation::Add(
        value,
        talvo::animation::Scale(talvo::animation::Subtract(points[count - 1], points[0]), iteration));
  }
  if (additive) {
    value = talvo::animation::Add(value, under);
  }
  return FromComponents(value, KindOf([values objectAtIndex:0]));
}

- (id)valueAtTime:(CFTimeInterval)time base:(id)base contributes:(BOOL *)contributes {
  talvo::animation::TimingState state = talvo::animation::EvaluateTiming([self timing], time);
  *contributes = state.contributes;
  if (!state.contributes) {
    return nil;
  }
  double t = state.fraction;
  CAMediaTimingFunction *function = [_animation timingFunction];
  if (function != nil) {
    t = [function _tv_solve:t];
  }
  if ([_animation isKindOfClass:[CABasicAnimation class]]) {
    return [self basicValueAt:t iteration:state.iteration base:base];
  }
  if ([_animation isKindOfClass:[CAKeyframeAnimation class]]) {
    return [self keyframeValueAt:t iteration:state.iteration base:base];
  }
  *contributes = NO;
  return nil;
}

#pragma mark - Clock

- (void)advanceToTime:(CFTimeInterval)time {
  if (_ended) {
    return;
  }
  [[self retain] autorelease];
  talvo::animation::TimingState state = talvo::animation::EvaluateTiming([self timing], time);
  if (!_started && state.phase != talvo::animation::TimingPhase::Before) {
    _started = YES;
    id delegate = [_animation delegate];
    if ([delegate respondsToSelector:@selector(animationDidStart:)]) {
      [delegate animationDidStart:_animation];
    }
  }
  if (_ended) {
    return;  // the delegate removed it
  }
  if (_appliesValues) {
    BOOL contributes = NO;
    id value = [self valueAtTime:time base:[_host _tv_baseValueForTrack:self] contributes:&contributes];
    if (contributes) {
      [_host _tv_animationTrack:self showsValue:value];
    }
  }
  if (!_ended && time >= [self endTime]) {
    [self endFinished:YES notifyDelegate:YES];
  }
}

- (void)endFinished:(BOOL)finished notifyDelegate:(BOOL)notify {
  if (_ended) {
    return;
  }
  _ended = YES;
  [self retain];
  TVAnimationClockRemoveTrack(self);
  [_host _tv_animationTrackDidEnd:self finished:finished];
  if (notify) {
    id delegate = [_animation delegate];
    if ([delegate respondsToSelector:@selector(animationDidStop:finished:)]) {
      [delegate animationDidStop:_animation finished:finished];
    }
  }
  NSArray *groups = _groups;
  _groups = nil;
  for (_TVAnimationGroup *group in groups) {
    [group trackEnded];
  }
  [groups release];
  [self release];
}

@end
