// Private layout state of the Auto Layout stand-in, shared by its files.
#ifndef TALVO_PLATFORM_LAYOUT_STATE_H
#define TALVO_PLATFORM_LAYOUT_STATE_H

#import <AppKit/AppKit.h>

#ifdef __cplusplus
struct TVLayoutEngine;
struct TVConstraintSet;
#else
typedef struct TVLayoutEngine TVLayoutEngine;
typedef struct TVConstraintSet TVConstraintSet;
#endif

// Every NSLayoutConstraint made on GNUstep is one of these.
@interface _TVLayoutConstraint : NSLayoutConstraint {
 @public
  NSString *_identifier;
  NSView *_holder;  // not retained: the holder retains the constraint
  BOOL _itemsGone;  // an item was deallocated: the constraint is inert
  // The views whose _referencingConstraints hold this constraint (not
  // retained; cleared by a view that goes away first).
  NSView *_registeredViews[2];
}
@end

// Per-view layout state, kept in NSView's unused _coreAnimationData ivar.
@interface _TVViewLayoutState : NSObject {
 @public
  NSMutableArray *_constraints;
  BOOL _translatesAutoresizingMask;
  BOOL _needsUpdateConstraints;
  BOOL _needsLayout;
  BOOL _hasUpdatedConstraints;  // the first update pass has run
  BOOL _updateRequested;        // setNeedsUpdateConstraints: asked (not the initial need)
  struct TVLayoutEngine *_engine;  // the live solver, on layout roots only
  NSMutableArray *_layoutGuides;   // NSLayoutGuides owned by the view; nil until one is added
  BOOL _hasLayoutDirection;        // NO: the application's direction applies
  NSUserInterfaceLayoutDirection _layoutDirection;
  // Constraints that name this view as an item, wherever they are installed
  // or not (not retained; each constraint leaves when it goes).
  struct TVConstraintSet *_referencingConstraints;
  BOOL _isParticipant;           // the solver of its layout root has variables for it
  // On layout roots: what the next pass must look at.
  BOOL _needsUpdatePass;         // some view below asked for updateConstraints
  BOOL _layoutStructureChanged;  // views, constraints or priorities came or went
}
@end

#ifdef __cplusplus
extern "C" {
#endif

/** The view's layout state; created on demand when `create` is YES. */
__attribute__((visibility("hidden"))) _TVViewLayoutState *TVLayoutState(NSView *view,
                                                                       BOOL create);

/** Asks for the update-constraints and layout passes before `view`'s window
 * (or, without a window, its topmost ancestor) next displays. */
__attribute__((visibility("hidden"))) void TVMarkNeedsLayoutPass(NSView *view);

/** A constraint's constant changed: the next pass edits it in place. */
__attribute__((visibility("hidden"))) void TVNoteConstantChange(NSLayoutConstraint *constraint);

/** A view below `view`'s layout root asks for updateConstraints. */
__attribute__((visibility("hidden"))) void TVMarkNeedsUpdatePass(NSView *view);

/** Forgets a constraint that goes away (its pending constant edit). */
__attribute__((visibility("hidden"))) void TVForgetConstraint(NSLayoutConstraint *constraint);

/** The constraints that name `view` as an item, in no particular order. */
__attribute__((visibility("hidden"))) NSArray *TVConstraintsNamingView(NSView *view);

/** Records or drops `constraint` as naming its view items. */
__attribute__((visibility("hidden"))) void TVRegisterConstraintItems(NSLayoutConstraint *constraint);
__attribute__((visibility("hidden"))) void TVUnregisterConstraintItems(NSLayoutConstraint *constraint);

/** Counts every change that can move a layout (constraints, constants,
 * views, frames): equal counts mean nothing changed in between. */
__attribute__((visibility("hidden"))) unsigned long long TVLayoutGeneration(void);

/** Whether the tree under the layout root `root` has anything placed by
 * constraints (as of its last pass). */
__attribute__((visibility("hidden"))) BOOL TVLayoutRootUsesConstraints(NSView *root);

/** Frees a layout root's live solver. */
__attribute__((visibility("hidden"))) void TVDestroyLayoutEngine(struct TVLayoutEngine *engine);

/** Forgets a view that goes away as a root waiting for its window. */
__attribute__((visibility("hidden"))) void TVForgetLayoutRoot(NSView *view);

/** The smallest size `view`'s own constraints allow it (AppKit's fittingSize):
 * its subtree solved on its own with the view's size pulled toward zero. */
__attribute__((visibility("hidden"))) NSSize TVFittingSize(NSView *view);

/** The view controller whose view is `view`, or nil (not retained). */
__attribute__((visibility("hidden"))) NSViewController *TVViewControllerForView(NSView *view);

/** Grows `window` to the fitting size of its content's constraints, keeping
 * its top edge, when the content needs more than the window gives. */
__attribute__((visibility("hidden"))) void TVGrowWindowToFit(NSWindow *window);

/** Runs both passes now for the view tree that holds `view`. */
__attribute__((visibility("hidden"))) void TVRunLayoutPasses(NSView *view);

#ifdef __cplusplus
}
#endif

#endif
