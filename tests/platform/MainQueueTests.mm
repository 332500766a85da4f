// The main queue stand-in: order, delays, once-only and other threads.

#import <Foundation/Foundation.h>
#include <dispatch/dispatch.h>

#include <atomic>
#include <thread>
#include <vector>

#import "support/TestSupport.h"

namespace {

class MainQueue : public PooledTest {};

TEST_F(MainQueue, AsyncBlocksRunLaterInSubmissionOrder) {
  std::vector<int> order;
  std::vector<int> *log = &order;
  for (int i = 0; i < 5; i++) {
    dispatch_async(dispatch_get_main_queue(), ^{
      log->push_back(i);
    });
  }
  EXPECT_TRUE(order.empty());  // never synchronously
  ASSERT_TRUE(RunMainLoopUntil([&] { return order.size() == 5; }));
  EXPECT_EQ(order, (std::vector<int>{0, 1, 2, 3, 4}));
}

TEST_F(MainQueue, BlockSubmittedFromABlockRunsAfterTheOthers) {
  std::vector<int> order;
  std::vector<int> *log = &order;
  dispatch_async(dispatch_get_main_queue(), ^{
    log->push_back(1);
    dispatch_async(dispatch_get_main_queue(), ^{
      log->push_back(3);
    });
  });
  dispatch_async(dispatch_get_main_queue(), ^{
    log->push_back(2);
  });
  ASSERT_TRUE(RunMainLoopUntil([&] { return order.size() == 3; }));
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST_F(MainQueue, AfterRunsInDeadlineOrderThenSubmissionOrder) {
  std::vector<int> order;
  std::vector<int> *log = &order;
  dispatch_time_t soon = dispatch_time(DISPATCH_TIME_NOW, 60 * NSEC_PER_MSEC);
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 120 * NSEC_PER_MSEC), dispatch_get_main_queue(), ^{
    log->push_back(3);
  });
  dispatch_after(soon, dispatch_get_main_queue(), ^{
    log->push_back(1);
  });
  dispatch_after(soon, dispatch_get_main_queue(), ^{
    log->push_back(2);
  });
  ASSERT_TRUE(RunMainLoopUntil([&] { return order.size() >= 2; }));
  EXPECT_EQ(order, (std::vector<int>{1, 2}));  // the same deadline: in order
  ASSERT_TRUE(RunMainLoopUntil([&] { return order.size() == 3; }));
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST_F(MainQueue, AfterWaitsForItsDeadline) {
  bool ran = false;
  bool *ranFlag = &ran;
  NSDate *start = [NSDate date];
  dispatch_after(dispatch_time(DISPATCH_TIME_NOW, 150 * NSEC_PER_MSEC), dispatch_get_main_queue(), ^{
    *ranFlag = true;
  });
  ASSERT_TRUE(RunMainLoopUntil([&] { return ran; }));
  EXPECT_GE(-[start timeIntervalSinceNow], 0.14);
}

TEST_F(MainQueue, AsyncFromAnotherThreadRunsOnTheMainThread) {
  bool onMain = false;
  bool *onMainFlag = &onMain;
  bool ran = false;
  bool *ranFlag = &ran;
  std::thread worker([=] {
    dispatch_async(dispatch_get_main_queue(), ^{
      *onMainFlag = [NSThread isMainThread];
      *ranFlag = true;
    });
  });
  worker.join();
  ASSERT_TRUE(RunMainLoopUntil([&] { return ran; }));
  EXPECT_TRUE(onMain);
}

TEST_F(MainQueue, OnceRunsExactlyOnceAcrossThreads) {
  static dispatch_once_t predicate;
  static std::atomic<int> runs{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; i++) {
    threads.emplace_back([] {
      dispatch_once(&predicate, ^{
        runs++;
      });
    });
  }
  for (auto &thread : threads) {
    thread.join();
  }
  dispatch_once(&predicate, ^{
    runs++;
  });
  EXPECT_EQ(runs.load(), 1);
  EXPECT_EQ(predicate, ~0l);
}

TEST_F(MainQueue, TimeArithmeticSaturates) {
  EXPECT_EQ(dispatch_time(DISPATCH_TIME_FOREVER, 5), DISPATCH_TIME_FOREVER);
  dispatch_time_t now = dispatch_time(DISPATCH_TIME_NOW, 0);
  EXPECT_GT(dispatch_time(now, 1000), now);
  EXPECT_LT(dispatch_time(now, -1000), now);
  EXPECT_GE(dispatch_time(now, INT64_MIN), 1u);
}

}  // namespace
