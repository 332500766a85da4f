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

// Roots of view trees outside any window that asked for a pass. When such a
// tree joins a window, the window runs the pass it missed.
std::unordered_set<NSView *> *detachedRoots = new std::unordered_set<NSView *>();

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

}  // namespace

// The live solver of one layout root, kept between passes so that a pass
// only tells the solver what changed: a constraint added, removed or given
// a new constant or priority is replaced on its own, frames of views that
// translate their autoresizing mask likewise, and the weak stays that keep
// unconstrained dimensions in place are edit variables that follow each
// solution.
struct TVLayoutEngine {
  // What a constraint was added with; a change of any of it replaces it.
  struct InstalledConstraint {
    Constraint solverConstraint;  // null when the solver refused it
    id firstItem;
    id secondItem;
    NSLayoutAttribute firstAttribute;
    NSLayoutAttribute secondAttribute;
    NSLayoutRelation relation;
    CGFloat multiplier;
    CGFloat constant;
    NSLayoutPriority priority;
    // The variables it was written with: an item that left and came back
    // has new ones.
    uint64_t firstVariables;
    uint64_t secondVariables;
  };
  // The constraints generated for one view from its frame or size.
  struct GeneratedConstraints {
    std::vector<double> key;  // the numbers they were made from
    std::vector<Constraint> constraints;
  };
  struct Participant {
    ViewVariables variables;
    GeneratedConstraints frame;
    GeneratedConstraints intrinsic;
    bool stays = false;
  };

  Solver solver;
  NSView *rootView = nil;  // not retained: the root owns the engine
  // Views other than the root are retained while they take part.
  std::unordered_map<NSView *, Participant> participants;
  std::unordered_map<NSLayoutConstraint *, InstalledConstraint> installed;  // retained

  ~TVLayoutEngine() {
    for (auto &entry : participants) {
      if (entry.first != rootView) {
        [entry.first release];
      }
    }
    for (auto &entry : installed) {
      [entry.first release];
    }
  }

  // Replaces the constraints generated from `key` when the key changed;
  // `build` makes the new ones, only then.
  template <typename Build>
  void Replace(GeneratedConstraints &generated, std::vector<double> key, Build build) {
    if (key == generated.key && !generated.key.empty()) {
      return;
    }
    for (const Constraint &constraint : generated.constraints) {
      solver.removeConstraint(constraint);
    }
    generated.key = std::move(key);
    generated.constraints = build();
    for (const Constraint &constraint : generated.constraints) {
      solver.addConstraint(constraint);
    }
  }

  void Clear(Participant &participant) {
    for (GeneratedConstraints *generated : {&participant.frame, &participant.intrinsic}) {
      for (const Constraint &constraint : generated->constraints) {
        solver.removeConstraint(constraint);
      }
      generated->constraints.clear();
      generated->key.clear();
    }
    SetStays(participant, false);
  }

  void SetStays(Participant &participant, bool on) {
    if (participant.stays == on) {
      return;
    }
    const ViewVariables &v = participant.variables;
    for (const Variable &variable : {v.left, v.top, v.width, v.height}) {
      if (on) {
        solver.addEditVariable(variable, kStayStrength);
        solver.suggestValue(variable, variable.value());
      } else {
        solver.removeEditVariable(variable);
      }
    }
    participant.stays = on;
  }

  uint64_t VariablesId(id item) const {
    auto found = participants.find(item);
    return found == participants.end() ? 0 : found->second.variables.left.id();
  }

  std::unordered_map<NSView *, NSRect> Solve(NSView *root);
  void SyncParticipants(NSView *root, const std::vector<NSView *> &views,
                        const std::unordered_set<NSView *> &wanted);
  void SyncGeneratedConstraints(NSView *root, const std::vector<NSView *> &views);
  void SyncInstalledConstraints(const std::vector<NSLayoutConstraint *> &current);
  bool AddInstalled(NSLayoutConstraint *constraint, InstalledConstraint &entry);
};

namespace {

bool SameAsInstalledButConstant(NSLayoutConstraint *constraint,
                                const TVLayoutEngine::InstalledConstraint &entry) {
  return entry.firstItem == [constraint firstItem] && entry.secondItem == [constraint secondItem] &&
         entry.firstAttribute == [constraint firstAttribute] &&
         entry.secondAttribute == [constraint secondAttribute] &&
         entry.relation == [constraint relation] && entry.multiplier == [constraint multiplier] &&
         entry.priority == [constraint priority];
}

bool SameAsInstalled(NSLayoutConstraint *constraint,
                     const TVLayoutEngine::InstalledConstraint &entry) {
  return SameAsInstalledButConstant(constraint, entry) && entry.constant == [constraint constant];
}

}  // namespace

void TVLayoutEngine::SyncParticipants(NSView *root, const std::vector<NSView *> &views,
                                      const std::unordered_set<NSView *> &wanted) {
  for (auto it = participants.begin(); it != participants.end();) {
    if (wanted.count(it->first) == 0) {
      Clear(it->second);
      if (it->first != rootView) {
        [it->first release];
      }
      it = participants.erase(it);
    } else {
      ++it;
    }
  }
  // Tree order, so that a superview's variables exist before its subviews'.
  for (NSView *view : views) {
    if (wanted.count(view) == 0 || participants.count(view) != 0) {
      continue;
    }
    Participant &participant = participants[view == rootView ? view : [view retain]];
    // Start new variables at the view's present place, so that its stays
    // begin there.
    NSRect inRoot = view == root ? [root bounds] : [view convertRect:[view bounds] toView:root];
    double top = [root isFlipped] ? NSMinY(inRoot) : NSHeight([root bounds]) - NSMaxY(inRoot);
    participant.variables.left.setValue(NSMinX(inRoot));
    participant.variables.top.setValue(top);
    participant.variables.width.setValue(NSWidth(inRoot));
    participant.variables.height.setValue(NSHeight(inRoot));
  }
}

void TVLayoutEngine::SyncGeneratedConstraints(NSView *root, const std::vector<NSView *> &views) {
  Strength required = Strength::Required();
  for (NSView *view : views) {
    auto found = participants.find(view);
    if (found == participants.end()) {
      continue;
    }
    Participant &participant = found->second;
    const ViewVariables &v = participant.variables;
    if (view == root) {
      NSRect bounds = [root bounds];
      Replace(participant.frame, {0, NSWidth(bounds), NSHeight(bounds)}, [&] {
        return std::vector<Constraint>{
            Constraint::Make(v.left, Relation::Equal, 0.0, required),
            Constraint::Make(v.top, Relation::Equal, 0.0, required),
            Constraint::Make(v.width, Relation::Equal, NSWidth(bounds), required),
            Constraint::Make(v.height, Relation::Equal, NSHeight(bounds), required)};
      });
      continue;
    }
    NSView *superview = [view superview];
    const ViewVariables &s = participants[superview].variables;
    _TVViewLayoutState *state = TVLayoutState(view, NO);
    BOOL translates = state == nil || state->_translatesAutoresizingMask;
    if (translates) {
      NSRect frame = [view frame];
      NSRect bounds = [superview bounds];
      double x = NSMinX(frame) - NSMinX(bounds);
      BOOL flipped = [superview isFlipped];
      // Unflipped superviews keep the distance from their bottom edge.
      double y = flipped ? NSMinY(frame) - NSMinY(bounds) : NSMaxY(frame) - NSMinY(bounds);
      SetStays(participant, false);
      Replace(participant.frame,
              {1, x, y, NSWidth(frame), NSHeight(frame), flipped ? 1.0 : 0.0, (double)s.left.id()},
              [&] {
                Expression top =
                    flipped ? Expression(s.top) + y : Expression(s.top) + Expression(s.height) - y;
                return std::vector<Constraint>{
                    Constraint::Make(v.left, Relation::Equal, Expression(s.left) + x, required),
                    Constraint::Make(v.top, Relation::Equal, top, required),
                    Constraint::Make(v.width, Relation::Equal, NSWidth(frame), required),
                    Constraint::Make(v.height, Relation::Equal, NSHeight(frame), required)};
              });
      Replace(participant.intrinsic, {-1}, [] { return std::vector<Constraint>(); });
      continue;
    }
    Replace(participant.frame, {2}, [&] {
      return std::vector<Constraint>{
          Constraint::Make(v.width, Relation::GreaterThanOrEqual, 0.0, required),
          Constraint::Make(v.height, Relation::GreaterThanOrEqual, 0.0, required)};
    });
    SetStays(participant, true);
    NSSize intrinsic = [view intrinsicContentSize];
    Replace(participant.intrinsic, {3, intrinsic.width, intrinsic.height}, [&] {
      std::vector<Constraint> sizes;
      if (intrinsic.width != NSViewNoIntrinsicMetric) {
        sizes.push_back(Constraint::Make(v.width, Relation::GreaterThanOrEqual, intrinsic.width,
                                         Strength{kCompressionResistancePriority}));
        sizes.push_back(Constraint::Make(v.width, Relation::LessThanOrEqual, intrinsic.width,
                                         Strength{kHuggingPriority}));
      }
      if (intrinsic.height != NSViewNoIntrinsicMetric) {
        sizes.push_back(Constraint::Make(v.height, Relation::GreaterThanOrEqual, intrinsic.height,
                                         Strength{kCompressionResistancePriority}));
        sizes.push_back(Constraint::Make(v.height, Relation::LessThanOrEqual, intrinsic.height,
                                         Strength{kHuggingPriority}));
      }
      return sizes;
    });
  }
}

bool TVLayoutEngine::AddInstalled(NSLayoutConstraint *constraint, InstalledConstraint &entry) {
  entry.firstItem = [constraint firstItem];
  entry.secondItem = [constraint secondItem];
  entry.firstAttribute = [constraint firstAttribute];
  entry.secondAttribute = [constraint secondAttribute];
  entry.relation = [constraint relation];
  entry.multiplier = [constraint multiplier];
  entry.constant = [constraint constant];
  entry.priority = [constraint priority];
  entry.solverConstraint = Constraint();
  entry.firstVariables = VariablesId(entry.firstItem);
  entry.secondVariables = VariablesId(entry.secondItem);

  auto first = participants.find(entry.firstItem);
  auto second = participants.find(entry.secondItem);
  bool attributesKnown = false;
  Expression lhs;
  Expression rhs(entry.constant);
  if (first != participants.end() && (entry.secondItem == nil || second != participants.end())) {
    lhs = AttributeExpression(first->second.variables, entry.firstAttribute, &attributesKnown);
    if (attributesKnown && entry.secondItem != nil) {
      rhs = AttributeExpression(second->second.variables, entry.secondAttribute, &attributesKnown) *
                entry.multiplier +
            Expression(entry.constant);
    }
  }
  if (!attributesKnown) {
    NSLog(@"Ignoring constraint %@: its items are not views of this window", constraint);
    return false;
  }
  Constraint solverConstraint = Constraint::Make(lhs, static_cast<Relation>(entry.relation), rhs,
                                                 talvo::layout::FromPriority(entry.priority));
  talvo::layout::Status status = solver.addConstraint(solverConstraint);
  if (status == talvo::layout::Status::Ok) {
    entry.solverConstraint = solverConstraint;
    return true;
  }
  if (status == talvo::layout::Status::Unsatisfiable) {
    NSLog(@"Unable to simultaneously satisfy constraints. Will attempt to recover by breaking "
          @"constraint %@",
          constraint);
  } else {
    NSLog(@"Ignoring constraint %@: %s", constraint, talvo::layout::StatusName(status));
  }
  return false;
}

void TVLayoutEngine::SyncInstalledConstraints(const std::vector<NSLayoutConstraint *> &current) {
  std::unordered_set<NSLayoutConstraint *> wanted(current.begin(), current.end());
  bool removedAny = false;
  for (auto it = installed.begin(); it != installed.end();) {
    InstalledConstraint &entry = it->second;
    // A new constant alone (a divider dragged, a slide's frame) is an edit of
    // the live tableau, not a removal and a new row.
    if (wanted.count(it->first) != 0 && !entry.solverConstraint.isNull() &&
        entry.firstVariables == VariablesId(entry.firstItem) &&
        entry.secondVariables == VariablesId(entry.secondItem) &&
        entry.constant != [it->first constant] && SameAsInstalledButConstant(it->first, entry)) {
      // The solver keeps lhs - rhs: the constraint's constant enters negated.
      if (solver.updateConstant(entry.solverConstraint, -[it->first constant]) ==
          talvo::layout::Status::Ok) {
        entry.constant = [it->first constant];
        ++it;
        continue;
      }
    }
    if (wanted.count(it->first) == 0 || !SameAsInstalled(it->first, it->second) ||
        it->second.firstVariables != VariablesId(it->second.firstItem) ||
        it->second.secondVariables != VariablesId(it->second.secondItem)) {
      if (!it->second.solverConstraint.isNull()) {
        solver.removeConstraint(it->second.solverConstraint);
      }
      [it->first release];
      it = installed.erase(it);
      removedAny = true;
    } else {
      ++it;
    }
  }
  // A constraint broken earlier may fit now that another went: try again.
  if (removedAny) {
    for (auto &entry : installed) {
      if (entry.second.solverConstraint.isNull()) {
        AddInstalled(entry.first, entry.second);
      }
    }
  }
  for (NSLayoutConstraint *constraint : current) {
    if (installed.count(constraint) == 0) {
      AddInstalled(constraint, installed[[constraint retain]]);
    }
  }
}

// Brings the solver up to date with root's tree and answers the frames of
// the views the constraints place, relative to their superviews.
std::unordered_map<NSView *, NSRect> TVLayoutEngine::Solve(NSView *root) {
  std::vector<NSView *> views;
  CollectSubtree(root, views);

  std::vector<NSLayoutConstraint *> current;
  std::unordered_set<NSView *> wanted;
  for (NSView *view : views) {
    _TVViewLayoutState *state = TVLayoutState(view, NO);
    if (state == nil) {
      continue;
    }
    if (!state->_translatesAutoresizingMask) {
      wanted.insert(view);
    }
    for (NSLayoutConstraint *constraint in state->_constraints) {
      current.push_back(constraint);
      for (id item : {[constraint firstItem], [constraint secondItem]}) {
        if ([item isKindOfClass:[NSView class]] && [item isDescendantOf:root]) {
          wanted.insert(item);
        }
      }
    }
  }
  std::unordered_map<NSView *, NSRect> frames;
  // Every ancestor of a participant takes part: frames are relative to it.
  std::vector<NSView *> chain(wanted.begin(), wanted.end());
  for (NSView *view : chain) {
    for (NSView *up = [view superview]; up != nil && up != root && wanted.insert(up).second;
         up = [up superview]) {
    }
  }
  if (!wanted.empty()) {
    wanted.insert(root);
  }

  SyncParticipants(root, views, wanted);
  SyncGeneratedConstraints(root, views);
  SyncInstalledConstraints(current);
  solver.updateVariables();

  for (NSView *view : views) {
    auto found = participants.find(view);
    if (view == root || found == participants.end()) {
      continue;
    }
    Participant &participant = found->second;
    const ViewVariables &v = participant.variables;
    NSView *superview = [view superview];
    const ViewVariables &s = participants[superview].variables;
    NSRect bounds = [superview bounds];
    double x = v.left.value() - s.left.value() + NSMinX(bounds);
    double yFromTop = v.top.value() - s.top.value();
    double y = [superview isFlipped]
                   ? yFromTop + NSMinY(bounds)
                   : s.height.value() - yFromTop - v.height.value() + NSMinY(bounds);
    frames[view] = NSMakeRect(x, y, v.width.value(), v.height.value());
    // The stays follow the solution: the next pass starts from here.
    if (participant.stays) {
      for (const Variable &variable : {v.left, v.top, v.width, v.height}) {
        solver.suggestValue(variable, variable.value());
      }
    }
  }
  return frames;
}

void TVDestroyLayoutEngine(TVLayoutEngine *engine) { delete engine; }

namespace {

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
  NSWindow *window = [view window];
  if (window == nil) {
    detachedRoots->insert(root);
  }
  [window setViewsNeedDisplay:YES];
}

void TVForgetLayoutRoot(NSView *view) { detachedRoots->erase(view); }

NSSize TVFittingSize(NSView *view) {
  // Replaced by a solve of the view's own subtree.
  return view != nil ? [view frame].size : NSZeroSize;
}

void TVRunLayoutPasses(NSView *view) {
  NSView *root = LayoutRoot(view);
  if (root == nil) {
    return;
  }
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [root retain];
  detachedRoots->erase(root);
  RunUpdatePass(root);
  _TVViewLayoutState *rootState = TVLayoutState(root, YES);
  if (rootState->_engine == nullptr) {
    rootState->_engine = new TVLayoutEngine();
    rootState->_engine->rootView = root;
  }
  std::unordered_map<NSView *, NSRect> frames = rootState->_engine->Solve(root);
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
  if (content == nil) {
    return;
  }
  _TVViewLayoutState *state = TVLayoutState(content, NO);
  bool needed = state != nil && state->_needsLayout;
  for (auto it = detachedRoots->begin(); it != detachedRoots->end();) {
    if (*it == content || [*it isDescendantOf:content]) {
      needed = true;
      it = detachedRoots->erase(it);
    } else {
      ++it;
    }
  }
  if (needed) {
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
  originalSetFrame = (void (*)(id, SEL, NSRect))TVReplaceInstanceMethod(view, @selector(setFrame:),
                                                                        (IMP)TVViewSetFrame);
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
