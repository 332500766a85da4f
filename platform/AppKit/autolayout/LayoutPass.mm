// AppKit's update-constraints and layout passes on GNUstep: the NSView API,
// the solve that turns installed constraints into frames, and the hooks that
// run both passes before a window displays.
//
// Each layout root (a window's content view, or the top of a tree outside
// any window) keeps a live solver between passes and tells it only what
// changed: a constraint whose constant changed is edited in place; a frame
// set by code replaces that view's generated constraints; only when views,
// constraints or priorities come or go is the whole tree compared with what
// the solver holds. After the solve only the views whose variables moved get
// new frames, and only their superviews are sent layout. A pass with nothing
// to do costs a flag test.

#import <AppKit/AppKit.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#import "platform/AppKit/autolayout/TVLayoutDiagnostics.h"
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

// Below every priority a constraint can have: an unconstrained edge of a
// view placed by constraints keeps its current place.
const Strength kStayStrength{0.5f};
const float kHuggingPriority = 250;
const float kCompressionResistancePriority = 750;
const int kMaximumUpdateRounds = 10;

NSUInteger brokenConstraintCount = 0;
unsigned long long layoutGeneration = 0;

// True while the pass sets frames, so that its own frame changes do not ask
// for another pass.
bool applyingFrames = false;

// The engine's variables for one item (a view or a layout guide): its four
// edges in the root's space, y growing downward from the root's top edge.
// Edges rather than origin and size keep the solver's rows short: a chain of
// views edge to edge never sums widths.
struct ItemVariables {
  Variable left, top, right, bottom;
  Expression width() const { return Expression(right) - Expression(left); }
  Expression height() const { return Expression(bottom) - Expression(top); }
};

// Roots of view trees outside any window that asked for a pass. When such a
// tree joins a window, the window runs the pass it missed.
std::unordered_set<NSView *> *detachedRoots = new std::unordered_set<NSView *>();

// Constraints whose constant changed since the solver last saw them.
std::unordered_set<NSLayoutConstraint *> *pendingConstants =
    new std::unordered_set<NSLayoutConstraint *>();

// The frames the running pass applies, by the view whose -layout sets them.
using FramesByParent = std::unordered_map<NSView *, std::vector<std::pair<NSView *, NSRect>>>;
FramesByParent *solvedFrames = nullptr;

// Views that asked for layout themselves (setNeedsLayout:), not retained;
// a view leaves this set when it deallocates.
std::unordered_set<NSView *> *viewsAskingForLayout = new std::unordered_set<NSView *>();

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

// Asks for a pass on the tree rooted at `root`: before its window next
// displays, or, outside any window, when the tree joins one or is laid out.
void RequestPass(NSView *root) {
  TVLayoutState(root, YES)->_needsLayout = YES;
  NSWindow *window = [root window];
  if (window == nil) {
    detachedRoots->insert(root);
  }
  [window setViewsNeedDisplay:YES];
}

int Depth(NSView *view) {
  int depth = 0;
  for (NSView *up = [view superview]; up != nil; up = [up superview]) {
    depth++;
  }
  return depth;
}

void CollectSubtree(NSView *view, std::vector<NSView *> &order) {
  order.push_back(view);
  for (NSView *subview in [view subviews]) {
    CollectSubtree(subview, order);
  }
}

BOOL IsRightToLeft(id item) {
  if (![item isKindOfClass:[NSView class]]) {
    id owner = [item respondsToSelector:@selector(owningView)] ? [item owningView] : nil;
    return owner != nil && IsRightToLeft(owner);
  }
  return [(NSView *)item userInterfaceLayoutDirection] ==
         NSUserInterfaceLayoutDirectionRightToLeft;
}

// Leaves first, as AppKit does: a container's updateConstraints sees its
// subviews' constraints already made. A view controller's
// updateViewConstraints follows its view's.
void UpdateConstraintsPostOrder(NSView *view, bool *changed) {
  for (NSView *subview in [[[view subviews] copy] autorelease]) {
    UpdateConstraintsPostOrder(subview, changed);
  }
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  BOOL firstTime = state == nil || !state->_hasUpdatedConstraints;
  BOOL wanted = state != nil ? state->_needsUpdateConstraints : NO;
  if (wanted || (firstTime && [[view class] requiresConstraintBasedLayout])) {
    state = TVLayoutState(view, YES);
    BOOL requested = state->_updateRequested;
    state->_hasUpdatedConstraints = YES;
    state->_needsUpdateConstraints = NO;
    state->_updateRequested = NO;
    [view updateConstraints];
    // Its controller hears of it when someone asked for the update.
    NSViewController *controller = requested ? TVViewControllerForView(view) : nil;
    if (controller != nil) {
      [controller updateViewConstraints];
    }
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

// Sends layout to one view, with its controller's callbacks around it.
void LayOut(NSView *view) {
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  if (state != nil) {
    state->_needsLayout = NO;
  }
  viewsAskingForLayout->erase(view);
  NSViewController *controller = TVViewControllerForView(view);
  [controller viewWillLayout];
  [view layout];
  [controller viewDidLayout];
}

// Top-down: each view's layout places its own subviews.
void LayOutSubtree(NSView *view) {
  LayOut(view);
  for (NSView *subview in [[[view subviews] copy] autorelease]) {
    LayOutSubtree(subview);
  }
}

NSRect *GuideFrameSlot(NSLayoutGuide *guide) {
  static ptrdiff_t offset =
      ivar_getOffset(class_getInstanceVariable([NSLayoutGuide class], "_frame"));
  return (NSRect *)((char *)guide + offset);
}

}  // namespace

// The live solver of one layout root, kept between passes.
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
    // The items' geometry (direction, insets, baselines) it was written with.
    uint64_t firstGeometry;
    uint64_t secondGeometry;
  };
  // The constraints generated for one item from its frame or size.
  struct GeneratedConstraints {
    std::vector<double> key;  // the numbers they were made from
    std::vector<Constraint> constraints;
  };
  struct Participant {
    ItemVariables variables;
    id item = nil;      // a view or a layout guide
    NSView *parent = nil;  // superview, or a guide's owning view
    GeneratedConstraints frame;
    GeneratedConstraints intrinsic;
    bool stays = false;
    bool isGuide = false;
    // The stays: edit variables on the leading and top edges and weak
    // constraints on the size, so that a view moved by one edge keeps its
    // size rather than its other edge.
    Constraint widthStay, heightStay;
    double suggested[4] = {0, 0, 0, 0};  // left, top, width, height
    // Read when the tree was last compared: where the alignment rect and
    // the baselines sit inside the frame.
    NSEdgeInsets alignment = {0, 0, 0, 0};
    double firstBaseline = 0;
    double lastBaseline = 0;
    bool rightToLeft = false;
    uint64_t geometry = 0;  // counts changes of the four above
  };

  Solver solver;
  NSView *rootView = nil;  // not retained: the root owns the engine
  bool fitting = false;    // sizes the root as small as its constraints allow
  // Items other than the root are retained while they take part.
  std::unordered_map<id, Participant> participants;
  std::unordered_map<uint64_t, id> itemOfVariable;
  std::unordered_map<NSLayoutConstraint *, InstalledConstraint> installed;  // retained
  // Items whose frame was set by code since the last pass.
  std::unordered_set<id> movedItems;
  // Refused constraints, tried again when one that may conflict goes: a
  // few for each change in one pass, the rest in the passes that follow.
  std::unordered_set<NSLayoutConstraint *> refused;
  std::deque<NSLayoutConstraint *> retries;  // refused ones waiting for a try
  size_t retryBudget = 0;                    // tries this pass may make
  bool retriesPending = false;               // another pass is owed to them
  bool retrying = false;  // a refused constraint refused again is not logged again
  // The frames the last solve computed, by parent, for layout to apply.
  FramesByParent framesToApply;
  // Items dropped since the solver was made: their variables stay in it.
  size_t droppedItems = 0;

  ~TVLayoutEngine() {
    for (auto &entry : participants) {
      if (entry.first != rootView) {
        if (!fitting && !entry.second.isGuide) {
          _TVViewLayoutState *state = TVLayoutState(entry.first, NO);
          if (state != nil) {
            state->_isParticipant = NO;
          }
        }
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
    const ItemVariables &v = participant.variables;
    if (on) {
      // An edit starts out holding the variable's present value.
      solver.addEditVariable(v.left, kStayStrength);
      solver.addEditVariable(v.top, kStayStrength);
      double width = v.right.value() - v.left.value();
      double height = v.bottom.value() - v.top.value();
      participant.widthStay = Constraint::Make(v.width(), Relation::Equal, width, kStayStrength);
      participant.heightStay =
          Constraint::Make(v.height(), Relation::Equal, height, kStayStrength);
      solver.addConstraint(participant.widthStay);
      solver.addConstraint(participant.heightStay);
      double values[4] = {v.left.value(), v.top.value(), width, height};
      std::copy(values, values + 4, participant.suggested);
    } else {
      solver.removeEditVariable(v.left);
      solver.removeEditVariable(v.top);
      solver.removeConstraint(participant.widthStay);
      solver.removeConstraint(participant.heightStay);
    }
    participant.stays = on;
  }

  // Moves the stays to `values` (left, top, width, height); only what
  // changed costs a solver step.
  void MoveStays(Participant &participant, const double values[4]) {
    const ItemVariables &v = participant.variables;
    for (int i = 0; i < 4; i++) {
      if (!std::isfinite(values[i]) || values[i] == participant.suggested[i]) {
        continue;
      }
      switch (i) {
        case 0: solver.suggestValue(v.left, values[i]); break;
        case 1: solver.suggestValue(v.top, values[i]); break;
        // The solver keeps lhs - rhs: the size enters negated.
        case 2: solver.updateConstant(participant.widthStay, -values[i]); break;
        case 3: solver.updateConstant(participant.heightStay, -values[i]); break;
      }
      participant.suggested[i] = values[i];
    }
  }

  // The stays follow the solution, so that the next pass starts from it.
  void FollowWithStays(Participant &participant) {
    if (!participant.stays) {
      return;
    }
    const ItemVariables &v = participant.variables;
    double values[4] = {v.left.value(), v.top.value(), v.right.value() - v.left.value(),
                        v.bottom.value() - v.top.value()};
    MoveStays(participant, values);
  }

  uint64_t VariablesId(id item) const {
    auto found = participants.find(item);
    return found == participants.end() ? 0 : found->second.variables.left.id();
  }

  uint64_t GeometryOf(id item) const {
    auto found = participants.find(item);
    return found == participants.end() ? 0 : found->second.geometry;
  }

  Expression AttributeExpression(const Participant &p, NSLayoutAttribute attribute,
                                 bool *known) const {
    *known = true;
    const ItemVariables &v = p.variables;
    // Constraints hold the alignment rect, the frame inset by the view's
    // alignment insets.
    Expression left = Expression(v.left) + p.alignment.left;
    Expression right = Expression(v.right) - p.alignment.right;
    Expression top = Expression(v.top) + p.alignment.top;
    Expression bottom = Expression(v.bottom) - p.alignment.bottom;
    switch (attribute) {
      case NSLayoutAttributeLeft:
        return left;
      case NSLayoutAttributeRight:
        return right;
      // Right to left, leading and trailing measure along a mirrored axis,
      // so that "leading + 10" is ten points in from the right edge.
      case NSLayoutAttributeLeading:
        return p.rightToLeft ? right * -1.0 : left;
      case NSLayoutAttributeTrailing:
        return p.rightToLeft ? left * -1.0 : right;
      case NSLayoutAttributeTop:
        return top;
      case NSLayoutAttributeBottom:
        return bottom;
      case NSLayoutAttributeFirstBaseline:
        return Expression(v.top) + p.firstBaseline;
      case NSLayoutAttributeLastBaseline:
        return Expression(v.bottom) - p.lastBaseline;
      case NSLayoutAttributeWidth:
        return right - left;
      case NSLayoutAttributeHeight:
        return bottom - top;
      case NSLayoutAttributeCenterX:
        return (left + right) * 0.5;
      case NSLayoutAttributeCenterY:
        return (top + bottom) * 0.5;
      default:
        *known = false;
        return Expression(0.0);
    }
  }

  NSRect FrameOf(const Participant &participant) {
    const ItemVariables &v = participant.variables;
    const ItemVariables &s = participants[participant.parent].variables;
    NSRect bounds = [participant.parent bounds];
    double x = v.left.value() - s.left.value() + NSMinX(bounds);
    double width = v.right.value() - v.left.value();
    double height = v.bottom.value() - v.top.value();
    double fromTop = v.top.value() - s.top.value();
    double y = [participant.parent isFlipped]
                   ? fromTop + NSMinY(bounds)
                   : (s.bottom.value() - s.top.value()) - fromTop - height + NSMinY(bounds);
    // A solution a rounding error below zero is zero.
    return NSMakeRect(x, y, width < 0 && width > -1e-9 ? 0 : width,
                      height < 0 && height > -1e-9 ? 0 : height);
  }

  void AddParticipant(id item, NSView *parent, bool isGuide, NSView *root);
  void EdgesFromFrame(const Participant &participant, double edges[4]);
  void SuggestFrame(Participant &participant);
  void DropParticipant(std::unordered_map<id, Participant>::iterator it);
  void ReadGeometry(Participant &participant);
  void SyncFrameConstraints(id item, Participant &participant);
  void SyncAll(NSView *root);
  bool AddInstalled(NSLayoutConstraint *constraint, InstalledConstraint &entry);
  void RemoveInstalled(std::unordered_map<NSLayoutConstraint *, InstalledConstraint>::iterator it);
  void SyncInstalledConstraints(const std::vector<NSLayoutConstraint *> &current);
  void RetryRefused(size_t changes);
  bool RunRetries();
  void ApplyPendingConstants();
  void CollectFrames(bool all);
  void Solve(NSView *root, bool structureChanged);
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

bool IsInert(NSLayoutConstraint *constraint) {
  return [constraint isKindOfClass:[_TVLayoutConstraint class]] &&
         ((_TVLayoutConstraint *)constraint)->_itemsGone;
}

}  // namespace

// Starts an item's variables where it is now, composed from its parent's
// variables (a tree outside any window included: its views' own offsets
// count), so that its stays begin at its present frame.
void TVLayoutEngine::AddParticipant(id item, NSView *parent, bool isGuide, NSView *root) {
  Participant &participant = participants[item == rootView ? item : [item retain]];
  participant.item = item;
  participant.parent = parent;
  participant.isGuide = isGuide;
  ItemVariables &v = participant.variables;
  for (const Variable *edge : {&v.left, &v.top, &v.right, &v.bottom}) {
    itemOfVariable[edge->id()] = item;
  }
  if (!isGuide && !fitting) {
    TVLayoutState(item, YES)->_isParticipant = YES;
  }
  if (item == root) {
    NSRect bounds = [root bounds];
    v.left.setValue(0);
    v.top.setValue(0);
    v.right.setValue(NSWidth(bounds));
    v.bottom.setValue(NSHeight(bounds));
    return;
  }
  double edges[4];
  EdgesFromFrame(participant, edges);
  v.left.setValue(edges[0]);
  v.top.setValue(edges[1]);
  v.right.setValue(edges[2]);
  v.bottom.setValue(edges[3]);
}

// An item's frame as edges in the root's space, from its parent's variables.
void TVLayoutEngine::EdgesFromFrame(const Participant &participant, double edges[4]) {
  NSView *parent = participant.parent;
  NSRect frame = participant.isGuide ? *GuideFrameSlot(participant.item)
                                     : [(NSView *)participant.item frame];
  const ItemVariables &s = participants[parent].variables;
  NSRect bounds = [parent bounds];
  double left = s.left.value() + NSMinX(frame) - NSMinX(bounds);
  double top = [parent isFlipped] ? s.top.value() + NSMinY(frame) - NSMinY(bounds)
                                  : s.bottom.value() - (NSMaxY(frame) - NSMinY(bounds));
  edges[0] = left;
  edges[1] = top;
  edges[2] = left + NSWidth(frame);
  edges[3] = top + NSHeight(frame);
}

// A view placed by constraints whose frame code set: its stays move there,
// so that what the constraints leave open stays where the code put it.
void TVLayoutEngine::SuggestFrame(Participant &participant) {
  double edges[4];
  EdgesFromFrame(participant, edges);
  double values[4] = {edges[0], edges[1], edges[2] - edges[0], edges[3] - edges[1]};
  MoveStays(participant, values);
}

void TVLayoutEngine::DropParticipant(std::unordered_map<id, Participant>::iterator it) {
  Participant &participant = it->second;
  Clear(participant);
  const ItemVariables &v = participant.variables;
  for (const Variable *edge : {&v.left, &v.top, &v.right, &v.bottom}) {
    itemOfVariable.erase(edge->id());
  }
  id item = it->first;
  movedItems.erase(item);
  participants.erase(it);
  droppedItems++;
  if (item != rootView) {
    if (!fitting && ![item isKindOfClass:[NSLayoutGuide class]]) {
      _TVViewLayoutState *state = TVLayoutState(item, NO);
      if (state != nil) {
        state->_isParticipant = NO;
      }
    }
    [item release];
  }
}

void TVLayoutEngine::ReadGeometry(Participant &participant) {
  bool rightToLeft = IsRightToLeft(participant.item);
  NSEdgeInsets alignment = {0, 0, 0, 0};
  double firstBaseline = 0;
  double lastBaseline = 0;
  if (!participant.isGuide) {
    NSView *view = participant.item;
    alignment = [view alignmentRectInsets];
    firstBaseline = [view firstBaselineOffsetFromTop];
    lastBaseline = [view lastBaselineOffsetFromBottom];
    for (double *number : {&alignment.left, &alignment.right, &alignment.top, &alignment.bottom,
                           &firstBaseline, &lastBaseline}) {
      if (!std::isfinite(*number)) {
        *number = 0;
      }
    }
  }
  if (rightToLeft != participant.rightToLeft || firstBaseline != participant.firstBaseline ||
      lastBaseline != participant.lastBaseline || alignment.left != participant.alignment.left ||
      alignment.right != participant.alignment.right ||
      alignment.top != participant.alignment.top ||
      alignment.bottom != participant.alignment.bottom) {
    participant.rightToLeft = rightToLeft;
    participant.alignment = alignment;
    participant.firstBaseline = firstBaseline;
    participant.lastBaseline = lastBaseline;
    participant.geometry++;  // constraints naming it are written again
  }
}

// The constraints an item's own frame or size gives: the root's bounds; a
// view that translates its autoresizing mask keeps its frame; a view placed
// by constraints keeps a non-negative size, its intrinsic size, and weak
// stays where it is.
void TVLayoutEngine::SyncFrameConstraints(id item, Participant &participant) {
  Strength required = Strength::Required();
  const ItemVariables &v = participant.variables;
  if (item == rootView) {
    NSRect bounds = [rootView bounds];
    if (fitting) {
      Replace(participant.frame, {-2}, [&] {
        return std::vector<Constraint>{
            Constraint::Make(v.left, Relation::Equal, 0.0, required),
            Constraint::Make(v.top, Relation::Equal, 0.0, required),
            Constraint::Make(v.width(), Relation::GreaterThanOrEqual, 0.0, required),
            Constraint::Make(v.height(), Relation::GreaterThanOrEqual, 0.0, required),
            Constraint::Make(v.width(), Relation::Equal, 0.0,
                             Strength{Strength::kFittingSizeCompression}),
            Constraint::Make(v.height(), Relation::Equal, 0.0,
                             Strength{Strength::kFittingSizeCompression})};
      });
      return;
    }
    Replace(participant.frame, {0, NSWidth(bounds), NSHeight(bounds)}, [&] {
      return std::vector<Constraint>{
          Constraint::Make(v.left, Relation::Equal, 0.0, required),
          Constraint::Make(v.top, Relation::Equal, 0.0, required),
          Constraint::Make(v.right, Relation::Equal, NSWidth(bounds), required),
          Constraint::Make(v.bottom, Relation::Equal, NSHeight(bounds), required)};
    });
    return;
  }
  const ItemVariables &s = participants[participant.parent].variables;
  if (participant.isGuide) {
    Replace(participant.frame, {4}, [&] {
      return std::vector<Constraint>{
          Constraint::Make(v.width(), Relation::GreaterThanOrEqual, 0.0, required),
          Constraint::Make(v.height(), Relation::GreaterThanOrEqual, 0.0, required)};
    });
    SetStays(participant, true);
    return;
  }
  NSView *view = item;
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  BOOL translates = state == nil || state->_translatesAutoresizingMask;
  if (translates) {
    NSRect frame = [view frame];
    NSRect bounds = [participant.parent bounds];
    double x = NSMinX(frame) - NSMinX(bounds);
    BOOL flipped = [participant.parent isFlipped];
    // Unflipped superviews keep the distance from their bottom edge.
    double y = flipped ? NSMinY(frame) - NSMinY(bounds) : NSMaxY(frame) - NSMinY(bounds);
    SetStays(participant, false);
    Replace(participant.frame,
            {1, x, y, NSWidth(frame), NSHeight(frame), flipped ? 1.0 : 0.0,
             (double)s.left.id()},
            [&] {
              Expression top =
                  flipped ? Expression(s.top) + y : Expression(s.bottom) - y;
              return std::vector<Constraint>{
                  Constraint::Make(v.left, Relation::Equal, Expression(s.left) + x, required),
                  Constraint::Make(v.right, Relation::Equal,
                                   Expression(s.left) + (x + NSWidth(frame)), required),
                  Constraint::Make(v.top, Relation::Equal, top, required),
                  Constraint::Make(v.bottom, Relation::Equal, top + NSHeight(frame), required)};
            });
    Replace(participant.intrinsic, {-1}, [] { return std::vector<Constraint>(); });
    return;
  }
  Replace(participant.frame, {2}, [&] {
    return std::vector<Constraint>{
        Constraint::Make(v.width(), Relation::GreaterThanOrEqual, 0.0, required),
        Constraint::Make(v.height(), Relation::GreaterThanOrEqual, 0.0, required)};
  });
  SetStays(participant, true);
  NSSize intrinsic = [view intrinsicContentSize];
  Replace(participant.intrinsic, {3, intrinsic.width, intrinsic.height}, [&] {
    std::vector<Constraint> sizes;
    if (intrinsic.width != NSViewNoIntrinsicMetric && std::isfinite(intrinsic.width)) {
      sizes.push_back(Constraint::Make(v.width(), Relation::GreaterThanOrEqual, intrinsic.width,
                                       Strength{kCompressionResistancePriority}));
      sizes.push_back(Constraint::Make(v.width(), Relation::LessThanOrEqual, intrinsic.width,
                                       Strength{kHuggingPriority}));
    }
    if (intrinsic.height != NSViewNoIntrinsicMetric && std::isfinite(intrinsic.height)) {
      sizes.push_back(Constraint::Make(v.height(), Relation::GreaterThanOrEqual,
                                       intrinsic.height,
                                       Strength{kCompressionResistancePriority}));
      sizes.push_back(Constraint::Make(v.height(), Relation::LessThanOrEqual, intrinsic.height,
                                       Strength{kHuggingPriority}));
    }
    return sizes;
  });
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
  entry.firstGeometry = GeometryOf(entry.firstItem);
  entry.secondGeometry = GeometryOf(entry.secondItem);

  auto first = participants.find(entry.firstItem);
  auto second = participants.find(entry.secondItem);
  bool attributesKnown = false;
  Expression lhs;
  Expression rhs(entry.constant);
  if (first != participants.end() && (entry.secondItem == nil || second != participants.end())) {
    lhs = AttributeExpression(first->second, entry.firstAttribute, &attributesKnown);
    if (attributesKnown && entry.secondItem != nil) {
      rhs = AttributeExpression(second->second, entry.secondAttribute, &attributesKnown) *
                entry.multiplier +
            Expression(entry.constant);
    }
  }
  if (!attributesKnown) {
    if (!fitting) {
      NSLog(@"Ignoring constraint %@: its items are not views of this window", constraint);
    }
    return false;
  }
  Constraint solverConstraint = Constraint::Make(lhs, static_cast<Relation>(entry.relation), rhs,
                                                 talvo::layout::FromPriority(entry.priority));
  talvo::layout::Status status = solver.addConstraint(solverConstraint);
  if (status == talvo::layout::Status::Ok) {
    entry.solverConstraint = solverConstraint;
    return true;
  }
  refused.insert(constraint);
  if (fitting || retrying) {
    return false;
  }
  if (status == talvo::layout::Status::Unsatisfiable) {
    brokenConstraintCount++;
    NSLog(@"Unable to simultaneously satisfy constraints. Will attempt to recover by breaking "
          @"constraint %@",
          constraint);
  } else {
    NSLog(@"Ignoring constraint %@: %s", constraint, talvo::layout::StatusName(status));
  }
  return false;
}

void TVLayoutEngine::RemoveInstalled(
    std::unordered_map<NSLayoutConstraint *, InstalledConstraint>::iterator it) {
  if (!it->second.solverConstraint.isNull()) {
    solver.removeConstraint(it->second.solverConstraint);
  }
  refused.erase(it->first);
  [it->first release];
  installed.erase(it);
}

// Constraints refused earlier, queued for another try after something that
// held them off may have gone (a required constraint removed, a frame or the
// root's size changed). Each such change buys a few tries in this pass, so
// that a pass costs what changed even with hundreds refused; the rest are
// tried in the passes that follow.
const size_t kRetriesPerChange = 16;

void TVLayoutEngine::RetryRefused(size_t changes) {
  if (refused.empty() || changes == 0) {
    return;
  }
  retries.assign(refused.begin(), refused.end());
  retryBudget += changes * kRetriesPerChange;
}

// Spends this pass's budget on the queue; answers whether tries are left.
bool TVLayoutEngine::RunRetries() {
  size_t budget = std::max(retryBudget, kRetriesPerChange);
  retryBudget = 0;
  while (budget > 0 && !retries.empty()) {
    NSLayoutConstraint *constraint = retries.front();
    retries.pop_front();
    // Still refused and still installed (a constraint that left was taken
    // out of `refused`, so a stale entry is passed over).
    if (refused.erase(constraint) == 0) {
      continue;
    }
    budget--;
    auto found = installed.find(constraint);
    if (found != installed.end() && found->second.solverConstraint.isNull()) {
      retrying = true;
      AddInstalled(constraint, found->second);
      retrying = false;
    }
  }
  return !retries.empty();
}

void TVLayoutEngine::SyncInstalledConstraints(const std::vector<NSLayoutConstraint *> &current) {
  std::unordered_set<NSLayoutConstraint *> wanted(current.begin(), current.end());
  size_t requiredRemoved = 0;
  for (auto it = installed.begin(); it != installed.end();) {
    InstalledConstraint &entry = it->second;
    bool keep = wanted.count(it->first) != 0 && SameAsInstalled(it->first, entry) &&
                entry.firstVariables == VariablesId(entry.firstItem) &&
                entry.secondVariables == VariablesId(entry.secondItem) &&
                entry.firstGeometry == GeometryOf(entry.firstItem) &&
                entry.secondGeometry == GeometryOf(entry.secondItem);
    if (keep) {
      ++it;
      continue;
    }
    auto next = std::next(it);
    // Only a required constraint can have held a refused (required) one off.
    if (!entry.solverConstraint.isNull() && entry.priority >= NSLayoutPriorityRequired) {
      requiredRemoved++;
    }
    RemoveInstalled(it);
    it = next;
  }
  // A constraint refused earlier may fit now that another went.
  RetryRefused(requiredRemoved);
  for (NSLayoutConstraint *constraint : current) {
    if (installed.count(constraint) == 0) {
      AddInstalled(constraint, installed[[constraint retain]]);
    }
  }
}

// A new constant alone (a divider dragged, a slide's frame) is an edit of the
// live tableau, not a removal and a new row.
void TVLayoutEngine::ApplyPendingConstants() {
  if (pendingConstants->empty()) {
    return;
  }
  for (auto it = pendingConstants->begin(); it != pendingConstants->end();) {
    auto found = installed.find(*it);
    if (found == installed.end()) {
      ++it;
      continue;
    }
    NSLayoutConstraint *constraint = *it;
    it = pendingConstants->erase(it);
    InstalledConstraint &entry = found->second;
    double constant = [constraint constant];
    if (entry.constant == constant) {
      continue;
    }
    if (!entry.solverConstraint.isNull() && SameAsInstalledButConstant(constraint, entry) &&
        std::isfinite(constant)) {
      // The solver keeps lhs - rhs: the constraint's constant enters negated.
      if (solver.updateConstant(entry.solverConstraint, -constant) ==
          talvo::layout::Status::Ok) {
        entry.constant = constant;
        continue;
      }
    }
    // Refused before, or refused now: written again from scratch.
    if (!entry.solverConstraint.isNull()) {
      solver.removeConstraint(entry.solverConstraint);
    }
    refused.erase(constraint);
    AddInstalled(constraint, entry);
  }
}

// Compares the whole tree with what the solver holds: the items that take
// part (every view a constraint names, every view placed by constraints,
// their layout guides and every ancestor up to the root), their generated
// constraints and the installed ones.
void TVLayoutEngine::SyncAll(NSView *root) {
  std::vector<NSView *> views;
  CollectSubtree(root, views);

  std::vector<NSLayoutConstraint *> current;
  std::unordered_set<id> wanted;
  std::vector<std::pair<NSLayoutGuide *, NSView *>> guides;
  for (NSView *view : views) {
    _TVViewLayoutState *state = TVLayoutState(view, NO);
    if (state == nil) {
      continue;
    }
    if (!state->_translatesAutoresizingMask && view != root) {
      wanted.insert(view);
    }
    for (NSLayoutGuide *guide in state->_layoutGuides) {
      guides.push_back({guide, view});
    }
    for (NSLayoutConstraint *constraint in state->_constraints) {
      if (IsInert(constraint)) {
        continue;
      }
      current.push_back(constraint);
      for (id item : {[constraint firstItem], [constraint secondItem]}) {
        if ([item isKindOfClass:[NSView class]]) {
          if (item == root || [item isDescendantOf:root]) {
            wanted.insert(item);
          }
        } else if ([item isKindOfClass:[NSLayoutGuide class]]) {
          wanted.insert(item);
        }
      }
    }
  }
  // A guide takes part through its owning view, which must be in the tree.
  std::unordered_map<id, NSView *> guideOwners;
  for (auto &guide : guides) {
    if (wanted.count(guide.first) != 0) {
      guideOwners[guide.first] = guide.second;
      wanted.insert(guide.second);
    }
  }
  for (auto it = wanted.begin(); it != wanted.end();) {
    if ([*it isKindOfClass:[NSLayoutGuide class]] && guideOwners.count(*it) == 0) {
      it = wanted.erase(it);
    } else {
      ++it;
    }
  }
  // Every ancestor of a participant takes part: frames are relative to it.
  std::vector<id> chain(wanted.begin(), wanted.end());
  for (id item : chain) {
    if (![item isKindOfClass:[NSView class]]) {
      continue;
    }
    for (NSView *up = [item superview]; up != nil && up != root && wanted.insert(up).second;
         up = [up superview]) {
    }
  }
  if (!wanted.empty()) {
    wanted.insert(root);
  }

  for (auto it = participants.begin(); it != participants.end();) {
    auto next = std::next(it);
    bool keep = wanted.count(it->first) != 0;
    if (keep && !it->second.isGuide && it->first != root) {
      keep = [(NSView *)it->first superview] == it->second.parent;
    } else if (keep && it->second.isGuide) {
      keep = guideOwners[it->first] == it->second.parent;
    }
    if (!keep) {
      DropParticipant(it);
    }
    it = next;
  }
  // Tree order, so that a parent's variables exist before its children's.
  std::vector<id> order;
  order.reserve(wanted.size());
  for (NSView *view : views) {
    if (wanted.count(view) == 0) {
      continue;
    }
    order.push_back(view);
    if (participants.count(view) == 0) {
      AddParticipant(view, view == root ? nil : [view superview], false, root);
    }
  }
  for (auto &guide : guides) {
    if (guideOwners.count(guide.first) == 0) {
      continue;
    }
    order.push_back(guide.first);
    if (participants.count(guide.first) == 0) {
      AddParticipant(guide.first, guide.second, true, root);
    }
  }
  for (id item : order) {
    Participant &participant = participants[item];
    ReadGeometry(participant);
    SyncFrameConstraints(item, participant);
  }
  movedItems.clear();
  // Constraints go to the solver in the order of the items they join, each
  // once the later of its items is there, so that a chain of views reaches
  // the solver link by link and its rows stay short.
  std::unordered_map<id, size_t> rank;
  for (size_t i = 0; i < order.size(); i++) {
    rank[order[i]] = i;
  }
  auto rankOf = [&](NSLayoutConstraint *constraint) {
    size_t result = 0;
    for (id item : {[constraint firstItem], [constraint secondItem]}) {
      auto found = rank.find(item);
      if (found != rank.end()) {
        result = std::max(result, found->second);
      }
    }
    return result;
  };
  std::vector<std::pair<size_t, NSLayoutConstraint *>> ranked;
  ranked.reserve(current.size());
  for (NSLayoutConstraint *constraint : current) {
    ranked.push_back({rankOf(constraint), constraint});
  }
  std::stable_sort(ranked.begin(), ranked.end(),
                   [](const std::pair<size_t, NSLayoutConstraint *> &a,
                      const std::pair<size_t, NSLayoutConstraint *> &b) {
                     return a.first < b.first;
                   });
  for (size_t i = 0; i < ranked.size(); i++) {
    current[i] = ranked[i].second;
  }
  SyncInstalledConstraints(current);
}

// The frames of the items whose variables moved (all of them, after a full
// comparison), and of their children, grouped by the view that applies them.
void TVLayoutEngine::CollectFrames(bool all) {
  std::vector<Variable> changed;
  solver.updateVariables(&changed);
  std::unordered_set<id> moved;
  if (all) {
    for (auto &entry : participants) {
      moved.insert(entry.first);
    }
  } else {
    for (const Variable &variable : changed) {
      auto found = itemOfVariable.find(variable.id());
      if (found == itemOfVariable.end() || !moved.insert(found->second).second) {
        continue;
      }
      // Children keep their place in a moved parent, or move with it.
      id item = found->second;
      if (![item isKindOfClass:[NSView class]]) {
        continue;
      }
      for (NSView *subview in [(NSView *)item subviews]) {
        if (participants.count(subview) != 0) {
          moved.insert(subview);
        }
      }
      _TVViewLayoutState *state = TVLayoutState(item, NO);
      for (NSLayoutGuide *guide in state != nil ? state->_layoutGuides : nil) {
        if (participants.count(guide) != 0) {
          moved.insert(guide);
        }
      }
    }
  }
  for (id item : moved) {
    auto found = participants.find(item);
    if (found == participants.end() || item == rootView) {
      continue;
    }
    Participant &participant = found->second;
    FollowWithStays(participant);
    NSRect frame = FrameOf(participant);
    if (participant.isGuide) {
      *GuideFrameSlot(item) = frame;
      continue;
    }
    framesToApply[participant.parent].push_back({(NSView *)item, frame});
  }
}

void TVLayoutEngine::Solve(NSView *root, bool structureChanged) {
  framesToApply.clear();
  if (structureChanged) {
    SyncAll(root);
  } else {
    // A frame set by code: the view's generated constraints follow it (a
    // translating view) or its stays do (a view placed by constraints).
    std::vector<id> moved(movedItems.begin(), movedItems.end());
    movedItems.clear();
    for (id item : moved) {
      auto found = participants.find(item);
      if (found == participants.end()) {
        continue;
      }
      Participant &participant = found->second;
      if (item != root && participant.stays) {
        SuggestFrame(participant);
      }
      SyncFrameConstraints(item, participant);
    }
    RetryRefused(moved.size());
  }
  ApplyPendingConstants();
  retriesPending = RunRetries();
  CollectFrames(structureChanged);
}

void TVDestroyLayoutEngine(TVLayoutEngine *engine) { delete engine; }

NSUInteger TVLayoutBrokenConstraintCount(void) { return brokenConstraintCount; }

unsigned long long TVLayoutGeneration(void) { return layoutGeneration; }

static BOOL TVSubtreeUsesConstraints(NSView *view) {
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  if (state != nil && ([state->_constraints count] > 0 || !state->_translatesAutoresizingMask)) {
    return YES;
  }
  for (NSView *subview in [view subviews]) {
    if (TVSubtreeUsesConstraints(subview)) {
      return YES;
    }
  }
  return NO;
}

BOOL TVLayoutRootUsesConstraints(NSView *root) {
  _TVViewLayoutState *state = TVLayoutState(root, NO);
  if (state == nil) {
    return TVSubtreeUsesConstraints(root);
  }
  if (state->_engine != nullptr && !state->_layoutStructureChanged && !state->_needsUpdatePass) {
    return state->_engine->participants.size() > 1;
  }
  return TVSubtreeUsesConstraints(root);  // not solved since it last changed
}

void TVMarkNeedsLayoutPass(NSView *view) {
  if (view == nil || applyingFrames) {
    return;
  }
  layoutGeneration++;
  NSView *root = LayoutRoot(view);
  if (root == nil) {
    return;
  }
  TVLayoutState(root, YES)->_layoutStructureChanged = YES;
  RequestPass(root);
}

void TVMarkNeedsUpdatePass(NSView *view) {
  NSView *root = view != nil ? LayoutRoot(view) : nil;
  if (root == nil) {
    return;
  }
  TVLayoutState(root, YES)->_needsUpdatePass = YES;
  TVMarkNeedsLayoutPass(view);
}

void TVNoteConstantChange(NSLayoutConstraint *constraint) {
  if (![constraint isKindOfClass:[_TVLayoutConstraint class]]) {
    return;
  }
  NSView *holder = ((_TVLayoutConstraint *)constraint)->_holder;
  if (holder == nil) {
    return;
  }
  pendingConstants->insert(constraint);
  layoutGeneration++;
  NSView *root = LayoutRoot(holder);
  if (root == nil) {
    return;
  }
  RequestPass(root);
}

void TVForgetConstraint(NSLayoutConstraint *constraint) { pendingConstants->erase(constraint); }

void TVForgetLayoutRoot(NSView *view) {
  detachedRoots->erase(view);
  viewsAskingForLayout->erase(view);
}

// The pass proper: update constraints where asked, bring the solver up to
// date, then lay out the views whose frames moved (every view after a
// structural change, as AppKit's first pass does) and those that asked.
static void TVRunPasses(NSView *root) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [root retain];
  detachedRoots->erase(root);
  _TVViewLayoutState *rootState = TVLayoutState(root, YES);
  if (rootState->_needsUpdatePass) {
    rootState->_needsUpdatePass = NO;
    RunUpdatePass(root);
  }
  bool structureChanged = rootState->_layoutStructureChanged;
  rootState->_layoutStructureChanged = NO;
  // A solver keeps the variables of every item that ever took part: once
  // more items came and went than live, a fresh one is cheaper to keep.
  if (structureChanged && rootState->_engine != nullptr &&
      rootState->_engine->droppedItems > std::max<size_t>(64, rootState->_engine->participants.size())) {
    TVDestroyLayoutEngine(rootState->_engine);
    rootState->_engine = nullptr;
  }
  if (rootState->_engine == nullptr) {
    rootState->_engine = new TVLayoutEngine();
    rootState->_engine->rootView = root;
    structureChanged = true;
  }
  TVLayoutEngine *engine = rootState->_engine;
  engine->Solve(root, structureChanged);
  bool owed = engine->retriesPending;

  FramesByParent frames;
  frames.swap(engine->framesToApply);
  // Apply the frames through -layout of each parent, top-down.
  std::vector<NSView *> parents;
  for (auto &entry : frames) {
    parents.push_back(entry.first);
  }
  std::vector<NSView *> asking;
  for (NSView *view : *viewsAskingForLayout) {
    if (view == root || [view isDescendantOf:root]) {
      asking.push_back(view);
    }
  }
  rootState->_needsLayout = NO;
  FramesByParent *outerFrames = solvedFrames;
  solvedFrames = &frames;
  if (structureChanged) {
    LayOutSubtree(root);
  } else {
    std::vector<std::pair<int, NSView *>> byDepth;
    for (NSView *view : parents) {
      byDepth.push_back({Depth(view), view});
    }
    std::sort(byDepth.begin(), byDepth.end(),
              [](const std::pair<int, NSView *> &a, const std::pair<int, NSView *> &b) {
                return a.first < b.first;
              });
    for (auto &entry : byDepth) {
      LayOut(entry.second);
    }
  }
  // Views that asked for layout themselves lay out their whole subtree.
  for (NSView *view : asking) {
    if (viewsAskingForLayout->count(view) != 0) {
      LayOutSubtree(view);
    }
  }
  solvedFrames = outerFrames;
  rootState->_needsLayout = NO;
  if (owed) {
    // Refused constraints still wait for a try: the next pass makes more.
    RequestPass(root);
  }
  [root release];
  [pool drain];
}

void TVRunLayoutPasses(NSView *view) {
  NSView *root = LayoutRoot(view);
  if (root == nil) {
    return;
  }
  _TVViewLayoutState *state = TVLayoutState(root, NO);
  bool pending = state == nil || state->_needsLayout || state->_needsUpdatePass ||
                 state->_layoutStructureChanged || state->_engine == nullptr;
  if (!pending) {
    return;  // nothing changed since the last pass
  }
  TVRunPasses(root);
}

NSSize TVFittingSize(NSView *view) {
  if (view == nil) {
    return NSZeroSize;
  }
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  RunUpdatePass(view);
  TVLayoutEngine engine;
  engine.rootView = view;
  engine.fitting = true;
  engine.SyncAll(view);
  engine.solver.updateVariables();
  NSSize size = NSZeroSize;
  auto found = engine.participants.find(view);
  if (found != engine.participants.end()) {
    const ItemVariables &v = found->second.variables;
    size = NSMakeSize(v.right.value() - v.left.value(), v.bottom.value() - v.top.value());
  }
  [pool drain];
  return size;
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
  _TVViewLayoutState *state = TVLayoutState(self, YES);
  state->_needsUpdateConstraints = flag;
  state->_updateRequested = flag;
  if (flag) {
    TVMarkNeedsUpdatePass(self);
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
  if (!flag) {
    viewsAskingForLayout->erase(self);
    return;
  }
  viewsAskingForLayout->insert(self);
  NSView *root = LayoutRoot(self);
  if (root == nil || applyingFrames) {
    return;
  }
  RequestPass(root);
}

- (void)layout {
  if (solvedFrames == nullptr) {
    return;
  }
  auto found = solvedFrames->find(self);
  if (found == solvedFrames->end()) {
    return;
  }
  bool outer = applyingFrames;
  applyingFrames = true;
  for (auto &entry : found->second) {
    NSView *subview = entry.first;
    if ([subview superview] != self || [subview translatesAutoresizingMaskIntoConstraints]) {
      continue;
    }
    NSRect old = [subview frame];
    if (!NSEqualRects(old, entry.second)) {
      [subview setFrame:entry.second];
      // GNUstep marks nothing dirty on setFrame: redraw old and new places.
      [self setNeedsDisplayInRect:old];
      [self setNeedsDisplayInRect:entry.second];
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
static void (*originalAddSubview)(id, SEL, id) = NULL;
static void (*originalAddSubviewPositioned)(id, SEL, id, NSWindowOrderingMode, id) = NULL;

void TVRunPassesIfNeeded(NSWindow *window) {
  NSView *content = [window contentView];
  if (content == nil) {
    return;
  }
  _TVViewLayoutState *state = TVLayoutState(content, NO);
  bool needed = state != nil && (state->_needsLayout || state->_needsUpdatePass);
  for (auto it = detachedRoots->begin(); it != detachedRoots->end();) {
    if (*it == content || [*it isDescendantOf:content]) {
      needed = true;
      if (*it != content) {
        TVLayoutState(content, YES)->_layoutStructureChanged = YES;
      }
      it = detachedRoots->erase(it);
    } else {
      ++it;
    }
  }
  if (needed) {
    TVGrowWindowToFit(window);
    TVRunPasses(content);
  }
}

static void TVWindowDisplayIfNeeded(id window, SEL selector) {
  TVRunPassesIfNeeded(window);
  originalDisplayIfNeeded(window, selector);
}

static void TVWindowDisplay(id window, SEL selector) {
  TVRunPassesIfNeeded(window);
  originalDisplay(window, selector);
}

static void TVWindowOrder(id window, SEL selector, NSWindowOrderingMode place, NSInteger other) {
  if (place != NSWindowOut) {
    TVRunPassesIfNeeded(window);
  }
  originalOrderWindow(window, selector, place, other);
}

// A view resized or moved by code: the root's bounds, or a participant's
// frame, which the solver must follow.
static void TVNoteFrameChange(NSView *view) {
  if (applyingFrames) {
    return;
  }
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  bool isRoot = state != nil && state->_engine != nullptr;
  if (state == nil || (!state->_isParticipant && !isRoot)) {
    // Not known to any solver: nothing to follow, unless its superview
    // lays out by constraints (its next pass will count it).
    if (TVLayoutState([view superview], NO) != nil) {
      TVMarkNeedsLayoutPass(view);
    }
    return;
  }
  NSView *root = LayoutRoot(view);
  if (root == nil) {
    return;
  }
  _TVViewLayoutState *rootState = TVLayoutState(root, YES);
  TVLayoutEngine *engine = rootState->_engine;
  if (engine == nullptr || engine->participants.count(view) == 0) {
    TVMarkNeedsLayoutPass(view);
    return;
  }
  engine->movedItems.insert(view);
  if (view != root) {
    layoutGeneration++;  // the root's own size says nothing about its needs
  }
  RequestPass(root);
}

// GNUstep's setFrame: does not go through setFrameSize:/setFrameOrigin:.
static void TVViewSetFrame(id view, SEL selector, NSRect frame) {
  BOOL changed = !NSEqualRects([view frame], frame);
  originalSetFrame(view, selector, frame);
  if (changed) {
    TVNoteFrameChange(view);
  }
}

static void TVViewSetFrameSize(id view, SEL selector, NSSize size) {
  BOOL changed = !NSEqualSizes([view frame].size, size);
  originalSetFrameSize(view, selector, size);
  if (changed) {
    TVNoteFrameChange(view);
  }
}

static void TVViewSetFrameOrigin(id view, SEL selector, NSPoint origin) {
  BOOL changed = !NSEqualPoints([view frame].origin, origin);
  originalSetFrameOrigin(view, selector, origin);
  if (changed) {
    TVNoteFrameChange(view);
  }
}


// A view that leaves its superview takes with it every constraint, held by
// an ancestor, that names it or one of its subviews. Each view knows the
// constraints that name it, so this costs what the leaving subtree holds.
static void TVRemoveConstraintsLeavingWith(NSView *view) {
  NSView *superview = [view superview];
  if (superview == nil) {
    return;
  }
  std::vector<NSView *> leaving;
  CollectSubtree(view, leaving);
  for (NSView *leaver : leaving) {
    _TVViewLayoutState *state = TVLayoutState(leaver, NO);
    if (state == nil || state->_referencingConstraints == nullptr) {
      continue;
    }
    for (_TVLayoutConstraint *constraint in TVConstraintsNamingView(leaver)) {
      NSView *holder = constraint->_holder;
      if (holder != nil && holder != view && ![holder isDescendantOf:view]) {
        [holder removeConstraint:constraint];
      }
    }
  }
  TVMarkNeedsLayoutPass(superview);
}

static void TVViewRemoveFromSuperview(id view, SEL selector) {
  TVRemoveConstraintsLeavingWith(view);
  originalRemoveFromSuperview(view, selector);
}

static void TVViewRemoveFromSuperviewQuietly(id view, SEL selector) {
  TVRemoveConstraintsLeavingWith(view);
  originalRemoveFromSuperviewQuietly(view, selector);
}

// A view that joins a tree: the tree's next pass compares everything, and
// updates constraints where the newcomer needs it. A tree laid out on its
// own before joins with its solver dropped: it is no longer a root.
static void TVNoteSubviewAdded(NSView *superview, NSView *subview) {
  if ([subview superview] != superview) {
    return;
  }
  _TVViewLayoutState *state = TVLayoutState(subview, NO);
  if (state != nil && state->_engine != nullptr) {
    TVDestroyLayoutEngine(state->_engine);
    state->_engine = nullptr;
  }
  detachedRoots->erase(subview);
  NSView *root = LayoutRoot(superview);
  if (root == nil) {
    return;
  }
  if (state != nil || TVLayoutState(root, NO) != nil ||
      [[subview class] requiresConstraintBasedLayout]) {
    TVMarkNeedsUpdatePass(superview);
  }
}

static void TVViewAddSubview(id view, SEL selector, id subview) {
  originalAddSubview(view, selector, subview);
  TVNoteSubviewAdded(view, subview);
}

static void TVViewAddSubviewPositioned(id view, SEL selector, id subview,
                                       NSWindowOrderingMode place, id other) {
  originalAddSubviewPositioned(view, selector, subview, place, other);
  TVNoteSubviewAdded(view, subview);
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
  originalAddSubview = (void (*)(id, SEL, id))TVReplaceInstanceMethod(
      view, @selector(addSubview:), (IMP)TVViewAddSubview);
  originalAddSubviewPositioned =
      (void (*)(id, SEL, id, NSWindowOrderingMode, id))TVReplaceInstanceMethod(
          view, @selector(addSubview:positioned:relativeTo:), (IMP)TVViewAddSubviewPositioned);
}

@end
