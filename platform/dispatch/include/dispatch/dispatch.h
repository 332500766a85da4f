/*
 * Talvo's stand-in for libdispatch on GNUstep.
 *
 * Covered: dispatch_once; the main queue (dispatch_get_main_queue) with
 * dispatch_async and dispatch_after, whose blocks run on the main thread's
 * run loop, one at a time, in the order they were submitted (for
 * dispatch_after: in deadline order, ties in submission order), in the
 * default, modal-panel and event-tracking run-loop modes; dispatch_time on
 * the monotonic clock.
 *
 * A NULL queue, block or predicate makes any of these functions do nothing
 * (libdispatch crashes on them).
 *
 * Not covered: concurrent and serial queues of one's own, global queues,
 * groups, semaphores, sources, I/O and wall-clock times
 * (dispatch_walltime). Blocks are only delivered while the main thread runs
 * its run loop, as with Apple's main queue.
 */
#ifndef TALVO_PLATFORM_DISPATCH_H
#define TALVO_PLATFORM_DISPATCH_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct dispatch_queue_s *dispatch_queue_t;
typedef void (^dispatch_block_t)(void);
typedef long dispatch_once_t;
typedef uint64_t dispatch_time_t;

#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_TIME_FOREVER (~0ull)

#ifndef NSEC_PER_SEC
#define NSEC_PER_SEC 1000000000ull
#endif
#ifndef NSEC_PER_MSEC
#define NSEC_PER_MSEC 1000000ull
#endif
#ifndef USEC_PER_SEC
#define USEC_PER_SEC 1000000ull
#endif
#ifndef NSEC_PER_USEC
#define NSEC_PER_USEC 1000ull
#endif

/** Runs block exactly once per predicate, even when called from several
 * threads at once; callers that lose the race wait until it has run. */
void dispatch_once(dispatch_once_t *predicate, dispatch_block_t block);

/** The queue whose blocks run on the main thread's run loop. */
dispatch_queue_t dispatch_get_main_queue(void);

/** Copies block and runs it on the main run loop after every block
 * submitted before it. Safe to call from any thread. */
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);

/** Copies block and runs it on the main run loop once `when` has passed. */
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);

/** A time `delta` nanoseconds after `when` (DISPATCH_TIME_NOW for now). */
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);

#ifdef __cplusplus
}
#endif

#endif
