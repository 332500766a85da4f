/*
 * Common definitions of Talvo's Core Animation stand-in.
 */
#ifndef TALVO_CABASE_H
#define TALVO_CABASE_H

#import <Foundation/Foundation.h>
#import <CoreGraphics/CoreGraphics.h>

#ifdef __cplusplus
#define CA_EXTERN extern "C" __attribute__((visibility("default")))
#else
#define CA_EXTERN extern __attribute__((visibility("default")))
#endif

typedef double CFTimeInterval;

/** The time every animation reads, in seconds of a monotonic clock. Under
 * the test clock (TVAnimationClockSetManual) it moves only when advanced. */
CA_EXTERN CFTimeInterval CACurrentMediaTime(void);

#endif
