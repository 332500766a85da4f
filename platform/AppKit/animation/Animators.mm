// Animator proxies for views, windows and constraints, the per-object
// animation state behind them, and views' layers.

#import <AppKit/AppKit.h>

#include <string.h>

#import "platform/QuartzCore/TVAnimationTrack.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

#pragma mark - Per-object state

// What the platform keeps per animated object, in a side table keyed by the
// object (not retained) and cleared when the object is deallocated. NSView's
// spare ivar already holds the Auto Layout state.
@interface _TVAnimatableState : NSObject {
 @public
  NSDictionary *_animations;
  NSMutableDictionary *_running;  // key -> _TVPropertyAnimator
  CALayer *_layer;
  BOOL _wantsLayer;
}
@end

@implementation _TVAnimatableState

- (void)dealloc {
  [_layer setDelegate:nil];
  [_layer release];
  [_running release];
  [_animations release];
  [super dealloc];
}

@end

static NSMapTable *animatableStates = nil;

static _TVAnimatableState *TVAnimatableState(id object, BOOL create) {
  if (object == nil) {
    return nil;
  }
  if (animatableStates == nil) {
    if (!create) {
      return nil;
    }
    animatableStates = [[NSMapTable alloc]
        initWithKeyOptions:NSPointerFunctionsOpaqueMemory | NSPointerFunctionsOpaquePersonality
              valueOptions:NSPointerFunctionsStrongMemory | NSPointerFunctionsObjectPersonality
                  capacity:16];
  }
  _TVAnimatableState *state = [animatableStates objectForKey:object];
  if (state == nil && create) {
    state = [_TVAnimatableState new];
    [animatableStates setObject:state forKey:object];
    [state release];
  }
  return state;
}

static void TVForgetAnimatableState(id object) {
  if (animatableStates != nil && [animatableStates objectForKey:object] != nil) {
    [animatableStates removeObjectForKey:object];
  }
}

#pragma mark - Reading and writing values

static const char *TVSkipQualifiers(const char *type) {
  while (*type != '\0' && strchr("rnNoORV", *type) != NULL) {
    type++;
  }
  return type;
}

static BOOL TVTypeIs(const char *type, const char *encoding) {
  return strncmp(TVSkipQualifiers(type), encoding, strlen(encoding)) == 0;
}

static SEL TVSetterForKey(NSString *key) {
  if ([key length] == 0) {
    return NULL;
  }
  NSString *name = [NSString stringWithFormat:@"set%@%@:", [[key substringToIndex:1] uppercaseString],
                                              [key substringFromIndex:1]];
  return NSSelectorFromString(name);
}

// Calls a one-argument setter with an unboxed value; NO when the types do
// not fit.
static BOOL TVInvokeSetter(id target, SEL setter, id value) {
  NSMethodSignature *signature = [target methodSignatureForSelector:setter];
  if (signature == nil || [signature numberOfArguments] != 3) {
    return NO;
  }
  NSInvocation *invocation = [NSInvocation invocationWithMethodSignature:signature];
  [invocation setSelector:setter];
  const char *type = TVSkipQualifiers([signature getArgumentTypeAtIndex:2]);
  if (TVTypeIs(type, @encode(NSRect))) {
    NSRect v = [value rectValue];
    [invocation setArgument:&v atIndex:2];
  } else if (TVTypeIs(type, @encode(NSPoint))) {
    NSPoint v = [value pointValue];
    [invocation setArgument:&v atIndex:2];
  } else if (TVTypeIs(type, @encode(NSSize))) {
    NSSize v = [value sizeValue];
    [invocation setArgument:&v atIndex:2];
  } else if (*type == '@') {
    [invocation setArgument:&value atIndex:2];
  } else if (![value isKindOfClass:[NSNumber class]]) {
    return NO;
  } else if (*type == 'd') {
    double v = [value doubleValue];
    [invocation setArgument:&v atIndex:2];
  } else if (*type == 'f') {
    float v = [value floatValue];
    [invocation setArgument:&v atIndex:2];
  } else if (*type == 'c' || *type == 'C' || *type == 'B') {
    char v = (char)[value intValue];
    [invocation setArgument:&v atIndex:2];
  } else if (*type == 'i' || *type == 'I' || *type == 's' || *type == 'S') {
    int v = (int)lround([value doubleValue]);
    [invocation setArgument:&v atIndex:2];
  } else if (*type == 'l' || *type == 'L' || *type == 'q' || *type == 'Q') {
    long long v = llround([value doubleValue]);
    [invocation setArgument:&v atIndex:2];
  } else {
    return NO;
  }
  [invocation invokeWithTarget:target];
  return YES;
}

// The value of a getter, boxed; nil when its type does not box.
static id TVInvokeGetter(id target, SEL getter) {
  NSMethodSignature *signature = [target methodSignatureForSelector:getter];
  if (signature == nil || [signature numberOfArguments] != 2) {
    return nil;
  }
  NSInvocation *invocation = [NSInvocation invocationWithMethodSignature:signature];
  [invocation setSelector:getter];
  [invocation invokeWithTarget:target];
  const char *type = TVSkipQualifiers([signature methodReturnType]);
  if (TVTypeIs(type, @encode(NSRect))) {
    NSRect v;
    [invocation getReturnValue:&v];
    return [NSValue valueWithRect:v];
  }
  if (TVTypeIs(type, @encode(NSPoint))) {
    NSPoint v;
    [invocation getReturnValue:&v];
    return [NSValue valueWithPoint:v];
  }
  if (TVTypeIs(type, @encode(NSSize))) {
    NSSize v;
    [invocation getReturnValue:&v];
    return [NSValue valueWithSize:v];
  }
  switch (*type) {
    case '@': {
      id v = nil;
      [invocation getReturnValue:&v];
      return v;
    }
    case 'd': {
      double v;
      [invocation getReturnValue:&v];
      return [NSNumber numberWithDouble:v];
    }
    case 'f': {
      float v;
      [invocation getReturnValue:&v];
      return [NSNumber numberWithFloat:v];
    }
    case 'c':
    case 'C':
    case 'B': {
      char v;
      [invocation getReturnValue:&v];
      return [NSNumber numberWithInt:v];
    }
    case 'i':
    case 'I': {
      int v;
      [invocation getReturnValue:&v];
      return [NSNumber numberWithInt:v];
    }
    case 'l':
    case 'L':
    case 'q':
    case 'Q': {
      long long v;
      [invocation getReturnValue:&v];
      return [NSNumber numberWithLongLong:v];
    }
    default:
      return nil;
  }
}

// The value an animation of `key` starts from: what the object shows now.
static id TVCurrentValue(id target, NSString *key) {
  if ([target isKindOfClass:[NSView class]]) {
    NSView *view = target;
    if ([key isEqualToString:@"frame"]) {
      return [NSValue valueWithRect:[view frame]];
    }
    if ([key isEqualToString:@"frameOrigin"]) {
      return [NSValue valueWithPoint:[view frame].origin];
    }
    if ([key isEqualToString:@"frameSize"]) {
      return [NSValue valueWithSize:[view frame].size];
    }
    if ([key isEqualToString:@"alphaValue"]) {
      return [NSNumber numberWithDouble:[view alphaValue]];
    }
    if ([key isEqualToString:@"hidden"]) {
      return [NSNumber numberWithBool:[view isHidden]];
    }
  } else if ([target isKindOfClass:[NSWindow class]]) {
    if ([key isEqualToString:@"frame"]) {
      return [NSValue valueWithRect:[(NSWindow *)target frame]];
    }
    if ([key isEqualToString:@"alphaValue"]) {
      return [NSNumber numberWithDouble:[(NSWindow *)target alphaValue]];
    }
  } else if ([target isKindOfClass:[NSLayoutConstraint class]] &&
             [key isEqualToString:@"constant"]) {
    return [NSNumber numberWithDouble:[(NSLayoutConstraint *)target constant]];
  }
  SEL getter = NSSelectorFromString(key);
  return [target respondsToSelector:getter] ? TVInvokeGetter(target, getter) : nil;
}

// Sets `key` on the object through its real setter.
static void TVApplyValue(id target, NSString *key, id value, BOOL display) {
  if ([target isKindOfClass:[NSView class]]) {
    NSView *view = target;
    NSRect before = [view frame];
    BOOL geometry = YES;
    if ([key isEqualToString:@"frame"]) {
      [view setFrame:[value rectValue]];
    } else if ([key isEqualToString:@"frameOrigin"]) {
      [view setFrameOrigin:[value pointValue]];
    } else if ([key isEqualToString:@"frameSize"]) {
      [view setFrameSize:[value sizeValue]];
    } else if ([key isEqualToString:@"alphaValue"]) {
      [view setAlphaValue:[value doubleValue]];
      [view setNeedsDisplay:YES];
      return;
    } else if ([key isEqualToString:@"hidden"]) {
      [view setHidden:[value boolValue]];
      return;
    } else {
      geometry = NO;
      TVInvokeSetter(view, TVSetterForKey(key), value);
      [view setNeedsDisplay:YES];
    }
    if (geometry) {
      // setFrame: marks nothing on GNUstep: the old and new places redraw.
      NSView *superview = [view superview];
      [superview setNeedsDisplayInRect:before];
      [superview setNeedsDisplayInRect:[view frame]];
      [view setNeedsDisplay:YES];
    }
    return;
  }
  if ([target isKindOfClass:[NSWindow class]]) {
    NSWindow *window = target;
    if ([key isEqualToString:@"frame"]) {
      [window setFrame:[value rectValue] display:display];
      return;
    }
    if ([key isEqualToString:@"alphaValue"]) {
      [window setAlphaValue:[value doubleValue]];
      return;
    }
  }
  if ([target isKindOfClass:[NSLayoutConstraint class]] && [key isEqualToString:@"constant"]) {
    // Marks the constraint's window for a layout pass.
    [(NSLayoutConstraint *)target setConstant:[value doubleValue]];
    return;
  }
  TVInvokeSetter(target, TVSetterForKey(key), value);
}

#pragma mark - Running animations

// Drives one key of one object: applies each frame's value and, when the
// animation finishes, the value that was set.
@interface _TVPropertyAnimator : NSObject <_TVAnimationHost> {
 @public
  id _target;  // retained while the animation runs
  NSString *_key;
  id _modelValue;
  BOOL _display;
  _TVAnimationTrack *_track;
}
@end

@implementation _TVPropertyAnimator

- (void)dealloc {
  [_track release];
  [_modelValue release];
  [_key release];
  [_target release];
  [super dealloc];
}

- (id)_tv_baseValueForTrack:(_TVAnimationTrack *)track {
  return _modelValue;
}

- (void)_tv_animationTrack:(_TVAnimationTrack *)track showsValue:(id)value {
  if (value != nil) {
    TVApplyValue(_target, _key, value, _display);
  }
}

- (void)_tv_animationTrackDidEnd:(_TVAnimationTrack *)track finished:(BOOL)finished {
  [[self retain] autorelease];
  // An interrupted animation leaves the value where it was: whatever
  // interrupted it takes over from there.
  if (finished) {
    TVApplyValue(_target, _key, _modelValue, _display);
  }
  _TVAnimatableState *state = TVAnimatableState(_target, NO);
  if (state != nil && [state->_running objectForKey:_key] == self) {
    [state->_running removeObjectForKey:_key];
  }
}

@end

static void TVStopAnimation(id target, NSString *key) {
  _TVAnimatableState *state = TVAnimatableState(target, NO);
  _TVPropertyAnimator *running = state != nil ? [state->_running objectForKey:key] : nil;
  if (running != nil) {
    [running->_track endFinished:NO notifyDelegate:YES];
  }
}

// Sets `key` to `value` through an animator: animated inside a group with a
// duration and an animation for the key, at once otherwise.
static void TVAnimateKey(id target, NSString *key, id value, BOOL display) {
  _TVTransactionFrame *frame = TVCurrentTransaction();
  id animation = nil;
  BOOL hide = [key isEqualToString:@"hidden"] && [target isKindOfClass:[NSView class]];
  if (TVExplicitTransactionDepth() > 0 && frame->_duration > 0) {
    if (hide) {
      if ([value boolValue]) {
        // Hidden when the group's time is up; until then it shows.
        CAKeyframeAnimation *wait = [CAKeyframeAnimation animationWithKeyPath:key];
        [wait setValues:[NSArray arrayWithObject:[NSNumber numberWithBool:NO]]];
        [wait setCalculationMode:kCAAnimationDiscrete];
        animation = wait;
      }
    } else {
      animation = [target animationForKey:key];
    }
  }
  if (![animation isKindOfClass:[CAPropertyAnimation class]]) {
    TVStopAnimation(target, key);
    TVApplyValue(target, key, value, display);
    return;
  }
  CAPropertyAnimation *copy = [[animation copy] autorelease];
  if ([copy keyPath] == nil) {
    [copy setKeyPath:key];
  }
  if ([copy timingFunction] == nil) {
    [copy setTimingFunction:frame->_timingFunction != nil ? frame->_timingFunction
                                                          : TVImplicitTimingFunction()];
  }
  // Starts from what shows now, a running animation of the key included.
  id current = TVCurrentValue(target, key);
  TVStopAnimation(target, key);

  _TVPropertyAnimator *host = [_TVPropertyAnimator new];
  host->_target = [target retain];
  host->_key = [key copy];
  host->_modelValue = [value retain];
  host->_display = display;
  _TVAnimationTrack *track = [[_TVAnimationTrack alloc] initWithAnimation:copy
                                                                      key:key
                                                                     host:host
                                                         presentedAtStart:current];
  track->_appliesValues = YES;
  host->_track = track;
  _TVAnimatableState *state = TVAnimatableState(target, YES);
  if (state->_running == nil) {
    state->_running = [NSMutableDictionary new];
  }
  [state->_running setObject:host forKey:key];
  [host release];
  [track start];
}

static id TVAnimationForKey(id object, NSString *key) {
  _TVAnimatableState *state = TVAnimatableState(object, NO);
  id animation = state != nil ? [state->_animations objectForKey:key] : nil;
  if (animation != nil) {
    return animation;
  }
  return [[object class] defaultAnimationForKey:key];
}

static void TVSetAnimations(id object, NSDictionary *animations) {
  _TVAnimatableState *state = TVAnimatableState(object, animations != nil);
  if (state == nil) {
    return;
  }
  NSDictionary *old = state->_animations;
  state->_animations = [animations copy];
  [old release];
}

static NSDictionary *TVAnimations(id object) {
  _TVAnimatableState *state = TVAnimatableState(object, NO);
  NSDictionary *animations = state != nil ? state->_animations : nil;
  return animations != nil ? animations : [NSDictionary dictionary];
}

static CABasicAnimation *TVDefaultAnimation(NSString *key, NSArray *keys) {
  return [keys containsObject:key] ? [CABasicAnimation animationWithKeyPath:key] : nil;
}

#pragma mark - Proxies

// Forwards everything to its target; setters of animatable keys animate.
@interface _TVAnimatorProxy : NSProxy {
  id _target;
}
- (instancetype)initWithTarget:(id)target;
@end

@implementation _TVAnimatorProxy

- (instancetype)initWithTarget:(id)target {
  _target = [target retain];
  return self;
}

- (void)dealloc {
  [_target release];
  [super dealloc];
}

- (NSMethodSignature *)methodSignatureForSelector:(SEL)selector {
  return [_target methodSignatureForSelector:selector];
}

- (BOOL)respondsToSelector:(SEL)selector {
  return [_target respondsToSelector:selector];
}

- (void)forwardInvocation:(NSInvocation *)invocation {
  NSString *name = NSStringFromSelector([invocation selector]);
  NSMethodSignature *signature = [invocation methodSignature];
  if ([name hasPrefix:@"set"] && [name length] > 4 && [signature numberOfArguments] == 3 &&
      [name rangeOfString:@":"].location == [name length] - 1) {
    NSString *key = [NSString stringWithFormat:@"%@%@", [[name substringWithRange:NSMakeRange(3, 1)]
                                                            lowercaseString],
                                               [name substringWithRange:NSMakeRange(
                                                                            4, [name length] - 5)]];
    if ([_target animationForKey:key] != nil) {
      id value = [self _tv_boxedArgument:invocation];
      if (value != nil) {
        TVAnimateKey(_target, key, value, YES);
        return;
      }
    }
  }
  [invocation invokeWithTarget:_target];
}

- (id)_tv_boxedArgument:(NSInvocation *)invocation {
  const char *type = TVSkipQualifiers([[invocation methodSignature] getArgumentTypeAtIndex:2]);
  if (TVTypeIs(type, @encode(NSRect))) {
    NSRect v;
    [invocation getArgument:&v atIndex:2];
    return [NSValue valueWithRect:v];
  }
  if (TVTypeIs(type, @encode(NSPoint))) {
    NSPoint v;
    [invocation getArgument:&v atIndex:2];
    return [NSValue valueWithPoint:v];
  }
  if (TVTypeIs(type, @encode(NSSize))) {
    NSSize v;
    [invocation getArgument:&v atIndex:2];
    return [NSValue valueWithSize:v];
  }
  switch (*type) {
    case 'd': {
      double v;
      [invocation getArgument:&v atIndex:2];
      return [NSNumber numberWithDouble:v];
    }
    case 'f': {
      float v;
      [invocation getArgument:&v atIndex:2];
      return [NSNumber numberWithFloat:v];
    }
    case 'i': {
      int v;
      [invocation getArgument:&v atIndex:2];
      return [NSNumber numberWithInt:v];
    }
    case 'l':
    case 'q': {
      long long v;
      [invocation getArgument:&v atIndex:2];
      return [NSNumber numberWithLongLong:v];
    }
    case '@': {
      id v = nil;
      [invocation getArgument:&v atIndex:2];
      return TVValueIsInterpolable(v) ? v : nil;
    }
    default:
      return nil;
  }
}

@end

@interface _TVViewAnimator : _TVAnimatorProxy
@end

@implementation _TVViewAnimator

- (void)setFrame:(NSRect)frame {
  TVAnimateKey(_target, @"frame", [NSValue valueWithRect:frame], YES);
}

- (void)setFrameOrigin:(NSPoint)origin {
  TVAnimateKey(_target, @"frameOrigin", [NSValue valueWithPoint:origin], YES);
}

- (void)setFrameSize:(NSSize)size {
  TVAnimateKey(_target, @"frameSize", [NSValue valueWithSize:size], YES);
}

- (void)setAlphaValue:(CGFloat)alpha {
  TVAnimateKey(_target, @"alphaValue", [NSNumber numberWithDouble:alpha], YES);
}

- (void)setHidden:(BOOL)hidden {
  TVAnimateKey(_target, @"hidden", [NSNumber numberWithBool:hidden], YES);
}

@end

@interface _TVWindowAnimator : _TVAnimatorProxy
@end

@implementation _TVWindowAnimator

- (void)setFrame:(NSRect)frame display:(BOOL)display {
  TVAnimateKey(_target, @"frame", [NSValue valueWithRect:frame], display);
}

- (void)setFrame:(NSRect)frame {
  TVAnimateKey(_target, @"frame", [NSValue valueWithRect:frame], YES);
}

- (void)setAlphaValue:(CGFloat)alpha {
  TVAnimateKey(_target, @"alphaValue", [NSNumber numberWithDouble:alpha], YES);
}

@end

@interface _TVConstraintAnimator : _TVAnimatorProxy
@end

@implementation _TVConstraintAnimator

- (void)setConstant:(CGFloat)constant {
  TVAnimateKey(_target, @"constant", [NSNumber numberWithDouble:constant], YES);
}

@end

#pragma mark - NSView

@implementation NSView (TalvoAnimation)

- (instancetype)animator {
  return (id)[[[_TVViewAnimator alloc] initWithTarget:self] autorelease];
}

- (NSDictionary *)animations {
  return TVAnimations(self);
}

- (void)setAnimations:(NSDictionary *)animations {
  TVSetAnimations(self, animations);
}

- (id)animationForKey:(NSString *)key {
  return TVAnimationForKey(self, key);
}

+ (id)defaultAnimationForKey:(NSString *)key {
  return TVDefaultAnimation(key, @[ @"frame", @"frameOrigin", @"frameSize", @"alphaValue" ]);
}

- (BOOL)wantsLayer {
  _TVAnimatableState *state = TVAnimatableState(self, NO);
  return state != nil && state->_wantsLayer;
}

- (void)setWantsLayer:(BOOL)flag {
  _TVAnimatableState *state = TVAnimatableState(self, flag);
  if (state != nil) {
    state->_wantsLayer = flag;
  }
}

- (CALayer *)layer {
  _TVAnimatableState *state = TVAnimatableState(self, YES);
  if (state->_layer == nil) {
    state->_layer = [CALayer new];
    [state->_layer setDelegate:self];
    [state->_layer setAnchorPoint:NSMakePoint(0, 0)];
  }
  // Kept in step with the view whenever it is asked for.
  CALayer *layer = state->_layer;
  [CATransaction begin];
  [CATransaction setDisableActions:YES];
  NSRect frame = [self frame];
  [layer setAnchorPoint:NSMakePoint(0, 0)];
  [layer setBounds:NSMakeRect(0, 0, frame.size.width, frame.size.height)];
  [layer setPosition:frame.origin];
  [layer setOpacity:(float)[self alphaValue]];
  [layer setHidden:[self isHidden]];
  [layer setGeometryFlipped:[self isFlipped]];
  [CATransaction commit];
  return layer;
}

- (void)setLayer:(CALayer *)layer {
  if (layer != nil && ![layer isKindOfClass:[CALayer class]]) {
    return;
  }
  _TVAnimatableState *state = TVAnimatableState(self, layer != nil);
  if (state == nil || state->_layer == layer) {
    return;
  }
  CALayer *old = state->_layer;
  state->_layer = [layer retain];
  if ([old delegate] == (id)self) {
    [old setDelegate:nil];
  }
  [old release];
  if (layer != nil && [layer delegate] == nil) {
    [layer setDelegate:self];
  }
  [self setNeedsDisplay:YES];
}

- (id<CAAction>)actionForLayer:(CALayer *)layer forKey:(NSString *)event {
  if ([[NSAnimationContext currentContext] allowsImplicitAnimation]) {
    return nil;
  }
  return (id<CAAction>)[NSNull null];
}

@end

#pragma mark - NSWindow

@implementation NSWindow (TalvoAnimation)

- (instancetype)animator {
  return (id)[[[_TVWindowAnimator alloc] initWithTarget:self] autorelease];
}

- (NSDictionary *)animations {
  return TVAnimations(self);
}

- (void)setAnimations:(NSDictionary *)animations {
  TVSetAnimations(self, animations);
}

- (id)animationForKey:(NSString *)key {
  return TVAnimationForKey(self, key);
}

+ (id)defaultAnimationForKey:(NSString *)key {
  return TVDefaultAnimation(key, @[ @"frame", @"alphaValue" ]);
}

@end

#pragma mark - NSLayoutConstraint

@implementation NSLayoutConstraint (TalvoAnimation)

- (instancetype)animator {
  return (id)[[[_TVConstraintAnimator alloc] initWithTarget:self] autorelease];
}

- (NSDictionary *)animations {
  return TVAnimations(self);
}

- (void)setAnimations:(NSDictionary *)animations {
  TVSetAnimations(self, animations);
}

- (id)animationForKey:(NSString *)key {
  return TVAnimationForKey(self, key);
}

+ (id)defaultAnimationForKey:(NSString *)key {
  return TVDefaultAnimation(key, @[ @"constant" ]);
}

@end

#pragma mark - Layer drawing

// The view's layer as it stands (not made, not brought up to date), for
// the layer drawing hooks.
extern "C" __attribute__((visibility("hidden"))) CALayer *TVViewExistingLayer(NSView *view) {
  _TVAnimatableState *state = TVAnimatableState(view, NO);
  return state != nil ? state->_layer : nil;
}

#pragma mark - Lifetime

static void (*originalViewDealloc)(id, SEL) = NULL;
static void (*originalWindowDealloc)(id, SEL) = NULL;
static void (*originalConstraintDealloc)(id, SEL) = NULL;

static void TVViewDeallocForAnimation(id view, SEL selector) {
  TVForgetAnimatableState(view);
  originalViewDealloc(view, selector);
}

static void TVWindowDeallocForAnimation(id window, SEL selector) {
  TVForgetAnimatableState(window);
  originalWindowDealloc(window, selector);
}

static void TVConstraintDeallocForAnimation(id constraint, SEL selector) {
  TVForgetAnimatableState(constraint);
  originalConstraintDealloc(constraint, selector);
}

@interface _TVAnimatorHooks : NSObject
@end

@implementation _TVAnimatorHooks

+ (void)load {
  originalViewDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      [NSView class], @selector(dealloc), (IMP)TVViewDeallocForAnimation);
  originalWindowDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      [NSWindow class], @selector(dealloc), (IMP)TVWindowDeallocForAnimation);
  originalConstraintDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      [NSLayoutConstraint class], @selector(dealloc), (IMP)TVConstraintDeallocForAnimation);
}

@end
