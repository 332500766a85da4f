// Transactions: a per-thread stack of settings and animation groups. The
// bottom one is implicit and commits at the end of each run-loop turn in
// which it was used.

#import "platform/QuartzCore/TVAnimationTrack.h"

#import <AppKit/AppKit.h>

#include <cmath>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

NSString *const kCATransactionAnimationDuration = @"animationDuration";
NSString *const kCATransactionDisableActions = @"disableActions";
NSString *const kCATransactionAnimationTimingFunction = @"animationTimingFunction";
NSString *const kCATransactionCompletionBlock = @"completionBlock";

static NSString *const TVTransactionStackKey = @"TVAnimationTransactionStack";

@interface _TVTransactionFrame ()
- (void)commitGroup;
@end

@implementation _TVTransactionFrame

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _duration = 0.25;
    _group = [_TVAnimationGroup new];
  }
  return self;
}

- (void)dealloc {
  id<_TVTransactionClient> client = _client;
  _client = nil;
  [client _tv_transactionDidEnd];
  [client release];
  [_group release];
  [_contextCompletionHandler release];
  [_completionBlock release];
  [_timingFunction release];
  [super dealloc];
}

// Hands the completions to the group, which runs them once its animations
// end; a fresh group takes over (the implicit frame lives on).
- (void)commitGroup {
  _TVAnimationGroup *group = _group;
  _group = [_TVAnimationGroup new];
  [group addCompletion:_contextCompletionHandler];
  [group addCompletion:_completionBlock];
  [_contextCompletionHandler release];
  _contextCompletionHandler = nil;
  [_completionBlock release];
  _completionBlock = nil;
  [group commit];
  [group release];
}

- (void)scheduleImplicitCommit {
  if (_implicitCommitScheduled || ![NSThread isMainThread]) {
    return;
  }
  _implicitCommitScheduled = YES;
  NSArray *modes = [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                             NSEventTrackingRunLoopMode, nil];
  [[NSRunLoop currentRunLoop] performSelector:@selector(commitImplicitly:)
                                       target:self
                                     argument:nil
                                        order:0
                                        modes:modes];
}

- (void)commitImplicitly:(id)unused {
  _implicitCommitScheduled = NO;
  [self commitGroup];
}

@end

static NSMutableArray *TVTransactionStack() {
  NSMutableDictionary *storage = [[NSThread currentThread] threadDictionary];
  NSMutableArray *stack = [storage objectForKey:TVTransactionStackKey];
  if (stack == nil) {
    stack = [NSMutableArray array];
    _TVTransactionFrame *implicit = [_TVTransactionFrame new];
    implicit->_implicit = YES;
    [stack addObject:implicit];
    [implicit release];
    [storage setObject:stack forKey:TVTransactionStackKey];
  }
  return stack;
}

_TVTransactionFrame *TVCurrentTransaction(void) {
  return [TVTransactionStack() lastObject];
}

NSUInteger TVExplicitTransactionDepth(void) {
  return [TVTransactionStack() count] - 1;
}

NSArray *TVOpenTransactions(void) {
  return TVTransactionStack();
}

void TVBeginTransaction(void) {
  NSMutableArray *stack = TVTransactionStack();
  _TVTransactionFrame *outer = [stack lastObject];
  _TVTransactionFrame *frame = [_TVTransactionFrame new];
  // A nested transaction starts as a copy of the one around it.
  frame->_duration = outer->_duration;
  frame->_timingFunction = [outer->_timingFunction retain];
  frame->_disableActions = outer->_disableActions;
  frame->_allowsImplicitAnimation = outer->_allowsImplicitAnimation;
  [stack addObject:frame];
  [frame release];
}

BOOL TVCommitTransaction(void) {
  NSMutableArray *stack = TVTransactionStack();
  if ([stack count] <= 1) {
    return NO;
  }
  _TVTransactionFrame *frame = [[stack lastObject] retain];
  [stack removeLastObject];
  [frame commitGroup];
  [frame release];
  return YES;
}

void TVTouchImplicitTransaction(void) {
  _TVTransactionFrame *implicit = [TVTransactionStack() objectAtIndex:0];
  [implicit scheduleImplicitCommit];
}

CAMediaTimingFunction *TVImplicitTimingFunction(void) {
  static CAMediaTimingFunction *function = nil;
  if (function == nil) {
    function = [[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionDefault] retain];
  }
  return function;
}

@implementation CATransaction

+ (void)begin {
  TVBeginTransaction();
}

+ (void)commit {
  if (!TVCommitTransaction()) {
    NSLog(@"CATransaction: +commit without a matching +begin");
  }
}

+ (void)flush {
}

+ (CFTimeInterval)animationDuration {
  return TVCurrentTransaction()->_duration;
}

+ (void)setAnimationDuration:(CFTimeInterval)duration {
  if (std::isfinite(duration) && duration >= 0) {
    TVCurrentTransaction()->_duration = duration;
  }
}

+ (CAMediaTimingFunction *)animationTimingFunction {
  return TVCurrentTransaction()->_timingFunction;
}

+ (void)setAnimationTimingFunction:(CAMediaTimingFunction *)function {
  _TVTransactionFrame *frame = TVCurrentTransaction();
  CAMediaTimingFunction *old = frame->_timingFunction;
  frame->_timingFunction = [function retain];
  [old release];
}

+ (BOOL)disableActions {
  return TVCurrentTransaction()->_disableActions;
}

+ (void)setDisableActions:(BOOL)flag {
  TVCurrentTransaction()->_disableActions = flag;
}

+ (void (^)(void))completionBlock {
  return TVCurrentTransaction()->_completionBlock;
}

+ (void)setCompletionBlock:(void (^)(void))block {
  _TVTransactionFrame *frame = TVCurrentTransaction();
  id old = frame->_completionBlock;
  frame->_completionBlock = [block copy];
  [old release];
  if (frame->_implicit && block != nil) {
    TVTouchImplicitTransaction();
  }
}

+ (id)valueForKey:(NSString *)key {
  if ([key isEqualToString:kCATransactionAnimationDuration]) {
    return [NSNumber numberWithDouble:[self animationDuration]];
  }
  if ([key isEqualToString:kCATransactionDisableActions]) {
    return [NSNumber numberWithBool:[self disableActions]];
  }
  if ([key isEqualToString:kCATransactionAnimationTimingFunction]) {
    return [self animationTimingFunction];
  }
  if ([key isEqualToString:kCATransactionCompletionBlock]) {
    return [self completionBlock];
  }
  return nil;
}

+ (void)setValue:(id)value forKey:(NSString *)key {
  if ([key isEqualToString:kCATransactionAnimationDuration]) {
    [self setAnimationDuration:[value doubleValue]];
  } else if ([key isEqualToString:kCATransactionDisableActions]) {
    [self setDisableActions:[value boolValue]];
  } else if ([key isEqualToString:kCATransactionAnimationTimingFunction]) {
    [self setAnimationTimingFunction:[value isKindOfClass:[CAMediaTimingFunction class]] ? value
                                                                                          : nil];
  } else if ([key isEqualToString:kCATransactionCompletionBlock]) {
    [self setCompletionBlock:value];
  }
}

@end
