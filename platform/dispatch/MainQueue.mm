// The main queue of Talvo's libdispatch stand-in: blocks submitted from any
// thread, run in order by the main thread's run loop.

#import <AppKit/AppKit.h>  // the modal-panel and event-tracking run-loop modes
#include <dispatch/dispatch.h>

#include <Block.h>
#include <sched.h>
#include <time.h>

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

struct dispatch_queue_s {
  const char *label;
};

namespace {

dispatch_queue_s mainQueue = {"com.apple.main-thread"};

uint64_t MonotonicNanoseconds() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return uint64_t(now.tv_sec) * NSEC_PER_SEC + uint64_t(now.tv_nsec);
}

// Everything the main queue holds. Blocks are heap copies owned here until
// they have run.
struct MainQueueState {
  std::mutex lock;
  std::deque<dispatch_block_t> ready;
  // (deadline, submission number) → block: deadline order, ties in order.
  std::map<std::pair<uint64_t, uint64_t>, dispatch_block_t> delayed;
  uint64_t submissions = 0;
  bool drainScheduled = false;
};

MainQueueState &State() {
  static MainQueueState *state = new MainQueueState;  // lives for the process
  return *state;
}

NSArray *QueueModes() {
  return [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                   NSEventTrackingRunLoopMode, nil];
}

}  // namespace

// Runs on the main thread: moves due delayed blocks to the ready list, runs
// the blocks that were ready when it started, and re-arms itself.
@interface _TVMainQueueDrainer : NSObject
+ (void)scheduleDrain;
@end

@implementation _TVMainQueueDrainer

static NSTimer *armedTimer = nil;
static uint64_t armedDeadline = 0;

+ (void)scheduleDrain {
  MainQueueState &state = State();
  {
    std::lock_guard<std::mutex> guard(state.lock);
    if (state.drainScheduled) {
      return;
    }
    state.drainScheduled = true;
  }
  // Callers on other threads may have no autorelease pool of their own.
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  if ([NSThread isMainThread]) {
    [[NSRunLoop currentRunLoop] performSelector:@selector(drain:)
                                         target:self
                                       argument:nil
                                          order:0
                                          modes:QueueModes()];
  } else {
    [self performSelectorOnMainThread:@selector(drain:)
                           withObject:nil
                        waitUntilDone:NO
                                modes:QueueModes()];
  }
  [pool drain];
}

+ (void)promoteDueBlocks:(MainQueueState &)state now:(uint64_t)now {
  while (!state.delayed.empty() && state.delayed.begin()->first.first <= now) {
    state.ready.push_back(state.delayed.begin()->second);
    state.delayed.erase(state.delayed.begin());
  }
}

+ (void)drain:(id)unused {
  MainQueueState &state = State();
  size_t count;
  {
    std::lock_guard<std::mutex> guard(state.lock);
    state.drainScheduled = false;
    [self promoteDueBlocks:state now:MonotonicNanoseconds()];
    count = state.ready.size();
  }
  // Only the blocks that were ready now: a block that submits another does
  // not starve the run loop.
  for (size_t i = 0; i < count; i++) {
    dispatch_block_t block;
    {
      std::lock_guard<std::mutex> guard(state.lock);
      if (state.ready.empty()) {
        break;
      }
      block = state.ready.front();
      state.ready.pop_front();
    }
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    block();
    [pool drain];
    Block_release(block);
  }
  bool more;
  {
    std::lock_guard<std::mutex> guard(state.lock);
    more = !state.ready.empty();
  }
  [self armTimer];
  if (more) {
    [self scheduleDrain];
  }
}

// One timer, set for the earliest delayed block.
+ (void)armTimer {
  MainQueueState &state = State();
  uint64_t deadline;
  {
    std::lock_guard<std::mutex> guard(state.lock);
    if (state.delayed.empty()) {
      [armedTimer invalidate];
      armedTimer = nil;
      return;
    }
    deadline = state.delayed.begin()->first.first;
  }
  if (armedTimer != nil && [armedTimer isValid] && armedDeadline == deadline) {
    return;
  }
  [armedTimer invalidate];
  uint64_t now = MonotonicNanoseconds();
  NSTimeInterval delay = deadline > now ? double(deadline - now) / double(NSEC_PER_SEC) : 0;
  armedDeadline = deadline;
  armedTimer = [NSTimer timerWithTimeInterval:delay
                                       target:self
                                     selector:@selector(timerFired:)
                                     userInfo:nil
                                      repeats:NO];
  NSRunLoop *loop = [NSRunLoop currentRunLoop];
  for (NSString *mode in QueueModes()) {
    [loop addTimer:armedTimer forMode:mode];
  }
}

+ (void)timerFired:(NSTimer *)timer {
  if (timer == armedTimer) {
    armedTimer = nil;
  }
  [self drain:nil];
}

@end

#pragma mark - API

dispatch_queue_t dispatch_get_main_queue(void) {
  return &mainQueue;
}

// A nil queue, block or predicate does nothing, in every function alike
// (libdispatch crashes on them).

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
  if (queue == NULL || block == nil) {
    return;
  }
  MainQueueState &state = State();
  {
    std::lock_guard<std::mutex> guard(state.lock);
    state.ready.push_back(Block_copy(block));
    state.submissions++;
  }
  [_TVMainQueueDrainer scheduleDrain];
}

void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block) {
  if (queue == NULL || block == nil || when == DISPATCH_TIME_FOREVER) {
    return;
  }
  uint64_t deadline = when == DISPATCH_TIME_NOW ? MonotonicNanoseconds() : when;
  MainQueueState &state = State();
  {
    std::lock_guard<std::mutex> guard(state.lock);
    state.delayed.emplace(std::make_pair(deadline, state.submissions++), Block_copy(block));
  }
  // The timer belongs to the main run loop: arm it from a drain there.
  [_TVMainQueueDrainer scheduleDrain];
}

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta) {
  if (when == DISPATCH_TIME_FOREVER) {
    return DISPATCH_TIME_FOREVER;
  }
  uint64_t base = when == DISPATCH_TIME_NOW ? MonotonicNanoseconds() : when;
  if (delta < 0) {
    uint64_t back = uint64_t(-(delta + 1)) + 1;
    return back >= base ? 1 : base - back;
  }
  uint64_t sum = base + uint64_t(delta);
  return sum < base || sum == DISPATCH_TIME_FOREVER ? DISPATCH_TIME_FOREVER - 1 : sum;
}

void dispatch_once(dispatch_once_t *predicate, dispatch_block_t block) {
  enum : long { NotStarted = 0, Running = 1, Done = ~0l };
  if (predicate == NULL || block == nil) {
    return;  // the predicate stays as it was: a later call with a block runs it
  }
  if (__atomic_load_n(predicate, __ATOMIC_ACQUIRE) == Done) {
    return;
  }
  long expected = NotStarted;
  if (__atomic_compare_exchange_n(predicate, &expected, Running, false, __ATOMIC_ACQ_REL,
                                  __ATOMIC_ACQUIRE)) {
    block();
    __atomic_store_n(predicate, Done, __ATOMIC_RELEASE);
    return;
  }
  while (__atomic_load_n(predicate, __ATOMIC_ACQUIRE) != Done) {
    sched_yield();
  }
}
