// The one animation clock on the main run loop, and its hook for tests.
// Main thread only.
#ifndef TALVO_PLATFORM_ANIMATION_CLOCK_H
#define TALVO_PLATFORM_ANIMATION_CLOCK_H

#import <QuartzCore/QuartzCore.h>

#ifdef __cplusplus
extern "C" {
#endif

#define TV_ANIMATION_EXPORT __attribute__((visibility("default")))

/** Test hook: YES stops real time; the clock then moves only through
 * TVAnimationClockAdvance. NO resumes real time from where it stood. */
TV_ANIMATION_EXPORT void TVAnimationClockSetManual(BOOL manual);
TV_ANIMATION_EXPORT BOOL TVAnimationClockIsManual(void);

/** Test hook: moves the manual clock forward and runs one frame at the new
 * time, synchronously. With real time, only runs a frame. */
TV_ANIMATION_EXPORT void TVAnimationClockAdvance(NSTimeInterval seconds);

/** Whether the frame timer is scheduled (it runs only while animations do,
 * and never under the manual clock). */
TV_ANIMATION_EXPORT BOOL TVAnimationClockIsRunning(void);

/** Animations the clock is driving. */
TV_ANIMATION_EXPORT NSUInteger TVAnimationClockActiveCount(void);

#ifdef __cplusplus
}
#endif

#endif
