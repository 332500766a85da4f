// NSAnimationContext on GNUstep: its stub methods are replaced so that each
// context is a level of Core Animation's per-thread transaction stack (the
// two share duration, timing function and completion tracking).

#import <AppKit/AppKit.h>

#import "platform/QuartzCore/TVAnimationTrack.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// The contexts +currentContext hands out: each reads and writes its
// transaction while that is open, and keeps the last values afterwards.
@interface _TVAnimationContext : NSAnimationContext <_TVTransactionClient> {
 @public
  _TVTransactionFrame *_frame;  // not retained: the frame retains the context
  CAMediaTimingFunction *_timingFunction;  // after the frame ended
  BOOL _allowsImplicitAnimation;
}
@end

@implementation _TVAnimationContext

- (void)dealloc {
  [_timingFunction release];
  [_completionHandler release];
  [super dealloc];
}

- (void)_tv_transactionDidEnd {
  _duration = _frame->_duration;
  _timingFunction = [_frame->_timingFunction retain];
  _allowsImplicitAnimation = _frame->_allowsImplicitAnimation;
  _frame = nil;
}

@end

static _TVTransactionFrame *TVFrameOf(NSAnimationContext *context) {
  if (![context isKindOfClass:[_TVAnimationContext class]]) {
    return nil;
  }
  return ((_TVAnimationContext *)context)->_frame;
}

// The replacements, written as methods so that the runtime has their type
// encodings; installed on NSAnimationContext (and its metaclass) at load.
@interface _TVAnimationContextMethods : NSAnimationContext
@end

@implementation _TVAnimationContextMethods

+ (NSAnimationContext *)currentContext {
  _TVTransactionFrame *frame = TVCurrentTransaction();
  if (frame->_client == nil) {
    _TVAnimationContext *context = [_TVAnimationContext new];
    context->_frame = frame;
    frame->_client = context;
  }
  return (NSAnimationContext *)frame->_client;
}

+ (void)beginGrouping {
  TVBeginTransaction();
}

+ (void)endGrouping {
  if (!TVCommitTransaction()) {
    NSLog(@"NSAnimationContext: +endGrouping without a matching +beginGrouping");
  }
}

+ (void)runAnimationGroup:(void (^)(NSAnimationContext *))changes
        completionHandler:(void (^)(void))completionHandler {
  [NSAnimationContext beginGrouping];
  NSAnimationContext *context = [NSAnimationContext currentContext];
  [context setCompletionHandler:completionHandler];
  @try {
    if (changes != nil) {
      changes(context);
    }
  } @finally {
    [NSAnimationContext endGrouping];
  }
}

+ (void)runAnimationGroup:(void (^)(NSAnimationContext *))changes {
  [NSAnimationContext runAnimationGroup:changes completionHandler:nil];
}

- (NSTimeInterval)duration {
  _TVTransactionFrame *frame = TVFrameOf((NSAnimationContext *)self);
  return frame != nil ? frame->_duration : self->_duration;
}

- (void)setDuration:(NSTimeInterval)duration {
  if (!(duration >= 0) || duration == INFINITY) {
    return;
  }
  _TVTransactionFrame *frame = TVFrameOf((NSAnimationContext *)self);
  if (frame != nil) {
    frame->_duration = duration;
  } else {
    self->_duration = duration;
  }
}

- (CAMediaTimingFunction *)timingFunction {
  _TVTransactionFrame *frame = TVFrameOf((NSAnimationContext *)self);
  if (frame != nil) {
    return frame->_timingFunction;
  }
  if ([self isKindOfClass:[_TVAnimationContext class]]) {
    return ((_TVAnimationContext *)self)->_timingFunction;
  }
  return nil;
}

- (void)setTimingFunction:(CAMediaTimingFunction *)function {
  _TVTransactionFrame *frame = TVFrameOf((NSAnimationContext *)self);
  CAMediaTimingFunction **slot = NULL;
  if (frame != nil) {
    slot = &frame->_timingFunction;
  } else if ([self isKindOfClass:[_TVAnimationContext class]]) {
    slot = &((_TVAnimationContext *)self)->_timingFunction;
  }
  if (slot != NULL) {
    CAMediaTimingFunction *old = *slot;
    *slot = [function retain];
    [old release];
  }
}

- (void (^)(void))completionHandler {
  _TVTransactionFrame *frame = TVFrameOf((NSAnimationContext *)self);
  return frame != nil ? (void (^)(void))frame->_contextCompletionHandler
                      : self->_completionHandler;
}

- (void)setCompletionHandler:(void (^)(void))handler {
  _TVTransactionFrame *frame = TVFrameOf((NSAnimationContext *)self);
  if (![self isKindOfClass:[_TVAnimationContext class]]) {
    self->_completionHandler = handler;  // GNUstep's own storage, unretained
    return;
  }
  id *slot = frame != nil ? &frame->_contextCompletionHandler : (id *)&self->_completionHandler;
  id old = *slot;
  *slot = [handler copy];
  [old release];
  if (frame != nil && frame->_implicit && handler != nil) {
    TVTouchImplicitTransaction();
  }
}

- (BOOL)allowsImplicitAnimation {
  _TVTransactionFrame *frame = TVFrameOf((NSAnimationContext *)self);
  if (frame != nil) {
    return frame->_allowsImplicitAnimation;
  }
  return [self isKindOfClass:[_TVAnimationContext class]]
             ? ((_TVAnimationContext *)self)->_allowsImplicitAnimation
             : NO;
}

- (void)setAllowsImplicitAnimation:(BOOL)flag {
  _TVTransactionFrame *frame = TVFrameOf((NSAnimationContext *)self);
  if (frame != nil) {
    frame->_allowsImplicitAnimation = flag;
  } else if ([self isKindOfClass:[_TVAnimationContext class]]) {
    ((_TVAnimationContext *)self)->_allowsImplicitAnimation = flag;
  }
}

// Replaces GNUstep's stub, or adds the method where GNUstep has none.
static void TVInstall(Class target, Class source, SEL selector) {
  Method method = class_getInstanceMethod(source, selector);
  IMP implementation = method_getImplementation(method);
  if (TVReplaceInstanceMethod(target, selector, implementation) == NULL) {
    class_addMethod(target, selector, implementation, method_getTypeEncoding(method));
  }
}

+ (void)load {
  Class context = [NSAnimationContext class];
  Class metaclass = object_getClass(context);
  Class sourceMetaclass = object_getClass(self);
  SEL classMethods[] = {@selector(currentContext), @selector(beginGrouping),
                        @selector(endGrouping),
                        @selector(runAnimationGroup:completionHandler:),
                        @selector(runAnimationGroup:)};
  for (SEL selector : classMethods) {
    TVInstall(metaclass, sourceMetaclass, selector);
  }
  SEL instanceMethods[] = {@selector(duration),          @selector(setDuration:),
                           @selector(timingFunction),    @selector(setTimingFunction:),
                           @selector(completionHandler), @selector(setCompletionHandler:),
                           @selector(allowsImplicitAnimation),
                           @selector(setAllowsImplicitAnimation:)};
  for (SEL selector : instanceMethods) {
    TVInstall(context, self, selector);
  }
}

@end
