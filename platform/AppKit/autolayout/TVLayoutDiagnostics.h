// What the layout passes report about themselves, for tests and benchmarks.
// Main thread only.
#ifndef TALVO_PLATFORM_LAYOUT_DIAGNOSTICS_H
#define TALVO_PLATFORM_LAYOUT_DIAGNOSTICS_H

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Required constraints the solver could not satisfy and left out (each was
 * logged), since the process started. */
__attribute__((visibility("default"))) NSUInteger TVLayoutBrokenConstraintCount(void);

#ifdef __cplusplus
}
#endif

#endif
