// The progress sheet, alerts run as sheets with a block, and the nib object
// loader. GNUstep runs a sheet in a modal session: the checks run inside
// it from a timer, which then ends the sheet (ordering it out wakes the
// session).

#import <Talvo/Talvo.h>

#include <unistd.h>

#import "WindowTestSupport.h"

@interface TVWindowDeferredBlock : NSObject
+ (void)run:(void (^)(void))block after:(double)seconds;
@end

@implementation TVWindowDeferredBlock
+ (void)fire:(void (^)(void))block {
  block();
}
+ (void)run:(void (^)(void))block after:(double)seconds {
  [self performSelector:@selector(fire:)
             withObject:[[block copy] autorelease]
             afterDelay:seconds
                inModes:[NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode,
                                                  nil]];
}
@end

namespace {

using ProgressSheet = WindowTest;
using AlertSheet = WindowTest;

class NibObjectLoader : public PooledTest {
 protected:
  // The loader reads the main bundle: the fixture is copied there for the
  // suite and removed after it.
  static void SetUpTestSuite() {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    NSString *resources = [[NSBundle mainBundle] resourcePath];
    [[NSFileManager defaultManager] createDirectoryAtPath:resources
                              withIntermediateDirectories:YES
                                               attributes:nil
                                                    error:NULL];
    NSString *source = [@TALVO_TEST_RESOURCES stringByAppendingPathComponent:
                                                  @"windows/WindowsObjects.xib"];
    copied_ = [[resources stringByAppendingPathComponent:@"WindowsObjects.xib"] retain];
    [[NSFileManager defaultManager] removeItemAtPath:copied_ error:NULL];
    [[NSFileManager defaultManager] copyItemAtPath:source toPath:copied_ error:NULL];
    [pool drain];
  }
  static void TearDownTestSuite() {
    [[NSFileManager defaultManager] removeItemAtPath:copied_ error:NULL];
    [copied_ release];
    copied_ = nil;
  }
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) GTEST_SKIP() << "nibs need the application object";
  }
  static NSString *copied_;
};
NSString *NibObjectLoader::copied_ = nil;

// Captures what NSLog writes to standard error while `block` runs.
std::string StandardErrorOf(void (^block)(void)) {
  fflush(stderr);
  char path[] = "/tmp/talvo-stderr-XXXXXX";
  int file = mkstemp(path);
  int saved = dup(2);
  dup2(file, 2);
  block();
  fflush(stderr);
  dup2(saved, 2);
  close(saved);
  std::string text;
  lseek(file, 0, SEEK_SET);
  char buffer[512];
  ssize_t n;
  while ((n = read(file, buffer, sizeof buffer)) > 0) text.append(buffer, size_t(n));
  close(file);
  unlink(path);
  return text;
}

}  // namespace

TEST_F(ProgressSheet, FreshPanelHasItsMessageAboveTheIndicator) {
  Owned<VXProgressPanel> panel([[VXProgressPanel alloc] init]);
  ASSERT_NE(panel.get(), nil);
  EXPECT_EQ([panel.get() frame].size.width, 340);
  EXPECT_EQ([panel.get() frame].size.height, 100);
  EXPECT_RECT_NEAR([[panel.get() indicator] frame], 20, 12, 300, 20);
  EXPECT_RECT_NEAR([[panel.get() messageField] frame], 20, 40, 300, 20);
  EXPECT_EQ([[panel.get() indicator] superview], [panel.get() contentView]);
  EXPECT_EQ([[panel.get() messageField] superview], [panel.get() contentView]);
  NSTextField *field = [panel.get() messageField];
  EXPECT_FALSE([field isEditable]);
  EXPECT_FALSE([field isBezeled]);
  EXPECT_FALSE([field drawsBackground]);
  EXPECT_NSEQ([field font], [NSFont boldSystemFontOfSize:14.0]);
  [panel.get() beginSheetModalForWindow:NullOf<NSWindow *>()];
  EXPECT_FALSE([panel.get() isVisible]);
}

TEST_F(ProgressSheet, BeginShowsTheTitleAndSpins) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 400, 300), NSTitledWindowMask,
                                         [NSColor whiteColor]));
  [window.get() makeKeyAndOrderFront:nil];
  Owned<VXProgressPanel> panel([[VXProgressPanel alloc] init]);
  [panel.get() setTitle:@"Copying files"];
  __block bool checked = false;
  VXProgressPanel *sheet = panel.get();
  NSWindow *parent = window.get();
  [TVWindowDeferredBlock
        run:^{
          checked = true;
          EXPECT_NSEQ([[sheet messageField] stringValue], @"Copying files");
          EXPECT_TRUE([[[sheet indicator] valueForKey:@"isRunning"] boolValue]);
          EXPECT_EQ([parent attachedSheet], sheet);
          [[sheet indicator] stopAnimation:nil];
          [NSApp endSheet:sheet];
          [sheet orderOut:nil];
        }
      after:0.2];
  [panel.get() beginSheetModalForWindow:window];
  EXPECT_TRUE(checked);
  EXPECT_EQ([window.get() attachedSheet], nil);
  [window.get() orderOut:nil];
}

TEST_F(AlertSheet, CompletionRunsOnceWithTheButtonsCode) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 400, 300), NSTitledWindowMask,
                                         [NSColor whiteColor]));
  [window.get() makeKeyAndOrderFront:nil];
  Owned<NSAlert> alert([[NSAlert alloc] init]);
  [alert.get() setMessageText:@"Replace?"];
  [alert.get() addButtonWithTitle:@"Replace"];
  [alert.get() addButtonWithTitle:@"Cancel"];
  __block int calls = 0;
  __block NSInteger code = 0;
  int deaths = 0;
  TVDeathWatch *watch = [[TVDeathWatch alloc] init];
  [watch setDeaths:&deaths];
  NSAlert *running = alert.get();
  [TVWindowDeferredBlock
        run:^{
          [[[running buttons] objectAtIndex:1] performClick:nil];
          [[running window] orderOut:nil];
        }
      after:0.2];
  [alert.get() VXBeginSheetModalForWindow:window
                               completion:^(NSInteger returnCode) {
                                 calls++;
                                 code = returnCode;
                                 [watch self];
                               }];
  [watch release];
  for (int turn = 0; turn < 50 && calls == 0; ++turn) RunLoopTurn();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(code, NSAlertSecondButtonReturn);
  EXPECT_EQ(deaths, 1) << "the block's copy is released after the call";
  EXPECT_EQ([alert.get() delegate], nil);

  // No window: nothing runs. No completion: the sheet runs without one.
  [alert.get() VXBeginSheetModalForWindow:NullOf<NSWindow *>()
                               completion:^(NSInteger returnCode) {
                                 calls++;
                               }];
  [NSAlert VXalertDidEnd:alert returnCode:1 contextInfo:NULL];
  EXPECT_EQ(calls, 1);
  [window.get() orderOut:nil];
}

TEST_F(AlertSheet, AnEmptyAlertStillEnds) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 400, 300), NSTitledWindowMask,
                                         [NSColor whiteColor]));
  [window.get() makeKeyAndOrderFront:nil];
  Owned<NSAlert> alert([[NSAlert alloc] init]);
  NSAlert *running = alert.get();
  [TVWindowDeferredBlock
        run:^{
          [NSApp endSheet:[running window] returnCode:42];
          [[running window] orderOut:nil];
        }
      after:0.2];
  [alert.get() VXBeginSheetModalForWindow:window completion:nil];
  EXPECT_FALSE([[alert.get() window] isVisible]);
  [window.get() orderOut:nil];
}

TEST_F(NibObjectLoader, FirstObjectOfTheKindInFileOrder) {
  NSView *view = [NSBundle loadObjectOfKind:[NSView class] fromNibFile:@"WindowsObjects"];
  ASSERT_NE(view, nil);
  EXPECT_EQ(NSWidth([view frame]), 111) << "the first of the two views";
  NSResponder *responder = [NSBundle loadObjectOfKind:[NSResponder class]
                                          fromNibFile:@"WindowsObjects"];
  EXPECT_TRUE([responder isKindOfClass:[NSWindow class]]);
  EXPECT_NSEQ([(NSWindow *)responder title], @"Loaded");
  [(NSWindow *)responder close];
  EXPECT_EQ([NSBundle loadObjectOfKind:[NSButton class] fromNibFile:@"WindowsObjects"], nil);
  EXPECT_EQ([NSBundle loadObjectOfKind:Nil fromNibFile:@"WindowsObjects"], nil);
}

TEST_F(NibObjectLoader, MissingNibLogsOneWarning) {
  __block id result = @"unset";
  std::string log = StandardErrorOf(^{
    result = [NSBundle loadObjectOfKind:[NSView class] fromNibFile:@"NoSuchNibAnywhere"];
  });
  EXPECT_EQ(result, nil);
  EXPECT_NE(log.find("Warning! Could not load nib file.\n"), std::string::npos) << log;
  log = StandardErrorOf(^{
    result = [NSBundle loadObjectOfKind:[NSView class] fromNibFile:NullOf<NSString *>()];
  });
  EXPECT_EQ(result, nil);
  EXPECT_NE(log.find("Warning! Could not load nib file."), std::string::npos);
}
