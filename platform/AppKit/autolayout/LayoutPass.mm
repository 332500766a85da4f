// AppKit's update-constraints and layout passes on GNUstep: the NSView API,
// the solve that turns installed constraints into frames, and the hooks that
// run both passes before a window displays.

#import <AppKit/AppKit.h>

#include <unordered_map>
#include <unordered_set>
#include <vector>

#import "platform/AppKit/autolayout/TVLayoutState.h"
#include "platform/AppKit/layout/Solver.hpp"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

using talvo::layout::Constraint;
using talvo::layout::Expression;
using talvo::layout::Relation;
using talvo::layout::Solver;
using talvo::layout::Strength;
using talvo::layout::Variable;

namespace {

// Below every priority a constraint can have: an unconstrained dimension of
// a view placed by constraints keeps its current frame.
const Strength kStayStrength{0.5f};
const float kHuggingPriority = 250;
const float kCompressionResistancePriority = 750;
const int kMaximumUpdateRounds = 10;

// True while the pass sets frames, so that its own frame changes do not ask
// for another pass.
bool applyingFrames = false;

// The engine's variables for one view, in the root's space with y growing
// downward from the root's top edge.
struct ViewVariables {
  Variable left, top, width, height;
  Expression right() const { return Expression(left) + Expression(width); }
  Expression bottom() const { return Expression(top) + Expression(height); }
};

// The frames computed by the pass that is running, by view.
std::unordered_map<NSView *, NSRect> *solvedFrames = nullptr;

NSView *LayoutRoot(NSView *view) {
  NSWindow *window = [view window];
  if (window != nil) {
    NSView *content = [window contentView];
    return (view == content || [view isDescendantOf:content]) ? content : nil;
  }
  NSView *root = view;
  while ([root superview] != nil) {
    root = [root superview];
  }
  return root;
}

Expression AttributeExpression(const ViewVariables &v, NSLayoutAttribute attribute, bool *known) {
  *known = true;
  switch (attribute) {
    case NSLayoutAttributeLeft:
    case NSLayoutAttributeLeading:
      return Expression(v.left);
    case NSLayoutAttributeRight:
    case NSLayoutAttributeTrailing:
      return v.right();
    case NSLayoutAttributeTop:
      return Expression(v.top);
    case NSLayoutAttributeBottom:
    case NSLayoutAttributeLastBaseline:
    case NSLayoutAttributeFirstBaseline:
      return v.bottom();
    case NSLayoutAttributeWidth:
      return Expression(v.width);
    case NSLayoutAttributeHeight:
      return Expression(v.height);
    case NSLayoutAttributeCenterX:
      return Expression(v.left) + Expression(v.width) * 0.5;
    case NSLayoutAttributeCenterY:
      return Expression(v.top) + Expression(v.height) * 0.5;
    default:
      *known = false;
      return Expression(0.0);
  }
}

void CollectSubtree(NSView *view, std::vector<NSView *> &order) {
  order.push_back(view);
  for (NSView *subview in [view subviews]) {
    CollectSubtree(subview, order);
  }
}

// Leaves first, as AppKit does: a container's updateConstraints sees its
// subviews' constraints already made.
void UpdateConstraintsPostOrder(NSView *view, bool *changed) {
  for (NSView *subview in [[[view subviews] copy] autorelease]) {
    UpdateConstraintsPostOrder(subview, changed);
  }
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  BOOL firstTime = state == nil || !state->_hasUpdatedConstraints;
  BOOL wanted = state != nil ? state->_needsUpdateConstraints : NO;
  if (wanted || (firstTime && [[view class] requiresConstraintBasedLayout])) {
    state = TVLayoutState(view, YES);
    state->_hasUpdatedConstraints = YES;
    state->_needsUpdateConstraints = NO;
    [view updateConstraints];
    *changed = true;
  }
}

void RunUpdatePass(NSView *root) {
  for (int round = 0; round < kMaximumUpdateRounds; round++) {
    bool changed = false;
    UpdateConstraintsPostOrder(root, &changed);
    if (!changed) {
      return;
    }
  }
}

// Solves every constraint installed in root's tree and answers the frames of
// the views the constraints place, relative to their superviews.
std::unordered_map<NSView *, NSRect> Solve(NSView *root) {
  std::vector<NSView *> views;
  CollectSubtree(root, views);

  std::vector<NSLayoutConstraint *> installed;
  std::unordered_set<NSView *> participants;
  for (NSView *view : views) {
    _TVViewLayoutState *state = TVLayoutState(view, NO);
    if (state == nil) {
      continue;
    }
    if (!state->_translatesAutoresizingMask) {
      participants.insert(view);
    }
    for (NSLayoutConstraint *constraint in state->_constraints) {
      installed.push_back(constraint);
      for (id item : {[constraint firstItem], [constraint secondItem]}) {
        if ([item isKindOfClass:[NSView class]] && ([item isDescendantOf:root])) {
          participants.insert(item);
        }
      }
    }
  }
  std::unordered_map<NSView *, NSRect> frames;
  if (installed.empty() && participants.empty()) {
    return frames;
  }
  // Every ancestor of a participant takes part: frames are relative to it.
  std::vector<NSView *> chain(participants.begin(), participants.end());
  for (NSView *view : chain) {
    for (NSView *up = [view superview]; up != nil && participants.insert(up).second;
         up = [up superview]) {
      if (up == root) {
        break;
      }
    }
  }
  participants.insert(root);

  Solver solver;
  std::unordered_map<NSView *, ViewVariables> variables;
  for (NSView *view : views) {  // tree order: superviews before subviews
    if (participants.count(view) != 0) {
      variables[view] = ViewVariables();
    }
  }
  auto require = [&solver](const Expression &lhs, Relation relation, const Expression &rhs,
                           Strength strength) {
    solver.addConstraint(Constraint::Make(lhs, relation, rhs, strength));
  };

  NSRect rootBounds = [root bounds];
  for (NSView *view : views) {
    auto found = variables.find(view);
    if (found == variables.end()) {
      continue;
    }
    const ViewVariables &v = found->second;
    NSRect frame = [view frame];
    if (view == root) {
      require(v.left, Relation::Equal, 0.0, Strength::Required());
      require(v.top, Relation::Equal, 0.0, Strength::Required());
      require(v.width, Relation::Equal, NSWidth(rootBounds), Strength::Required());
      require(v.height, Relation::Equal, NSHeight(rootBounds), Strength::Required());
      continue;
    }
    NSView *superview = [view superview];
    const ViewVariables &s = variables[superview];
    NSRect bounds = [superview bounds];
    Expression left = Expression(s.left) + (NSMinX(frame) - NSMinX(bounds));
    // Unflipped superviews keep the distance from their bottom edge.
    Expression top = [superview isFlipped]
                         ? Expression(s.top) + (NSMinY(frame) - NSMinY(bounds))
                         : Expression(s.top) + Expression(s.height) -
                               (NSMaxY(frame) - NSMinY(bounds));
    _TVViewLayoutState *state = TVLayoutState(view, NO);
    BOOL translates = state == nil || state->_translatesAutoresizingMask;
    Strength strength = translates ? Strength::Required() : kStayStrength;
    require(v.left, Relation::Equal, left, strength);
    require(v.top, Relation::Equal, top, strength);
    require(v.width, Relation::Equal, NSWidth(frame), strength);
    require(v.height, Relation::Equal, NSHeight(frame), strength);
    require(v.width, Relation::GreaterThanOrEqual, 0.0, Strength::Required());
    require(v.height, Relation::GreaterThanOrEqual, 0.0, Strength::Required());
    if (!translates) {
      NSSize intrinsic = [view intrinsicContentSize];
      if (intrinsic.width != NSViewNoIntrinsicMetric) {
        require(v.width, Relation::GreaterThanOrEqual, intrinsic.width,
                Strength{kCompressionResistancePriority});
        require(v.width, Relation::LessThanOrEqual, intrinsic.width, Strength{kHuggingPriority});
      }
      if (intrinsic.height != NSViewNoIntrinsicMetric) {
        require(v.height, Relation::GreaterThanOrEqual, intrinsic.height,
                Strength{kCompressionResistancePriority});
        require(v.height, Relation::LessThanOrEqual, intrinsic.height, Strength{kHuggingPriority});
      }
    }
  }

  for (NSLayoutConstraint *constraint : installed) {
    auto first = variables.find([constraint firstItem]);
    id secondItem = [constraint secondItem];
    auto second = variables.find(secondItem);
    bool firstKnown = first != variables.end();
    bool secondKnown = secondItem == nil || second != variables.end();
    bool attributesKnown = false;
    Expression lhs;
    Expression rhs([constraint constant]);
    if (firstKnown && secondKnown) {
      lhs = AttributeExpression(first->second, [constraint firstAttribute], &attributesKnown);
      if (attributesKnown && secondItem != nil) {
        rhs = AttributeExpression(second->second, [constraint secondAttribute], &attributesKnown) *
                  [constraint multiplier] +
              Expression([constraint constant]);
      }
    }
    if (!attributesKnown) {
      NSLog(@"Ignoring constraint %@: its items are not views of this window", constraint);
      continue;
    }
    talvo::layout::Status status = solver.addConstraint(Constraint::Make(
        lhs, static_cast<Relation>([constraint relation]), rhs,
        talvo::layout::FromPriority([constraint priority])));
    if (status == talvo::layout::Status::Unsatisfiable) {
      NSLog(@"Unable to simultaneously satisfy constraints. Will attempt to recover by breaking "
            @"constraint %@",
            constraint);
    } else if (status != talvo::layout::Status::Ok && status != talvo::layout::Status::Duplicate) {
      NSLog(@"Ignoring constraint %@: %s", constraint, talvo::layout::StatusName(status));
    }
  }
  solver.updateVariables();

  for (NSView *view : views) {
    auto found = variables.find(view);
    if (view == root || found == variables.end()) {
      continue;
    }
    const ViewVariables &v = found->second;
    NSView *superview = [view superview];
    const ViewVariables &s = variables[superview];
    NSRect bounds = [superview bounds];
    double x = v.left.value() - s.left.value() + NSMinX(bounds);
    double yFromTop = v.top.value() - s.top.value();
    double y = [superview isFlipped]
                   ? yFromTop + NSMinY(bounds)
                   : s.height.value() - yFromTop - v.height.value() + NSMinY(bounds);
    frames[view] = NSMakeRect(x, y, v.width.value(), v.height.value());
  }
  return frames;
}

// Top-down: each view's layout places its own subviews.
void RunLayoutPass(NSView *view) {
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  if (state != nil) {
    state->_needsLayout = NO;
  }
  [view layout];
  for (NSView *subview in [[[view subviews] copy] autorelease]) {
    RunLayoutPass(subview);
  }
}

}  // namespace

void TVMarkNeedsLayoutPass(NSView *view) {
  if (view == nil || applyingFrames) {
    return;
  }
  NSView *root = LayoutRoot(view);
  if (root == nil) {
    return;
  }
  TVLayoutState(root, YES)->_needsLayout = YES;
  [[view window] setViewsNeedDisplay:YES];
}

void TVRunLayoutPasses(NSView *view) {
  NSView *root = LayoutRoot(view);
  if (root == nil) {
    return;
  }
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [root retain];
  RunUpdatePass(root);
  std::unordered_map<NSView *, NSRect> frames = Solve(root);
  std::unordered_map<NSView *, NSRect> *outer = solvedFrames;
  solvedFrames = &frames;
  RunLayoutPass(root);
  solvedFrames = outer;
  TVLayoutState(root, YES)->_needsLayout = NO;
  [root release];
  [pool drain];
}

#pragma mark - NSView API

@implementation NSView (TalvoPlatformLayout)

- (BOOL)translatesAutoresizingMaskIntoConstraints {
  _TVViewLayoutState *state = TVLayoutState(self, NO);
  return state == nil || state->_translatesAutoresizingMask;
}

- (void)setTranslatesAutoresizingMaskIntoConstraints:(BOOL)flag {
  _TVViewLayoutState *state = TVLayoutState(self, YES);
  if (state->_translatesAutoresizingMask != flag) {
    state->_translatesAutoresizingMask = flag;
    TVMarkNeedsLayoutPass(self);
  }
}

+ (BOOL)requiresConstraintBasedLayout {
  return NO;
}

- (BOOL)needsUpdateConstraints {
  _TVViewLayoutState *state = TVLayoutState(self, NO);
  return state != nil && state->_needsUpdateConstraints;
}

- (void)setNeedsUpdateConstraints:(BOOL)flag {
  TVLayoutState(self, YES)->_needsUpdateConstraints = flag;
  if (flag) {
    TVMarkNeedsLayoutPass(self);
  }
}

- (void)updateConstraints {
  _TVViewLayoutState *state = TVLayoutState(self, NO);
  if (state != nil) {
    state->_needsUpdateConstraints = NO;
  }
}

- (void)updateConstraintsForSubtreeIfNeeded {
  RunUpdatePass(self);
}

- (BOOL)needsLayout {
  _TVViewLayoutState *state = TVLayoutState(self, NO);
  return state != nil && state->_needsLayout;
}

- (void)setNeedsLayout:(BOOL)flag {
  TVLayoutState(self, YES)->_needsLayout = flag;
  if (flag) {
    TVMarkNeedsLayoutPass(self);
  }
}

- (void)layout {
  if (solvedFrames == nullptr) {
    return;
  }
  bool outer = applyingFrames;
  applyingFrames = true;
  for (NSView *subview in [self subviews]) {
    auto found = solvedFrames->find(subview);
    if (found == solvedFrames->end() || [subview translatesAutoresizingMaskIntoConstraints]) {
      continue;
    }
    NSRect old = [subview frame];
    if (!NSEqualRects(old, found->second)) {
      [subview setFrame:found->second];
      // GNUstep marks nothing dirty on setFrame: redraw old and new places.
      [self setNeedsDisplayInRect:old];
      [self setNeedsDisplayInRect:found->second];
    }
  }
  applyingFrames = outer;
}

- (void)layoutSubtreeIfNeeded {
  TVRunLayoutPasses(self);
}

- (NSSize)intrinsicContentSize {
  return NSMakeSize(NSViewNoIntrinsicMetric, NSViewNoIntrinsicMetric);
}

- (void)invalidateIntrinsicContentSize {
  TVMarkNeedsLayoutPass(self);
}

@end

#pragma mark - Hooks

static void (*originalDisplayIfNeeded)(id, SEL) = NULL;
static void (*originalDisplay)(id, SEL) = NULL;
static void (*originalOrderWindow)(id, SEL, NSWindowOrderingMode, NSInteger) = NULL;
static void (*originalSetFrame)(id, SEL, NSRect) = NULL;
static void (*originalSetFrameSize)(id, SEL, NSSize) = NULL;
static void (*originalSetFrameOrigin)(id, SEL, NSPoint) = NULL;
static void (*originalRemoveFromSuperview)(id, SEL) = NULL;
static void (*originalRemoveFromSuperviewQuietly)(id, SEL) = NULL;

static void TVRunPassesIfNeeded(NSWindow *window) {
  NSView *content = [window contentView];
  _TVViewLayoutState *state = TVLayoutState(content, NO);
  if (state != nil && state->_needsLayout) {
    TVRunLayoutPasses(content);
  }
}

static void TVWindowDisplayIfNeeded(NSWindow *window, SEL selector) {
  TVRunPassesIfNeeded(window);
  originalDisplayIfNeeded(window, selector);
}

static void TVWindowDisplay(NSWindow *window, SEL selector) {
  TVRunPassesIfNeeded(window);
  originalDisplay(window, selector);
}

static void TVWindowOrder(NSWindow *window, SEL selector, NSWindowOrderingMode place,
                          NSInteger other) {
  if (place != NSWindowOut) {
    TVRunPassesIfNeeded(window);
  }
  originalOrderWindow(window, selector, place, other);
}

// A view resized or moved by code asks for a pass when constraints may
// depend on it: it holds layout state, or its superview does.
static void TVNoteFrameChange(NSView *view) {
  if (applyingFrames) {
    return;
  }
  if (TVLayoutState(view, NO) != nil || TVLayoutState([view superview], NO) != nil) {
    TVMarkNeedsLayoutPass(view);
  }
}

// GNUstep's setFrame: does not go through setFrameSize:/setFrameOrigin:.
static void TVViewSetFrame(NSView *view, SEL selector, NSRect frame) {
  BOOL changed = !NSEqualRects([view frame], frame);
  originalSetFrame(view, selector, frame);
  if (changed) {
    TVNoteFrameChange(view);
  }
}

static void TVViewSetFrameSize(NSView *view, SEL selector, NSSize size) {
  BOOL changed = !NSEqualSizes([view frame].size, size);
  originalSetFrameSize(view, selector, size);
  if (changed) {
    TVNoteFrameChange(view);
  }
}

static void TVViewSetFrameOrigin(NSView *view, SEL selector, NSPoint origin) {
  BOOL changed = !NSEqualPoints([view frame].origin, origin);
  originalSetFrameOrigin(view, selector, origin);
  if (changed) {
    TVNoteFrameChange(view);
  }
}

// A view that leaves its superview takes with it every constraint, held by
// an ancestor, that names it or one of its subviews.
static void TVRemoveConstraintsLeavingWith(NSView *view) {
  NSView *superview = [view superview];
  if (superview == nil) {
    return;
  }
  for (NSView *holder = superview; holder != nil; holder = [holder superview]) {
    _TVViewLayoutState *state = TVLayoutState(holder, NO);
    if (state == nil || [state->_constraints count] == 0) {
      continue;
    }
    for (NSLayoutConstraint *constraint in [[state->_constraints copy] autorelease]) {
      id first = [constraint firstItem];
      id second = [constraint secondItem];
      BOOL names = ([first isKindOfClass:[NSView class]] && [first isDescendantOf:view]) ||
                   ([second isKindOfClass:[NSView class]] && [second isDescendantOf:view]);
      if (names) {
        [holder removeConstraint:constraint];
      }
    }
  }
  TVMarkNeedsLayoutPass(superview);
}

static void TVViewRemoveFromSuperview(NSView *view, SEL selector) {
  TVRemoveConstraintsLeavingWith(view);
  originalRemoveFromSuperview(view, selector);
}

static void TVViewRemoveFromSuperviewQuietly(NSView *view, SEL selector) {
  TVRemoveConstraintsLeavingWith(view);
  originalRemoveFromSuperviewQuietly(view, selector);
}

@interface _TVLayoutPassHooks : NSObject
@end

@implementation _TVLayoutPassHooks

+ (void)load {
  Class window = [NSWindow class];
  originalDisplayIfNeeded = (void (*)(id, SEL))TVReplaceInstanceMethod(
      window, @selector(displayIfNeeded), (IMP)TVWindowDisplayIfNeeded);
  originalDisplay =
      (void (*)(id, SEL))TVReplaceInstanceMethod(window, @selector(display), (IMP)TVWindowDisplay);
  originalOrderWindow = (void (*)(id, SEL, NSWindowOrderingMode, NSInteger))TVReplaceInstanceMethod(
      window, @selector(orderWindow:relativeTo:), (IMP)TVWindowOrder);
  Class view = [NSView class];
  originalSetFrame = (void (*)(id, SEL, NSRect))TVReplaceInstanceMethod(
      view, @selector(setFrame:), (IMP)TVViewSetFrame);
  originalSetFrameSize = (void (*)(id, SEL, NSSize))TVReplaceInstanceMethod(
      view, @selector(setFrameSize:), (IMP)TVViewSetFrameSize);
  originalSetFrameOrigin = (void (*)(id, SEL, NSPoint))TVReplaceInstanceMethod(
      view, @selector(setFrameOrigin:), (IMP)TVViewSetFrameOrigin);
  originalRemoveFromSuperview = (void (*)(id, SEL))TVReplaceInstanceMethod(
      view, @selector(removeFromSuperview), (IMP)TVViewRemoveFromSuperview);
  originalRemoveFromSuperviewQuietly = (void (*)(id, SEL))TVReplaceInstanceMethod(
      view, @selector(removeFromSuperviewWithoutNeedingDisplay),
      (IMP)TVViewRemoveFromSuperviewQuietly);
}

@end
