// NSLayoutAnchor on GNUstep: GNUstep's anchors are empty shells whose
// factories all make left-to-left constraints (and drop some constants).
// Here an anchor knows its item and attribute, its factories check Apple's
// type rules and make the constraint Apple makes, and views answer their
// twelve anchors. Layout guides answer theirs in LayoutGuides.mm.

#import <AppKit/AppKit.h>

#include <array>
#include <cmath>
#include <unordered_map>

#import "platform/AppKit/autolayout/TVLayoutAnchorSupport.h"
#import "platform/AppKit/autolayout/TVLayoutState.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

enum class Axis { X, Y, Dimension };

struct AnchorKind {
  NSLayoutAttribute attribute;
  NSString *name;
  Axis axis;
};

// Also the order of a view's anchors in its side-table entry.
const AnchorKind kAnchorKinds[] = {
    {NSLayoutAttributeLeading, @"leading", Axis::X},
    {NSLayoutAttributeTrailing, @"trailing", Axis::X},
    {NSLayoutAttributeLeft, @"left", Axis::X},
    {NSLayoutAttributeRight, @"right", Axis::X},
    {NSLayoutAttributeCenterX, @"centerX", Axis::X},
    {NSLayoutAttributeTop, @"top", Axis::Y},
    {NSLayoutAttributeBottom, @"bottom", Axis::Y},
    {NSLayoutAttributeCenterY, @"centerY", Axis::Y},
    {NSLayoutAttributeFirstBaseline, @"firstBaseline", Axis::Y},
    {NSLayoutAttributeLastBaseline, @"lastBaseline", Axis::Y},
    {NSLayoutAttributeWidth, @"width", Axis::Dimension},
    {NSLayoutAttributeHeight, @"height", Axis::Dimension},
};
const size_t kAnchorKindCount = sizeof(kAnchorKinds) / sizeof(kAnchorKinds[0]);

using ViewAnchors = std::array<NSLayoutAnchor *, kAnchorKindCount>;

// A view's anchors, made on first request and kept until the view goes
// away (an anchor asked for twice is the same object, as on macOS).
std::unordered_map<NSView *, ViewAnchors> *viewAnchors = new std::unordered_map<NSView *, ViewAnchors>();

Ivar AnchorIvar(const char *name) { return class_getInstanceVariable([NSLayoutAnchor class], name); }

id AnchorItem(NSLayoutAnchor *anchor) {
  static Ivar slot = AnchorIvar("_item");
  return object_getIvar(anchor, slot);
}

const AnchorKind *KindOf(NSLayoutAnchor *anchor) {
  static Ivar slot = AnchorIvar("_name");
  NSString *name = object_getIvar(anchor, slot);
  if (name == nil) {
    return nullptr;
  }
  for (const AnchorKind &kind : kAnchorKinds) {
    if (kind.name == name) {
      return &kind;
    }
  }
  for (const AnchorKind &kind : kAnchorKinds) {
    if ([kind.name isEqualToString:name]) {
      return &kind;
    }
  }
  return nullptr;
}

const AnchorKind *KindFor(NSLayoutAttribute attribute) {
  for (const AnchorKind &kind : kAnchorKinds) {
    if (kind.attribute == attribute) {
      return &kind;
    }
  }
  return nullptr;
}

Class ClassFor(Axis axis) {
  switch (axis) {
    case Axis::X: return [NSLayoutXAxisAnchor class];
    case Axis::Y: return [NSLayoutYAxisAnchor class];
    case Axis::Dimension: return [NSLayoutDimension class];
  }
  return Nil;
}

bool IsDirectional(NSLayoutAttribute attribute) {
  return attribute == NSLayoutAttributeLeading || attribute == NSLayoutAttributeTrailing;
}

bool IsAbsoluteHorizontal(NSLayoutAttribute attribute) {
  return attribute == NSLayoutAttributeLeft || attribute == NSLayoutAttributeRight;
}

// Each kind of mistake is logged the first time it happens, not on every
// call of a loop that repeats it.
void LogOnce(int problem, NSLayoutAttribute first, NSLayoutAttribute second, NSString *message) {
  static bool logged[4][32][32];
  int a = (int)first & 31;
  int b = (int)second & 31;
  if (logged[problem][a][b]) {
    return;
  }
  logged[problem][a][b] = true;
  NSLog(@"%@ (answering nil; this mistake is logged once)", message);
}

// The one factory behind every constraint…Anchor: method: Apple's checks,
// then the constraint Apple makes. Returns nil where AppKit raises.
NSLayoutConstraint *MakeConstraint(NSLayoutAnchor *anchor, NSLayoutRelation relation, id other,
                                   CGFloat multiplier, CGFloat constant) {
  const AnchorKind *kind = KindOf(anchor);
  id item = AnchorItem(anchor);
  if (kind == nullptr || item == nil) {
    LogOnce(0, NSLayoutAttributeNotAnAttribute, NSLayoutAttributeNotAnAttribute,
            @"An NSLayoutAnchor without an item cannot make a constraint");
    return nil;
  }
  if (!std::isfinite(multiplier) || !std::isfinite(constant)) {
    LogOnce(3, kind->attribute, kind->attribute,
            @"A constraint needs a finite multiplier and constant");
    return nil;
  }
  if (other == nil) {
    // Only dimensions constrain to a constant.
    if (kind->axis != Axis::Dimension) {
      LogOnce(1, kind->attribute, NSLayoutAttributeNotAnAttribute,
              [NSString stringWithFormat:@"The %@ anchor cannot be constrained to a constant",
                                         kind->name]);
      return nil;
    }
    return [NSLayoutConstraint constraintWithItem:item
                                        attribute:kind->attribute
                                        relatedBy:relation
                                           toItem:nil
                                        attribute:NSLayoutAttributeNotAnAttribute
                                       multiplier:1
                                         constant:constant];
  }
  const AnchorKind *otherKind =
      [other isKindOfClass:[NSLayoutAnchor class]] ? KindOf((NSLayoutAnchor *)other) : nullptr;
  id otherItem = otherKind != nullptr ? AnchorItem((NSLayoutAnchor *)other) : nil;
  if (otherKind == nullptr || otherItem == nil) {
    LogOnce(0, kind->attribute, NSLayoutAttributeNotAnAttribute,
            [NSString stringWithFormat:@"The %@ anchor cannot be constrained to %@", kind->name,
                                       other]);
    return nil;
  }
  if (otherKind->axis != kind->axis) {
    LogOnce(1, kind->attribute, otherKind->attribute,
            [NSString stringWithFormat:@"A constraint cannot be made between the %@ anchor and "
                                       @"the %@ anchor: they are not on the same axis",
                                       kind->name, otherKind->name]);
    return nil;
  }
  if ((IsDirectional(kind->attribute) && IsAbsoluteHorizontal(otherKind->attribute)) ||
      (IsAbsoluteHorizontal(kind->attribute) && IsDirectional(otherKind->attribute))) {
    LogOnce(2, kind->attribute, otherKind->attribute,
            [NSString stringWithFormat:@"A constraint cannot be made between a leading/trailing "
                                       @"anchor and a left/right anchor (%@, %@)",
                                       kind->name, otherKind->name]);
    return nil;
  }
  return [NSLayoutConstraint constraintWithItem:item
                                      attribute:kind->attribute
                                      relatedBy:relation
                                         toItem:otherItem
                                      attribute:otherKind->attribute
                                     multiplier:multiplier
                                       constant:constant];
}

NSLayoutAnchor *ViewAnchor(NSView *view, size_t index) {
  TVInstallViewLifetimeHook();
  ViewAnchors &anchors = (*viewAnchors)[view];
  if (anchors[index] == nil) {
    anchors[index] = TVNewLayoutAnchor(view, kAnchorKinds[index].attribute);
  }
  return anchors[index];
}

}  // namespace

NSLayoutAnchor *TVNewLayoutAnchor(id item, NSLayoutAttribute attribute) {
  const AnchorKind *kind = KindFor(attribute);
  if (kind == nullptr) {
    return nil;
  }
  NSLayoutAnchor *anchor = [[ClassFor(kind->axis) alloc] init];
  object_setIvar(anchor, AnchorIvar("_name"), [kind->name retain]);
  object_setIvar(anchor, AnchorIvar("_item"), item);
  return anchor;
}

void TVDetachLayoutAnchor(NSLayoutAnchor *anchor) {
  if (anchor != nil) {
    object_setIvar(anchor, AnchorIvar("_item"), nil);
  }
}

#pragma mark - Replaced GNUstep methods

static void (*originalAnchorDealloc)(id, SEL) = NULL;

// GNUstep's dealloc releases _item; the item is not retained here.
static void TVAnchorDealloc(NSLayoutAnchor *anchor, SEL selector) {
  TVDetachLayoutAnchor(anchor);
  originalAnchorDealloc(anchor, selector);
}

// Anchors are immutable: a copy is the anchor itself (GNUstep answers nil).
static id TVAnchorCopy(NSLayoutAnchor *anchor, SEL selector, NSZone *zone) { return [anchor retain]; }

static NSLayoutConstraint *TVEqual(NSLayoutAnchor *a, SEL s, id other) {
  return MakeConstraint(a, NSLayoutRelationEqual, other != nil ? other : (id)[NSNull null], 1, 0);
}
static NSLayoutConstraint *TVGreater(NSLayoutAnchor *a, SEL s, id other) {
  return MakeConstraint(a, NSLayoutRelationGreaterThanOrEqual,
                        other != nil ? other : (id)[NSNull null], 1, 0);
}
static NSLayoutConstraint *TVLess(NSLayoutAnchor *a, SEL s, id other) {
  return MakeConstraint(a, NSLayoutRelationLessThanOrEqual,
                        other != nil ? other : (id)[NSNull null], 1, 0);
}
static NSLayoutConstraint *TVEqualConstant(NSLayoutAnchor *a, SEL s, id other, CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationEqual, other != nil ? other : (id)[NSNull null], 1, c);
}
static NSLayoutConstraint *TVGreaterConstant(NSLayoutAnchor *a, SEL s, id other, CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationGreaterThanOrEqual,
                        other != nil ? other : (id)[NSNull null], 1, c);
}
static NSLayoutConstraint *TVLessConstant(NSLayoutAnchor *a, SEL s, id other, CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationLessThanOrEqual,
                        other != nil ? other : (id)[NSNull null], 1, c);
}
static NSLayoutConstraint *TVEqualToConstant(NSLayoutAnchor *a, SEL s, CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationEqual, nil, 1, c);
}
static NSLayoutConstraint *TVGreaterToConstant(NSLayoutAnchor *a, SEL s, CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationGreaterThanOrEqual, nil, 1, c);
}
static NSLayoutConstraint *TVLessToConstant(NSLayoutAnchor *a, SEL s, CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationLessThanOrEqual, nil, 1, c);
}
static NSLayoutConstraint *TVEqualMultiplier(NSLayoutAnchor *a, SEL s, id other, CGFloat m) {
  return MakeConstraint(a, NSLayoutRelationEqual, other != nil ? other : (id)[NSNull null], m, 0);
}
static NSLayoutConstraint *TVGreaterMultiplier(NSLayoutAnchor *a, SEL s, id other, CGFloat m) {
  return MakeConstraint(a, NSLayoutRelationGreaterThanOrEqual,
                        other != nil ? other : (id)[NSNull null], m, 0);
}
static NSLayoutConstraint *TVLessMultiplier(NSLayoutAnchor *a, SEL s, id other, CGFloat m) {
  return MakeConstraint(a, NSLayoutRelationLessThanOrEqual,
                        other != nil ? other : (id)[NSNull null], m, 0);
}
static NSLayoutConstraint *TVEqualMultiplierConstant(NSLayoutAnchor *a, SEL s, id other, CGFloat m,
                                                     CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationEqual, other != nil ? other : (id)[NSNull null], m, c);
}
static NSLayoutConstraint *TVGreaterMultiplierConstant(NSLayoutAnchor *a, SEL s, id other,
                                                       CGFloat m, CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationGreaterThanOrEqual,
                        other != nil ? other : (id)[NSNull null], m, c);
}
static NSLayoutConstraint *TVLessMultiplierConstant(NSLayoutAnchor *a, SEL s, id other, CGFloat m,
                                                    CGFloat c) {
  return MakeConstraint(a, NSLayoutRelationLessThanOrEqual,
                        other != nil ? other : (id)[NSNull null], m, c);
}

// GNUstep answers nil; this stand-in does not make offset dimensions either.
static id TVOffsetAnchor(NSLayoutAnchor *anchor, SEL selector, id other) { return nil; }

// The anchors of a constraint, for every constraint (GNUstep keeps ivars
// that nothing sets).
static NSLayoutAnchor *TVAnchorOfItem(id item, NSLayoutAttribute attribute) {
  if ([item isKindOfClass:[NSView class]]) {
    const AnchorKind *kind = KindFor(attribute);
    return kind != nullptr ? ViewAnchor(item, (size_t)(kind - kAnchorKinds)) : nil;
  }
  if ([item isKindOfClass:[NSLayoutGuide class]]) {
    const AnchorKind *kind = KindFor(attribute);
    if (kind == nullptr) {
      return nil;
    }
    SEL getter = NSSelectorFromString([kind->name stringByAppendingString:@"Anchor"]);
    return [item respondsToSelector:getter] ? [item performSelector:getter] : nil;
  }
  return nil;
}

static NSLayoutAnchor *TVConstraintFirstAnchor(NSLayoutConstraint *constraint, SEL selector) {
  return TVAnchorOfItem([constraint firstItem], [constraint firstAttribute]);
}

static NSLayoutAnchor *TVConstraintSecondAnchor(NSLayoutConstraint *constraint, SEL selector) {
  return TVAnchorOfItem([constraint secondItem], [constraint secondAttribute]);
}

#pragma mark - View anchors

@implementation NSView (TalvoPlatformAnchors)

- (NSLayoutXAxisAnchor *)leadingAnchor {
  return (NSLayoutXAxisAnchor *)ViewAnchor(self, 0);
}
- (NSLayoutXAxisAnchor *)trailingAnchor {
  return (NSLayoutXAxisAnchor *)ViewAnchor(self, 1);
}
- (NSLayoutXAxisAnchor *)leftAnchor {
  return (NSLayoutXAxisAnchor *)ViewAnchor(self, 2);
}
- (NSLayoutXAxisAnchor *)rightAnchor {
  return (NSLayoutXAxisAnchor *)ViewAnchor(self, 3);
}
- (NSLayoutXAxisAnchor *)centerXAnchor {
  return (NSLayoutXAxisAnchor *)ViewAnchor(self, 4);
}
- (NSLayoutYAxisAnchor *)topAnchor {
  return (NSLayoutYAxisAnchor *)ViewAnchor(self, 5);
}
- (NSLayoutYAxisAnchor *)bottomAnchor {
  return (NSLayoutYAxisAnchor *)ViewAnchor(self, 6);
}
- (NSLayoutYAxisAnchor *)centerYAnchor {
  return (NSLayoutYAxisAnchor *)ViewAnchor(self, 7);
}
- (NSLayoutYAxisAnchor *)firstBaselineAnchor {
  return (NSLayoutYAxisAnchor *)ViewAnchor(self, 8);
}
- (NSLayoutYAxisAnchor *)lastBaselineAnchor {
  return (NSLayoutYAxisAnchor *)ViewAnchor(self, 9);
}
- (NSLayoutDimension *)widthAnchor {
  return (NSLayoutDimension *)ViewAnchor(self, 10);
}
- (NSLayoutDimension *)heightAnchor {
  return (NSLayoutDimension *)ViewAnchor(self, 11);
}

@end

#pragma mark - View lifetime

static void (*originalViewDealloc)(id, SEL) = NULL;

static void TVForgetViewAnchors(NSView *view) {
  auto found = viewAnchors->find(view);
  if (found == viewAnchors->end()) {
    return;
  }
  ViewAnchors anchors = found->second;
  viewAnchors->erase(found);
  for (NSLayoutAnchor *anchor : anchors) {
    TVDetachLayoutAnchor(anchor);
    [anchor release];
  }
}

// Runs before the constraint storage's hook (installed later, so outside
// it): the view's layout state still stands.
static void TVViewLifetimeDealloc(NSView *view, SEL selector) {
  TVForgetViewControllerOfView(view);
  TVForgetLayoutGuidesOfView(view);
  TVForgetViewAnchors(view);
  originalViewDealloc(view, selector);
}

void TVInstallViewLifetimeHook(void) {
  if (originalViewDealloc != NULL) {
    return;
  }
  originalViewDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      [NSView class], @selector(dealloc), (IMP)TVViewLifetimeDealloc);
}

#pragma mark - Hooks

@interface _TVLayoutAnchorHooks : NSObject
@end

@implementation _TVLayoutAnchorHooks

+ (void)load {
  Class anchor = [NSLayoutAnchor class];
  Class dimension = [NSLayoutDimension class];
  originalAnchorDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(anchor, @selector(dealloc),
                                                                     (IMP)TVAnchorDealloc);
  TVReplaceInstanceMethod(anchor, @selector(copyWithZone:), (IMP)TVAnchorCopy);
  TVReplaceInstanceMethod(anchor, @selector(constraintEqualToAnchor:), (IMP)TVEqual);
  TVReplaceInstanceMethod(anchor, @selector(constraintGreaterThanOrEqualToAnchor:),
                          (IMP)TVGreater);
  TVReplaceInstanceMethod(anchor, @selector(constraintLessThanOrEqualToAnchor:), (IMP)TVLess);
  TVReplaceInstanceMethod(anchor, @selector(constraintEqualToAnchor:constant:),
                          (IMP)TVEqualConstant);
  TVReplaceInstanceMethod(anchor, @selector(constraintGreaterThanOrEqualToAnchor:constant:),
                          (IMP)TVGreaterConstant);
  TVReplaceInstanceMethod(anchor, @selector(constraintLessThanOrEqualToAnchor:constant:),
                          (IMP)TVLessConstant);
  TVReplaceInstanceMethod(dimension, @selector(constraintEqualToConstant:),
                          (IMP)TVEqualToConstant);
  TVReplaceInstanceMethod(dimension, @selector(constraintGreaterThanOrEqualToConstant:),
                          (IMP)TVGreaterToConstant);
  TVReplaceInstanceMethod(dimension, @selector(constraintLessThanOrEqualToConstant:),
                          (IMP)TVLessToConstant);
  TVReplaceInstanceMethod(dimension, @selector(constraintEqualToAnchor:multiplier:),
                          (IMP)TVEqualMultiplier);
  TVReplaceInstanceMethod(dimension, @selector(constraintGreaterThanOrEqualToAnchor:multiplier:),
                          (IMP)TVGreaterMultiplier);
  TVReplaceInstanceMethod(dimension, @selector(constraintLessThanOrEqualToAnchor:multiplier:),
                          (IMP)TVLessMultiplier);
  TVReplaceInstanceMethod(dimension, @selector(constraintEqualToAnchor:multiplier:constant:),
                          (IMP)TVEqualMultiplierConstant);
  TVReplaceInstanceMethod(dimension,
                          @selector(constraintGreaterThanOrEqualToAnchor:multiplier:constant:),
                          (IMP)TVGreaterMultiplierConstant);
  TVReplaceInstanceMethod(dimension,
                          @selector(constraintLessThanOrEqualToAnchor:multiplier:constant:),
                          (IMP)TVLessMultiplierConstant);
  TVReplaceInstanceMethod([NSLayoutXAxisAnchor class], @selector(anchorWithOffsetToAnchor:),
                          (IMP)TVOffsetAnchor);
  TVReplaceInstanceMethod([NSLayoutYAxisAnchor class], @selector(anchorWithOffsetToAnchor:),
                          (IMP)TVOffsetAnchor);
  Class constraint = [NSLayoutConstraint class];
  TVReplaceInstanceMethod(constraint, @selector(firstAnchor), (IMP)TVConstraintFirstAnchor);
  TVReplaceInstanceMethod(constraint, @selector(secondAnchor), (IMP)TVConstraintSecondAnchor);
}

@end
