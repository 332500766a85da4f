// Windows with a 2x backing. GNUstep gives one only to a process started
// with -GSScaleFactor 2, so the parent test runs this binary again that
// way for the WindowAtTwoX tests, which skip in an ordinary run.

#import "platform/WindowTestSupport.h"

#include <spawn.h>
#include <sys/wait.h>

extern char **environ;

namespace {

bool IsScaledChild() { return getenv("TALVO_WINDOW_SCALE_CHILD") != NULL; }

class WindowAtTwoX : public WindowServerTest {
 protected:
  void SetUp() override {
    if (!IsScaledChild()) {
      GTEST_SKIP() << "runs in a process started with -GSScaleFactor 2";
    }
    WindowServerTest::SetUp();
  }
};

TEST_F(WindowAtTwoX, BackingScaleFactorAndConversionsAreTwo) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor]);
  EXPECT_EQ([window backingScaleFactor], 2.0);
  EXPECT_EQ([[window screen] backingScaleFactor], 2.0);
  EXPECT_EQ([[NSScreen mainScreen] backingScaleFactor], 2.0);
  EXPECT_TRUE(NSEqualRects([window convertRectToBacking:NSMakeRect(1, 2, 3, 4)], NSMakeRect(2, 4, 6, 8)));
  EXPECT_TRUE(NSEqualRects([window convertRectFromBacking:NSMakeRect(2, 4, 6, 8)], NSMakeRect(1, 2, 3, 4)));
}

// The picture has the backing's pixels: twice the view's points, the
// 10-point marker 20 pixels wide.
TEST_F(WindowAtTwoX, CaptureHasTheBackingsPixels) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor]);
  PumpEvents();
  NSDictionary *d = [(NSArray *)CGWindowListCreateDescriptionFromArray((CFArrayRef)WindowArray(window)) autorelease]
                        .firstObject;
  CGRect bounds = CGRectZero;
  ASSERT_TRUE(CGRectMakeWithDictionaryRepresentation((CFDictionaryRef)[d objectForKey:(NSString *)kCGWindowBounds],
                                                     &bounds));
  CGImageRef image = CGWindowListCreateImageFromArray(bounds, (CFArrayRef)WindowArray(window),
                                                      kCGWindowImageBoundsIgnoreFraming);
  ASSERT_NE(image, (CGImageRef)NULL);
  ImagePixels pixels(image);
  NSSize points = [[window contentView] bounds].size;
  EXPECT_EQ(pixels.width(), (size_t)(points.width * 2));
  EXPECT_EQ(pixels.height(), (size_t)(points.height * 2));
  EXPECT_EQ(pixels.at(19, 19), 0xffff0000u);
  EXPECT_EQ(pixels.at(21, 21), 0xff0000ffu);
  CGImageRelease(image);

  // With a margin the window's pixels keep their size and the margin is
  // the rect's reach in the backing's pixels per unit of the bounds
  // (GNUstep's 2x frames are already in device pixels).
  CGRect grown = CGRectInset(bounds, -10, -10);
  image = CGWindowListCreateImageFromArray(grown, (CFArrayRef)WindowArray(window), kCGWindowImageDefault);
  ImagePixels framed(image);
  double perUnit = pixels.width() / bounds.size.width;
  EXPECT_EQ(framed.width(), pixels.width() + (size_t)std::lround(20 * perUnit));
  EXPECT_EQ(framed.at((size_t)std::lround(10 * perUnit) + 1, (size_t)std::lround(10 * perUnit) + 1), 0xffff0000u);
  CGImageRelease(image);
}

// The ordinary run starts the 2x run and passes on its verdict.
TEST(WindowScale, TwoXProcessPasses) {
  if (IsScaledChild() || getenv("DISPLAY") == NULL) {
    GTEST_SKIP();
  }
  char self[4096];
  ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
  ASSERT_GT(length, 0);
  self[length] = 0;
  setenv("TALVO_WINDOW_SCALE_CHILD", "1", 1);
  const char *argv[] = {self, "--gtest_filter=WindowAtTwoX.*:PopoverSegmentedControlTest.PopupHangs*", "-GSScaleFactor", "2", NULL};
  pid_t pid = 0;
  int spawned = posix_spawn(&pid, self, NULL, NULL, (char *const *)argv, environ);
  unsetenv("TALVO_WINDOW_SCALE_CHILD");
  ASSERT_EQ(spawned, 0);
  int status = 0;
  ASSERT_EQ(waitpid(pid, &status, 0), pid);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
