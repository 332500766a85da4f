// Real storage for NSLayoutConstraint on GNUstep, and the NSView constraint
// API: which view holds which constraints.

#import <AppKit/AppKit.h>

#include <cmath>
#include <unordered_set>

#import "platform/AppKit/autolayout/TVLayoutState.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// A view's referencing constraints: plain pointers, never retained.
struct TVConstraintSet {
  std::unordered_set<_TVLayoutConstraint *> constraints;
};

@implementation _TVViewLayoutState

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _constraints = [NSMutableArray new];
    _translatesAutoresizingMask = YES;
    _needsUpdateConstraints = YES;
    _needsLayout = YES;
    _needsUpdatePass = YES;
    _layoutStructureChanged = YES;
  }
  return self;
}

- (void)dealloc {
  TVDestroyLayoutEngine(_engine);
  delete _referencingConstraints;
  [_layoutGuides release];
  [_constraints release];
  [super dealloc];
}

@end

_TVViewLayoutState *TVLayoutState(NSView *view, BOOL create) {
  if (view == nil) {
    return nil;
  }
  static Ivar slot = class_getInstanceVariable([NSView class], "_coreAnimationData");
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

// The view that stands for an item: the view itself, or a layout guide's
// owning view.
static id TVItemView(id item) {
  if ([item isKindOfClass:[NSLayoutGuide class]]) {
    return [(NSLayoutGuide *)item owningView];
  }
  return item;
}

// The view a constraint is installed on when activated: its only item, or
// the closest common ancestor of its two items (a guide counting as its
// owning view).
static NSView *TVInstallationView(NSLayoutConstraint *constraint) {
  if ([constraint isKindOfClass:[_TVLayoutConstraint class]] &&
      ((_TVLayoutConstraint *)constraint)->_itemsGone) {
    return nil;  // an item was deallocated
  }
  id first = TVItemView([constraint firstItem]);
  id second = TVItemView([constraint secondItem]);
  if (![first isKindOfClass:[NSView class]]) {
    return nil;
  }
  if ([constraint secondItem] == nil) {
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
  TVForgetConstraint(self);
  TVUnregisterConstraintItems(self);
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
  if (active == [self isActive] || (active && _itemsGone)) {
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
  if (std::isnan(priority)) {
    return;  // not a priority: never required by accident
  }
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
  TVNoteConstantChange(self);
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
  if (storage->_holder == self || storage->_itemsGone) {
    return;
  }
  [storage->_holder removeConstraint:constraint];
  TVRegisterConstraintItems(constraint);  // decoded constraints join here
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

// Each view a constraint names as an item knows the constraint; the
// constraint remembers which views those are, so that it can leave them
// without messaging items that may be gone.
void TVRegisterConstraintItems(NSLayoutConstraint *constraint) {
  if (![constraint isKindOfClass:[_TVLayoutConstraint class]]) {
    return;
  }
  _TVLayoutConstraint *storage = (_TVLayoutConstraint *)constraint;
  if (storage->_itemsGone) {
    return;
  }
  id items[2] = {[constraint firstItem], [constraint secondItem]};
  for (int i = 0; i < 2; i++) {
    NSView *view = items[i];
    if (storage->_registeredViews[i] != nil || ![view isKindOfClass:[NSView class]] ||
        (i == 1 && view == items[0])) {
      continue;
    }
    _TVViewLayoutState *state = TVLayoutState(view, YES);
    if (state->_referencingConstraints == nullptr) {
      state->_referencingConstraints = new TVConstraintSet();
    }
    state->_referencingConstraints->constraints.insert(storage);
    storage->_registeredViews[i] = view;
  }
}

NSArray *TVConstraintsNamingView(NSView *view) {
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  if (state == nil || state->_referencingConstraints == nullptr ||
      state->_referencingConstraints->constraints.empty()) {
    return [NSArray array];
  }
  NSMutableArray *constraints =
      [NSMutableArray arrayWithCapacity:state->_referencingConstraints->constraints.size()];
  for (_TVLayoutConstraint *constraint : state->_referencingConstraints->constraints) {
    [constraints addObject:constraint];
  }
  return constraints;
}

void TVUnregisterConstraintItems(NSLayoutConstraint *constraint) {
  if (![constraint isKindOfClass:[_TVLayoutConstraint class]]) {
    return;
  }
  _TVLayoutConstraint *storage = (_TVLayoutConstraint *)constraint;
  for (int i = 0; i < 2; i++) {
    NSView *view = storage->_registeredViews[i];
    if (view != nil) {
      _TVViewLayoutState *state = TVLayoutState(view, NO);
      if (state != nil && state->_referencingConstraints != nullptr) {
        state->_referencingConstraints->constraints.erase(storage);
      }
      storage->_registeredViews[i] = nil;
    }
  }
}

// A view going away: constraints no longer have it as a holder, and every
// constraint that names it, wherever it is installed, leaves its holder and
// forgets the item (constraints do not retain their items; one whose item
// is gone stays inert). The view's own constraints go before its subviews
// leave, so that a container's teardown costs what it holds, once.
static void TVViewDealloc(id view, SEL selector) {
  TVForgetLayoutRoot(view);
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  if (state != nil) {
    TVDestroyLayoutEngine(state->_engine);
    state->_engine = nullptr;
    for (_TVLayoutConstraint *constraint in state->_constraints) {
      constraint->_holder = nil;
    }
    [state->_constraints removeAllObjects];
  }
  // Subviews leave first, as NSView's dealloc would make them, while the
  // layout state still stands: their removal may still ask for a pass.
  NSArray *subviews = [[view subviews] copy];
  for (NSView *subview in [subviews reverseObjectEnumerator]) {
    [subview removeFromSuperviewWithoutNeedingDisplay];
  }
  [subviews release];
  TVForgetLayoutRoot(view);  // the subviews' leaving asked it for a pass
  state = TVLayoutState(view, NO);
  if (state != nil) {
    static Ivar firstSlot = class_getInstanceVariable([NSLayoutConstraint class], "_firstItem");
    static Ivar secondSlot = class_getInstanceVariable([NSLayoutConstraint class], "_secondItem");
    for (_TVLayoutConstraint *constraint in TVConstraintsNamingView(view)) {
      [constraint->_holder removeConstraint:constraint];
      constraint->_itemsGone = YES;
      for (int i = 0; i < 2; i++) {
        if (constraint->_registeredViews[i] == view) {
          constraint->_registeredViews[i] = nil;
        }
      }
      TVForgetConstraint(constraint);
      if (object_getIvar(constraint, firstSlot) == view) {
        object_setIvar(constraint, firstSlot, nil);
      }
      if (object_getIvar(constraint, secondSlot) == view) {
        object_setIvar(constraint, secondSlot, nil);
      }
    }
    delete state->_referencingConstraints;
    state->_referencingConstraints = nullptr;
    object_setIvar(view, class_getInstanceVariable([NSView class], "_coreAnimationData"), nil);
    [state release];
  }
  originalViewDealloc(view, selector);
}

// Every constraint is known to the views it names from the moment it is made
// (one decoded from an archive, from when it is installed).
// (GNUstep's initialiser takes the priority as a double, whatever the
// NSLayoutPriority typedef says.)
typedef id (*TVConstraintInit)(id, SEL, id, NSLayoutAttribute, NSLayoutRelation, id,
                               NSLayoutAttribute, CGFloat, CGFloat, double);
static TVConstraintInit originalConstraintInit = NULL;

static id TVConstraintInitWithItems(id constraint, SEL selector, id first,
                                    NSLayoutAttribute firstAttribute, NSLayoutRelation relation,
                                    id second, NSLayoutAttribute secondAttribute,
                                    CGFloat multiplier, CGFloat constant, double priority) {
  if (originalConstraintInit == NULL) {
    return constraint;
  }
  constraint = originalConstraintInit(constraint, selector, first, firstAttribute, relation, second,
                                      secondAttribute, multiplier, constant, priority);
  TVRegisterConstraintItems(constraint);
  return constraint;
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
  Class constraint = [NSLayoutConstraint class];
  originalConstraintInit = (TVConstraintInit)TVReplaceInstanceMethod(
      constraint,
      @selector(initWithItem:attribute:relatedBy:toItem:attribute:multiplier:constant:priority:),
      (IMP)TVConstraintInitWithItems);

  Class constraintMetaclass = object_getClass([NSLayoutConstraint class]);
  TVReplaceInstanceMethod(constraintMetaclass, @selector(activateConstraints:),
                          (IMP)TVActivateConstraints);
  TVReplaceInstanceMethod(constraintMetaclass, @selector(deactivateConstraints:),
                          (IMP)TVDeactivateConstraints);
}

@end
