// Real storage for NSLayoutConstraint on GNUstep, and the NSView constraint
// API: which view holds which constraints.

#import <AppKit/AppKit.h>

#import "platform/AppKit/autolayout/TVLayoutState.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@implementation _TVViewLayoutState

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _constraints = [NSMutableArray new];
    _translatesAutoresizingMask = YES;
    _needsUpdateConstraints = YES;
    _needsLayout = YES;
  }
  return self;
}

- (void)dealloc {
  TVDestroyLayoutEngine(_engine);
  [_layoutGuides release];
  [_constraints release];
  [super dealloc];
}

@end

_TVViewLayoutState *TVLayoutState(NSView *view, BOOL create) {
  if (view == nil) {
    return nil;
  }
  Ivar slot = class_getInstanceVariable([NSView class], "_coreAnimationData");
  id state = object_getIvar(view, slot);
  if (state == nil && create) {
    state = [_TVViewLayoutState new];
    object_setIvar(view, slot, state);
  }
  return state;
}

static NSString *TVAttributeName(NSLayoutAttribute attribute) {
  switch (attribute) {
    case NSLayoutAttributeLeft: return @"left";
    case NSLayoutAttributeRight: return @"right";
    case NSLayoutAttributeTop: return @"top";
    case NSLayoutAttributeBottom: return @"bottom";
    case NSLayoutAttributeLeading: return @"leading";
    case NSLayoutAttributeTrailing: return @"trailing";
    case NSLayoutAttributeWidth: return @"width";
    case NSLayoutAttributeHeight: return @"height";
    case NSLayoutAttributeCenterX: return @"centerX";
    case NSLayoutAttributeCenterY: return @"centerY";
    case NSLayoutAttributeLastBaseline: return @"lastBaseline";
    case NSLayoutAttributeFirstBaseline: return @"firstBaseline";
    default: return @"notAnAttribute";
  }
}

static NSString *TVItemName(id item) {
  return [NSString stringWithFormat:@"%@:%p", NSStringFromClass([item class]), (void *)item];
}

// The view a constraint is installed on when activated: its only item, or
// the closest common ancestor of its two items.
static NSView *TVInstallationView(NSLayoutConstraint *constraint) {
  id first = [constraint firstItem];
  id second = [constraint secondItem];
  if (![first isKindOfClass:[NSView class]]) {
    return nil;
  }
  if (second == nil) {
    return first;
  }
  if (![second isKindOfClass:[NSView class]]) {
    return nil;
  }
  for (NSView *candidate = first; candidate != nil; candidate = [candidate superview]) {
    if (candidate == second || [second isDescendantOf:candidate]) {
      return candidate;
    }
  }
  return nil;
}

@implementation _TVLayoutConstraint

- (void)dealloc {
  [_identifier release];
  [super dealloc];
}

// Identity, as on macOS: two constraints with equal fields are two
// constraints.
- (BOOL)isEqual:(id)other {
  return self == other;
}

- (NSUInteger)hash {
  return (NSUInteger)(uintptr_t)self;
}

- (BOOL)isActive {
  return _holder != nil;
}

- (void)setActive:(BOOL)active {
  if (active == [self isActive]) {
    return;
  }
  if (!active) {
    [_holder removeConstraint:self];
    return;
  }
  NSView *view = TVInstallationView(self);
  if (view == nil) {
    NSLog(@"Unable to activate constraint %@: its items have no common ancestor", self);
    return;
  }
  [view addConstraint:self];
}

- (void)setPriority:(NSLayoutPriority)priority {
  NSLayoutPriority clamped = MAX(1.0f, MIN(priority, NSLayoutPriorityRequired));
  BOOL installed = _holder != nil;
  // macOS refuses to move an installed constraint across the required line.
  if (installed && (clamped == NSLayoutPriorityRequired) != (_priority == NSLayoutPriorityRequired)) {
    NSLog(@"Ignoring a priority change across required for installed constraint %@", self);
    return;
  }
  _priority = clamped;
  TVMarkNeedsLayoutPass(_holder);
}

- (NSString *)description {
  NSMutableString *text = [NSMutableString
      stringWithFormat:@"<NSLayoutConstraint:%p %@.%@ %@ ", (void *)self, TVItemName(_firstItem),
                       TVAttributeName(_firstAttribute),
                       _relation == NSLayoutRelationEqual
                           ? @"=="
                           : (_relation == NSLayoutRelationLessThanOrEqual ? @"<=" : @">=")];
  if (_secondItem != nil) {
    [text appendFormat:@"%@.%@", TVItemName(_secondItem), TVAttributeName(_secondAttribute)];
    if (_multiplier != 1) {
      [text appendFormat:@" * %g", _multiplier];
    }
    if (_constant != 0) {
      [text appendFormat:@" %@ %g", _constant < 0 ? @"-" : @"+", fabs(_constant)];
    }
  } else {
    [text appendFormat:@"%g", _constant];
  }
  if (_priority < NSLayoutPriorityRequired) {
    [text appendFormat:@" @%g", _priority];
  }
  if (_identifier != nil) {
    [text appendFormat:@" '%@'", _identifier];
  }
  [text appendString:[self isActive] ? @" (active)>" : @">"];
  return text;
}

@end

@implementation NSLayoutConstraint (TalvoPlatform)

+ (id)allocWithZone:(NSZone *)zone {
  if (self == [NSLayoutConstraint class]) {
    return [_TVLayoutConstraint allocWithZone:zone];
  }
  return NSAllocateObject(self, 0, zone);
}

- (void)setConstant:(CGFloat)constant {
  if (_constant == constant) {
    return;
  }
  _constant = constant;
  if ([self isKindOfClass:[_TVLayoutConstraint class]]) {
    TVMarkNeedsLayoutPass(((_TVLayoutConstraint *)self)->_holder);
  }
}

- (NSString *)identifier {
  return [self isKindOfClass:[_TVLayoutConstraint class]] ? ((_TVLayoutConstraint *)self)->_identifier
                                                           : nil;
}

- (void)setIdentifier:(NSString *)identifier {
  if (![self isKindOfClass:[_TVLayoutConstraint class]]) {
    return;
  }
  _TVLayoutConstraint *constraint = (_TVLayoutConstraint *)self;
  NSString *old = constraint->_identifier;
  constraint->_identifier = [identifier copy];
  [old release];
}

@end

@implementation NSView (TalvoPlatformConstraints)

- (NSArray *)constraints {
  _TVViewLayoutState *state = TVLayoutState(self, NO);
  return state != nil ? [NSArray arrayWithArray:state->_constraints] : [NSArray array];
}

- (void)addConstraint:(NSLayoutConstraint *)constraint {
  if (![constraint isKindOfClass:[_TVLayoutConstraint class]]) {
    return;
  }
  _TVLayoutConstraint *storage = (_TVLayoutConstraint *)constraint;
  if (storage->_holder == self) {
    return;
  }
  [storage->_holder removeConstraint:constraint];
  [TVLayoutState(self, YES)->_constraints addObject:constraint];
  storage->_holder = self;
  TVMarkNeedsLayoutPass(self);
}

- (void)addConstraints:(NSArray *)constraints {
  for (id constraint in constraints) {
    [self addConstraint:constraint];
  }
}

- (void)removeConstraint:(NSLayoutConstraint *)constraint {
  if (![constraint isKindOfClass:[_TVLayoutConstraint class]]) {
    return;
  }
  _TVLayoutConstraint *storage = (_TVLayoutConstraint *)constraint;
  if (storage->_holder != self) {
    return;
  }
  storage->_holder = nil;
  [TVLayoutState(self, NO)->_constraints removeObjectIdenticalTo:constraint];
  TVMarkNeedsLayoutPass(self);
}

- (void)removeConstraints:(NSArray *)constraints {
  for (id constraint in [[constraints copy] autorelease]) {
    [self removeConstraint:constraint];
  }
}

@end

#pragma mark - View lifetime

static void (*originalViewDealloc)(id, SEL) = NULL;

// A view going away releases its layout state; its constraints no longer
// have a holder.
static void TVViewDealloc(NSView *view, SEL selector) {
  // Subviews leave first, as NSView's dealloc would make them, while the
  // layout state still stands: their removal may still ask for a pass.
  NSArray *subviews = [[view subviews] copy];
  for (NSView *subview in subviews) {
    [subview removeFromSuperviewWithoutNeedingDisplay];
  }
  [subviews release];
  TVForgetLayoutRoot(view);
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  if (state != nil) {
    for (_TVLayoutConstraint *constraint in state->_constraints) {
      constraint->_holder = nil;
    }
    object_setIvar(view, class_getInstanceVariable([NSView class], "_coreAnimationData"), nil);
    [state release];
  }
  originalViewDealloc(view, selector);
}

// GNUstep's class methods are stubs; these make them set each constraint's
// active flag.
static void TVActivateConstraints(id cls, SEL selector, NSArray *constraints) {
  for (NSLayoutConstraint *constraint in constraints) {
    if ([constraint isKindOfClass:[NSLayoutConstraint class]]) {
      [constraint setActive:YES];
    }
  }
}

static void TVDeactivateConstraints(id cls, SEL selector, NSArray *constraints) {
  for (NSLayoutConstraint *constraint in constraints) {
    if ([constraint isKindOfClass:[NSLayoutConstraint class]]) {
      [constraint setActive:NO];
    }
  }
}

@interface _TVViewLayoutHooks : NSObject
@end

@implementation _TVViewLayoutHooks

+ (void)load {
  originalViewDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      [NSView class], @selector(dealloc), (IMP)TVViewDealloc);
  Class constraintMetaclass = object_getClass([NSLayoutConstraint class]);
  TVReplaceInstanceMethod(constraintMetaclass, @selector(activateConstraints:),
                          (IMP)TVActivateConstraints);
  TVReplaceInstanceMethod(constraintMetaclass, @selector(deactivateConstraints:),
                          (IMP)TVDeactivateConstraints);
}

@end
