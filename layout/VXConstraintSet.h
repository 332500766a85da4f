// Constraint sets: arrays of constraints that a container builds, installs on
// itself and replaces as a whole; nil stands for a stale set. Private.
#import <AppKit/AppKit.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Removes the set in *slot from `container`, stores `constraints` there
 * (retained) and installs them; nil instead asks `container` for a
 * constraint update, where the set is rebuilt. Call only when the new set is
 * not the stored one. */
__attribute__((visibility("hidden"))) void VXReplaceConstraintSet(NSView *container,
                                                                  NSArray **slot,
                                                                  NSArray *constraints);

#ifdef __cplusplus
}
#endif
