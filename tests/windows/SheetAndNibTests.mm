// The progress sheet, alerts run as sheets with a block, and the nib object
// loader. GNUstep runs a sheet in a modal session: the checks run inside
// it from a timer, which then ends the sheet (ordering it out wakes the
// session).

#import <Talvo/Talvo.h>

#include <unistd.h>

#import "WindowTestSupport.h"

// An alert whose sheet is run by the test: it records what the sheet was
// begun with and ends it as AppKit does, by sending the end selector to the
// modal delegate. (GNUstep's alert sheets run a modal session that a test
// cannot end from inside.)
@interface TVWindowSheetAlert : NSAlert {
 @public
  NSWindow *_tvSheetWindow;
  id _tvModalDelegate;
  SEL _tvDidEndSelector;
  void *_tvContextInfo;
  int _tvSheetCount;
}
- (NSWindow *)sheetWindow;
- (id)modalDelegate;
- (SEL)didEndSelector;
- (int)sheetCount;
- (void)endSheetWithReturnCode:(NSInteger)code;
@end

@implementation TVWindowSheetAlert
- (void)beginSheetModalForWindow:(NSWindow *)window
                   modalDelegate:(id)delegate
                  didEndSelector:(SEL)selector
                     contextInfo:(void *)contextInfo {
  _tvSheetWindow = window;
  _tvModalDelegate = delegate;
  _tvDidEndSelector = selector;
  _tvContextInfo = contextInfo;
  _tvSheetCount++;
}
- (NSWindow *)sheetWindow {
  return _tvSheetWindow;
}
- (id)modalDelegate {
  return _tvModalDelegate;
}
- (SEL)didEndSelector {
  return _tvDidEndSelector;
}
- (int)sheetCount {
  return _tvSheetCount;
}
- (void)endSheetWithReturnCode:(NSInteger)code {
  typedef void (*DidEnd)(id, SEL, NSAlert *, NSInteger, void *);
  DidEnd end = (DidEnd)[_tvModalDelegate methodForSelector:_tvDidEndSelector];
  end(_tvModalDelegate, _tvDidEndSelector, self, code, _tvContextInfo);
  _tvContextInfo = NULL;
}
@end

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

// The build puts the fixture in the main bundle's resources (nibs load from
// the main bundle only).
class NibObjectLoader : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) GTEST_SKIP() << "nibs need the application object";
    if ([[NSBundle mainBundle] pathForNibResource:@"WindowsObjects"] == nil) {
      GTEST_SKIP() << "WindowsObjects.xib is not in " << [[[NSBundle mainBundle] resourcePath] UTF8String];
    }
  }
};

}  // namespace

namespace {

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
          // The modal loop notices its end only at its next event.
          [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                              location:NSZeroPoint
                                         modifierFlags:0
                                             timestamp:0
                                          windowNumber:0
                                               context:nil
                                               subtype:0
                                                 data1:0
                                                 data2:0]
                   atStart:NO];
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
  Owned<TVWindowSheetAlert> alert([[TVWindowSheetAlert alloc] init]);
  __block int calls = 0;
  __block NSInteger code = 0;
  int deaths = 0;
  TVDeathWatch *watch = [[TVDeathWatch alloc] init];
  [watch setDeaths:&deaths];
  [alert.get() VXBeginSheetModalForWindow:window
                               completion:^(NSInteger returnCode) {
                                 calls++;
                                 code = returnCode;
                                 [watch self];
                               }];
  [watch release];
  EXPECT_EQ([alert.get() sheetWindow], window.get());
  EXPECT_EQ([alert.get() modalDelegate], (id)[NSAlert class]);
  EXPECT_TRUE(sel_isEqual([alert.get() didEndSelector],
                          @selector(VXalertDidEnd:returnCode:contextInfo:)));
  EXPECT_EQ(calls, 0) << "not before the sheet ends";
  EXPECT_EQ(deaths, 0) << "the pending sheet owns the copy";

  [alert.get() endSheetWithReturnCode:NSAlertSecondButtonReturn];
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(code, NSAlertSecondButtonReturn);
  EXPECT_EQ(deaths, 1) << "the copy is released after the call";
  EXPECT_EQ([alert.get() delegate], nil);

  // No window: no sheet. No completion: the sheet ends without a call.
  [alert.get() VXBeginSheetModalForWindow:NullOf<NSWindow *>()
                               completion:^(NSInteger returnCode) {
                                 calls++;
                               }];
  EXPECT_EQ([alert.get() sheetCount], 1);
  [alert.get() VXBeginSheetModalForWindow:window completion:nil];
  [alert.get() endSheetWithReturnCode:1];
  [NSAlert VXalertDidEnd:alert returnCode:1 contextInfo:NULL];
  EXPECT_EQ(calls, 1);
}

TEST_F(AlertSheet, AnEmptyAlertEndsWithItsCode) {
  Owned<NSWindow> window(NewFilledWindow(NSMakeRect(100, 100, 200, 100), NSTitledWindowMask,
                                         [NSColor whiteColor]));
  Owned<TVWindowSheetAlert> alert([[TVWindowSheetAlert alloc] init]);
  __block NSInteger code = 0;
  [alert.get() VXBeginSheetModalForWindow:window
                               completion:^(NSInteger returnCode) {
                                 code = returnCode;
                               }];
  [alert.get() endSheetWithReturnCode:NSAlertFirstButtonReturn];
  EXPECT_EQ(code, NSAlertFirstButtonReturn);
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
