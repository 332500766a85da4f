// NSLayoutGuide on GNUstep: GNUstep declares the class with ivars for its
// anchors but never fills them, never releases anything and has no
// -[NSView addLayoutGuide:]. Here a guide makes its anchors on first use,
// belongs to at most one view (held in the view's layout state), and its
// layoutFrame is the _frame ivar that the layout pass writes in the owning
// view's coordinates.

#import <AppKit/AppKit.h>

#import "platform/AppKit/autolayout/TVLayoutAnchorSupport.h"
#import "platform/AppKit/autolayout/TVLayoutState.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

struct GuideAnchorSlot {
  const char *ivar;
  NSLayoutAttribute attribute;
};

const GuideAnchorSlot kGuideAnchorSlots[] = {
    {"_leadingAnchor", NSLayoutAttributeLeading}, {"_trailingAnchor", NSLayoutAttributeTrailing},
    {"_leftAnchor", NSLayoutAttributeLeft},       {"_rightAnchor", NSLayoutAttributeRight},
    {"_topAnchor", NSLayoutAttributeTop},         {"_bottomAnchor", NSLayoutAttributeBottom},
    {"_widthAnchor", NSLayoutAttributeWidth},     {"_heightAnchor", NSLayoutAttributeHeight},
    {"_centerXAnchor", NSLayoutAttributeCenterX}, {"_centerYAnchor", NSLayoutAttributeCenterY},
};

Ivar GuideIvar(const char *name) { return class_getInstanceVariable([NSLayoutGuide class], name); }

NSView *OwningView(NSLayoutGuide *guide) {
  static Ivar slot = GuideIvar("_owningView");
  return object_getIvar(guide, slot);
}

// Not retained: the view retains its guides.
void SetOwningView(NSLayoutGuide *guide, NSView *view) {
  static Ivar slot = GuideIvar("_owningView");
  object_setIvar(guide, slot, view);
}

NSLayoutAnchor *GuideAnchor(NSLayoutGuide *guide, size_t index) {
  Ivar slot = GuideIvar(kGuideAnchorSlots[index].ivar);
  NSLayoutAnchor *anchor = object_getIvar(guide, slot);
  if (anchor == nil) {
    anchor = TVNewLayoutAnchor(guide, kGuideAnchorSlots[index].attribute);
    object_setIvar(guide, slot, anchor);
  }
  return anchor;
}

// A guide that leaves its view takes with it the constraints, held by the
// view or its ancestors, that name it (as a view leaving its superview
// does).
void RemoveConstraintsNaming(NSLayoutGuide *guide, NSView *view) {
  for (NSView *holder = view; holder != nil; holder = [holder superview]) {
    _TVViewLayoutState *state = TVLayoutState(holder, NO);
    if (state == nil || [state->_constraints count] == 0) {
      continue;
    }
    for (NSLayoutConstraint *constraint in [[state->_constraints copy] autorelease]) {
      if ([constraint firstItem] == guide || [constraint secondItem] == guide) {
        [holder removeConstraint:constraint];
      }
    }
  }
}

}  // namespace

void TVForgetLayoutGuidesOfView(NSView *view) {
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  if (state == nil) {
    return;
  }
  for (NSLayoutGuide *guide in state->_layoutGuides) {
    SetOwningView(guide, nil);
  }
}

#pragma mark - Replaced GNUstep methods

static void (*originalGuideDealloc)(id, SEL) = NULL;

static void TVGuideDealloc(NSLayoutGuide *guide, SEL selector) {
  for (size_t i = 0; i < sizeof(kGuideAnchorSlots) / sizeof(kGuideAnchorSlots[0]); i++) {
    Ivar slot = GuideIvar(kGuideAnchorSlots[i].ivar);
    NSLayoutAnchor *anchor = object_getIvar(guide, slot);
    if (anchor != nil) {
      object_setIvar(guide, slot, nil);
      TVDetachLayoutAnchor(anchor);
      [anchor release];
    }
  }
  Ivar identifierSlot = GuideIvar("_identifier");
  NSString *identifier = object_getIvar(guide, identifierSlot);
  object_setIvar(guide, identifierSlot, nil);
  [identifier release];
  originalGuideDealloc(guide, selector);
}

static NSString *TVGuideIdentifier(NSLayoutGuide *guide, SEL selector) {
  NSString *identifier = object_getIvar(guide, GuideIvar("_identifier"));
  return identifier != nil ? identifier : @"";
}

static void TVGuideSetIdentifier(NSLayoutGuide *guide, SEL selector, NSString *identifier) {
  if (identifier != nil && ![identifier isKindOfClass:[NSString class]]) {
    return;
  }
  Ivar slot = GuideIvar("_identifier");
  NSString *old = object_getIvar(guide, slot);
  object_setIvar(guide, slot, [identifier copy]);
  [old release];
}

static NSView *TVGuideOwningView(NSLayoutGuide *guide, SEL selector) { return OwningView(guide); }

// Setting the owning view is adding the guide to it (or removing it).
static void TVGuideSetOwningView(NSLayoutGuide *guide, SEL selector, NSView *view) {
  if (view == nil) {
    [OwningView(guide) removeLayoutGuide:guide];
  } else if ([view isKindOfClass:[NSView class]]) {
    [view addLayoutGuide:guide];
  }
}

static NSRect TVGuideFrame(NSLayoutGuide *guide, SEL selector) {
  static ptrdiff_t offset = ivar_getOffset(GuideIvar("_frame"));
  return *(NSRect *)((char *)guide + offset);
}

#define TV_GUIDE_ANCHOR_GETTER(function, index) \
  static NSLayoutAnchor *function(NSLayoutGuide *guide, SEL selector) { return GuideAnchor(guide, index); }
TV_GUIDE_ANCHOR_GETTER(TVGuideLeading, 0)
TV_GUIDE_ANCHOR_GETTER(TVGuideTrailing, 1)
TV_GUIDE_ANCHOR_GETTER(TVGuideLeft, 2)
TV_GUIDE_ANCHOR_GETTER(TVGuideRight, 3)
TV_GUIDE_ANCHOR_GETTER(TVGuideTop, 4)
TV_GUIDE_ANCHOR_GETTER(TVGuideBottom, 5)
TV_GUIDE_ANCHOR_GETTER(TVGuideWidth, 6)
TV_GUIDE_ANCHOR_GETTER(TVGuideHeight, 7)
TV_GUIDE_ANCHOR_GETTER(TVGuideCenterX, 8)
TV_GUIDE_ANCHOR_GETTER(TVGuideCenterY, 9)
#undef TV_GUIDE_ANCHOR_GETTER

#pragma mark - Public

@implementation NSLayoutGuide (TalvoPlatform)

- (NSRect)layoutFrame {
  return TVGuideFrame(self, _cmd);
}

@end

@implementation NSView (TalvoPlatformLayoutGuides)

- (void)addLayoutGuide:(NSLayoutGuide *)guide {
  if (![guide isKindOfClass:[NSLayoutGuide class]]) {
    return;
  }
  NSView *owner = OwningView(guide);
  if (owner == self) {
    return;
  }
  TVInstallViewLifetimeHook();
  [guide retain];
  [owner removeLayoutGuide:guide];
  _TVViewLayoutState *state = TVLayoutState(self, YES);
  if (state->_layoutGuides == nil) {
    state->_layoutGuides = [NSMutableArray new];
  }
  [state->_layoutGuides addObject:guide];
  SetOwningView(guide, self);
  [guide release];
  TVMarkNeedsLayoutPass(self);
}

- (void)removeLayoutGuide:(NSLayoutGuide *)guide {
  if (![guide isKindOfClass:[NSLayoutGuide class]] || OwningView(guide) != self) {
    return;
  }
  [[guide retain] autorelease];
  RemoveConstraintsNaming(guide, self);
  SetOwningView(guide, nil);
  [TVLayoutState(self, YES)->_layoutGuides removeObjectIdenticalTo:guide];
  TVMarkNeedsLayoutPass(self);
}

- (NSArray *)layoutGuides {
  _TVViewLayoutState *state = TVLayoutState(self, NO);
  return state != nil && state->_layoutGuides != nil ? [NSArray arrayWithArray:state->_layoutGuides]
                                                     : [NSArray array];
}

@end

#pragma mark - Hooks

@interface _TVLayoutGuideHooks : NSObject
@end

@implementation _TVLayoutGuideHooks

+ (void)load {
  Class guide = [NSLayoutGuide class];
  // GNUstep's guide has no dealloc: this adds one above NSObject's.
  originalGuideDealloc =
      (void (*)(id, SEL))TVReplaceInstanceMethod(guide, @selector(dealloc), (IMP)TVGuideDealloc);
  TVReplaceInstanceMethod(guide, @selector(identifier), (IMP)TVGuideIdentifier);
  TVReplaceInstanceMethod(guide, @selector(setIdentifier:), (IMP)TVGuideSetIdentifier);
  TVReplaceInstanceMethod(guide, @selector(owningView), (IMP)TVGuideOwningView);
  TVReplaceInstanceMethod(guide, @selector(setOwningView:), (IMP)TVGuideSetOwningView);
  TVReplaceInstanceMethod(guide, @selector(frame), (IMP)TVGuideFrame);
  TVReplaceInstanceMethod(guide, @selector(leadingAnchor), (IMP)TVGuideLeading);
  TVReplaceInstanceMethod(guide, @selector(trailingAnchor), (IMP)TVGuideTrailing);
  TVReplaceInstanceMethod(guide, @selector(leftAnchor), (IMP)TVGuideLeft);
  TVReplaceInstanceMethod(guide, @selector(rightAnchor), (IMP)TVGuideRight);
  TVReplaceInstanceMethod(guide, @selector(topAnchor), (IMP)TVGuideTop);
  TVReplaceInstanceMethod(guide, @selector(bottomAnchor), (IMP)TVGuideBottom);
  TVReplaceInstanceMethod(guide, @selector(widthAnchor), (IMP)TVGuideWidth);
  TVReplaceInstanceMethod(guide, @selector(heightAnchor), (IMP)TVGuideHeight);
  TVReplaceInstanceMethod(guide, @selector(centerXAnchor), (IMP)TVGuideCenterX);
  TVReplaceInstanceMethod(guide, @selector(centerYAnchor), (IMP)TVGuideCenterY);
}

@end
