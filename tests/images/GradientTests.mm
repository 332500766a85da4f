// The preset gradients in both looks, the look switch, and the reflected
// gradients, read back from real drawing.
#import <Talvo/NSColor+Talvo.h>
#import <Talvo/NSColor+Transform.h>
#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/ReflectedGradient.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#import "platform/GraphicsTestSupport.h"
#import "support/TalvoLook.h"
#import "support/TestSupport.h"

namespace {

int Level(double component) { return int(lround(component * 255)); }

NSColor *StopColor(NSGradient *gradient, NSInteger index, CGFloat *location = nullptr) {
  NSColor *color = nil;
  CGFloat where = -1;
  [gradient getColor:&color location:&where atIndex:index];
  if (location) *location = where;
  return color;
}

// The gradient drawn left to right across a 100 x 10 view.
NSBitmapImageRep *NewHorizontalSnapshot(NSGradient *gradient, NSColor *background) {
  return NewWindowSnapshot(NSMakeSize(100, 10), NO, ^(NSView *view, NSRect) {
    [background set];
    NSRectFill([view bounds]);
    [gradient drawInRect:[view bounds] angle:0];
  });
}

// Restores the look the process runs, whatever a test sets.
class GradientTest : public PooledTest {
 protected:
  void TearDown() override {
    TalvoSetAppKitVersionForTesting(NAN);
    PooledTest::TearDown();
  }
};

class GradientDrawingTest : public WindowGraphicsTest {};

const char *const kChildExpectation = "TALVO_TEST_EXPECTS_NEWER_LOOK";

// Runs `test` of this binary in a fresh process whose TALVO_APPKIT_VERSION
// is `version`; answers its exit status (-1 when it could not run).
int RunInFreshProcess(const char *test, const char *version, bool expectNewer) {
  std::vector<std::string> variables;
  for (char **entry = environ; *entry != nullptr; ++entry) {
    if (strncmp(*entry, "TALVO_APPKIT_VERSION=", 21) != 0 &&
        strncmp(*entry, kChildExpectation, strlen(kChildExpectation)) != 0) {
      variables.push_back(*entry);
    }
  }
  variables.push_back(std::string("TALVO_APPKIT_VERSION=") + version);
  variables.push_back(std::string(kChildExpectation) + (expectNewer ? "=1" : "=0"));
  std::vector<char *> envp;
  for (std::string &variable : variables) envp.push_back(&variable[0]);
  envp.push_back(nullptr);
  std::string filter = std::string("--gtest_filter=") + test;
  char program[] = "/proc/self/exe";
  char *argv[] = {program, &filter[0], nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  int spawned = posix_spawn(&pid, program, &actions, nullptr, argv, envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) return -1;
  int status = 0;
  if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

}  // namespace

TEST_F(GradientTest, NewerLookStartsAboveTheFloorOf1265) {
  TalvoSetAppKitVersionForTesting(1265.0);
  EXPECT_FALSE(TalvoUsesNewerLook());
  TalvoSetAppKitVersionForTesting(1265.99);
  EXPECT_FALSE(TalvoUsesNewerLook());
  TalvoSetAppKitVersionForTesting(1266.0);
  EXPECT_TRUE(TalvoUsesNewerLook());
  TalvoSetAppKitVersionForTesting(824);
  EXPECT_FALSE(TalvoUsesNewerLook());
}

TEST_F(GradientTest, SharedPresetsAreMadeOnceAndKeepTheirLook) {
  NSGradient *gray = [NSGradient grayGradient];
  NSGradient *lightGray = [NSGradient lightGrayGradient];
  NSGradient *blue = [NSGradient blueGradient];
  BOOL newer = TalvoUsesNewerLook();
  double grayStart = [StopColor(gray, 0) whiteComponent];

  // Switching the look afterwards changes nothing that was made.
  TalvoSetAppKitVersionForTesting(newer ? 824 : 1400);
  EXPECT_EQ([NSGradient grayGradient], gray);
  EXPECT_EQ([NSGradient lightGrayGradient], lightGray);
  EXPECT_EQ([NSGradient blueGradient], blue);
  EXPECT_DOUBLE_EQ([StopColor([NSGradient grayGradient], 0) whiteComponent], grayStart);

  // Another test may have made it under a look of its own: either is right
  // here; which one the version picks is checked in a fresh process below.
  double newerStart = [StopColor([NSGradient grayGradientForNewerLook:YES], 0) whiteComponent];
  double olderStart = [StopColor([NSGradient grayGradientForNewerLook:NO], 0) whiteComponent];
  EXPECT_TRUE(std::fabs(grayStart - newerStart) < 1e-9 || std::fabs(grayStart - olderStart) < 1e-9);
  EXPECT_EQ([gray numberOfColorStops], 2);
}

TEST_F(GradientTest, EnvironmentVersionPicksTheSharedLook) {
  const char *expectation = getenv(kChildExpectation);
  if (expectation != nullptr) {
    // In the fresh process: nothing shared is made yet.
    bool newer = expectation[0] == '1';
    EXPECT_EQ(TalvoUsesNewerLook(), newer ? YES : NO);
    EXPECT_NEAR([StopColor([NSGradient grayGradient], 0) whiteComponent], newer ? 0.46 : 0.53,
                1e-9);
    EXPECT_NEAR([StopColor([NSGradient lightGrayGradient], 1) whiteComponent], newer ? 0.64 : 0.71,
                1e-9);
    NSColor *blueEnd = StopColor([NSGradient blueGradient], 1);
    EXPECT_NEAR([blueEnd redComponent], newer ? 0.039 : 0.11, 1e-9);
    return;
  }
  const char *test = "GradientTest.EnvironmentVersionPicksTheSharedLook";
  EXPECT_EQ(RunInFreshProcess(test, "1400", true), 0);
  EXPECT_EQ(RunInFreshProcess(test, "1265.99", false), 0);
  EXPECT_EQ(RunInFreshProcess(test, "824", false), 0);
  // Not a number: the platform's own version (824 on GNUstep).
  EXPECT_EQ(RunInFreshProcess(test, "new", std::floor(NSAppKitVersionNumber) > 1265.0), 0);
}

TEST_F(GradientTest, NewerBlueRunsFromAPalerSelectionToTheSelection) {
  NSGradient *blue = [NSGradient blueGradientForNewerLook:YES];
  NSColor *selected = [NSColor selectedColor];
  CGFloat h0, s0, b0, a0, h1, s1, b1, a1;
  [[StopColor(blue, 0) colorUsingColorSpaceName:NSCalibratedRGBColorSpace] getHue:&h0
                                                                       saturation:&s0
                                                                       brightness:&b0
                                                                            alpha:&a0];
  [selected getHue:&h1 saturation:&s1 brightness:&b1 alpha:&a1];
  EXPECT_NEAR(h0, h1, 1e-6);
  EXPECT_NEAR(s0, s1 * 0.8, 1e-6);
  EXPECT_NEAR(b0, b1, 1e-6);
  EXPECT_NEAR(a0, 1.0, 1e-9);
  EXPECT_TRUE([StopColor(blue, 1) isEqual:selected]);
}

TEST_F(GradientDrawingTest, PresetsDrawTheirEndsInBothLooks) {
  struct Row {
    NSGradient *gradient;
    double start, end;
  } rows[] = {
      {[NSGradient grayGradientForNewerLook:YES], 0.46, 0.35},
      {[NSGradient grayGradientForNewerLook:NO], 0.53, 0.34},
      {[NSGradient lightGrayGradientForNewerLook:YES], 0.68, 0.64},
      {[NSGradient lightGrayGradientForNewerLook:NO], 0.64, 0.71},
  };
  for (const Row &row : rows) {
    ASSERT_EQ([row.gradient numberOfColorStops], 2);
    EXPECT_NSEQ([StopColor(row.gradient, 0) colorSpaceName], NSDeviceWhiteColorSpace);
    EXPECT_NSEQ([StopColor(row.gradient, 1) colorSpaceName], NSDeviceWhiteColorSpace);
    Owned<NSBitmapImageRep> rep(NewHorizontalSnapshot(row.gradient, [NSColor redColor]));
    ASSERT_NE(rep.get(), nil);
    int start = Level(row.start), end = Level(row.end);
    EXPECT_PIXEL(RepPixel(rep, 0, 5), start, start, start, 255);
    EXPECT_PIXEL(RepPixel(rep, 99, 5), end, end, end, 255);
    int middle = Level((row.start + row.end) / 2);
    EXPECT_PIXEL(RepPixel(rep, 50, 5), middle, middle, middle, 255);
  }

  NSGradient *olderBlue = [NSGradient blueGradientForNewerLook:NO];
  EXPECT_NSEQ([StopColor(olderBlue, 0) colorSpaceName], NSDeviceRGBColorSpace);
  EXPECT_NSEQ([StopColor(olderBlue, 1) colorSpaceName], NSDeviceRGBColorSpace);
  Owned<NSBitmapImageRep> older(NewHorizontalSnapshot(olderBlue, [NSColor blackColor]));
  EXPECT_PIXEL(RepPixel(older, 0, 5), Level(0.58), Level(0.72), 255, 255);
  EXPECT_PIXEL(RepPixel(older, 99, 5), Level(0.11), Level(0.41), 255, 255);

  NSColor *selected = [NSColor selectedColor];
  NSColor *paler = [[selected lighterColor:0.8] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
  Owned<NSBitmapImageRep> newer(
      NewHorizontalSnapshot([NSGradient blueGradientForNewerLook:YES], [NSColor blackColor]));
  EXPECT_PIXEL(RepPixel(newer, 0, 5), Level([paler redComponent]), Level([paler greenComponent]),
               Level([paler blueComponent]), 255);
  EXPECT_PIXEL(RepPixel(newer, 99, 5), Level(0.039), Level(0.373), Level(0.996), 255);
}

TEST_F(GradientTest, ReflectedGradientHasFourStopsFadingAtBothEnds) {
  NSColor *target = [NSColor colorWithCalibratedRed:0.2 green:0.4 blue:0.6 alpha:1];
  NSGradient *gradient = reflectedGradientWithTargetColor(target);
  ASSERT_NE(gradient, nil);
  ASSERT_EQ([gradient numberOfColorStops], 4);
  const double locations[] = {0, 0.35, 0.65, 1};
  const double alphas[] = {0, 1, 1, 0};
  for (NSInteger i = 0; i < 4; ++i) {
    CGFloat location = -1;
    NSColor *color = StopColor(gradient, i, &location);
    EXPECT_NEAR(location, locations[i], 1e-9);
    EXPECT_NEAR([color alphaComponent], alphas[i], 1e-9);
    EXPECT_NEAR([color redComponent], 0.2, 1e-9);
    EXPECT_NEAR([color blueComponent], 0.6, 1e-9);
  }
}

TEST_F(GradientTest, ReflectedSizePassesOnUnchecked) {
  NSColor *target = [NSColor colorWithCalibratedWhite:0.5 alpha:0.5];
  NSGradient *wide = reflectedSizedGradientWithTargetColor(target, 0.5);
  const double expected[] = {0, 0, 1, 1};
  for (NSInteger i = 0; i < 4; ++i) {
    CGFloat location = -1;
    NSColor *color = StopColor(wide, i, &location);
    EXPECT_NEAR(location, expected[i], 1e-9);
    // The target's own alpha stays in the band.
    EXPECT_NEAR([color alphaComponent], (i == 1 || i == 2) ? 0.5 : 0.0, 1e-9);
  }
  CGFloat location = 0;
  StopColor(reflectedSizedGradientWithTargetColor(target, 0.7), 1, &location);
  EXPECT_NEAR(location, -0.2, 1e-9);
  EXPECT_EQ(reflectedGradientWithTargetColor(NullOf<NSColor *>()), nil);
}

TEST_F(GradientDrawingTest, ReflectedGradientIsOpaqueInTheBandAndFadesOutward) {
  NSColor *red = [NSColor colorWithCalibratedRed:1 green:0 blue:0 alpha:1];
  Owned<NSBitmapImageRep> rep(
      NewHorizontalSnapshot(reflectedGradientWithTargetColor(red), [NSColor whiteColor]));
  ASSERT_NE(rep.get(), nil);
  EXPECT_PIXEL(RepPixel(rep, 40, 5), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 50, 5), 255, 0, 0, 255);
  EXPECT_PIXEL(RepPixel(rep, 60, 5), 255, 0, 0, 255);
  // Near the ends: almost all white background.
  EXPECT_PIXEL_NEAR(RepPixel(rep, 0, 5), 4, 255, 254, 254, 255);
  EXPECT_PIXEL_NEAR(RepPixel(rep, 99, 5), 4, 255, 254, 254, 255);
  // Halfway into the fade (x 17.5 of 35): half red over white.
  Pixel fade = RepPixel(rep, 17, 5);
  EXPECT_EQ(fade.r, 255);
  EXPECT_NEAR(fade.g, 128, 6);
  EXPECT_NEAR(fade.b, 128, 6);
  // Symmetric about the middle.
  Pixel mirror = RepPixel(rep, 82, 5);
  EXPECT_NEAR(mirror.g, fade.g, 3);
}
