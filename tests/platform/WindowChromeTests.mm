// NSWindow's title bar settings, standard buttons, style mask, animation
// behaviour and backing conversions on GNUstep.

#import "platform/WindowTestSupport.h"

namespace {

using WindowChrome = WindowServerTest;

NSUInteger TitledMask() {
  return NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskMiniaturizable |
         NSWindowStyleMaskResizable;
}

TEST_F(WindowChrome, StyleMaskKeepsEveryBitIncludingFullSizeContent) {
  EXPECT_EQ((NSUInteger)NSWindowStyleMaskFullSizeContentView, 1u << 15);
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor],
                                TitledMask() | NSWindowStyleMaskFullSizeContentView);
  EXPECT_EQ([window styleMask], TitledMask() | NSWindowStyleMaskFullSizeContentView);
  NSRect frame = [window frame];

  [window setStyleMask:[window styleMask] & ~NSWindowStyleMaskFullSizeContentView];
  EXPECT_EQ([window styleMask], TitledMask());
  [window setStyleMask:[window styleMask] | NSWindowStyleMaskFullSizeContentView];
  EXPECT_EQ([window styleMask], TitledMask() | NSWindowStyleMaskFullSizeContentView);
  [window setStyleMask:NSWindowStyleMaskBorderless | NSWindowStyleMaskFullSizeContentView];
  EXPECT_EQ([window styleMask], (NSUInteger)NSWindowStyleMaskFullSizeContentView);
  EXPECT_TRUE(NSEqualRects([window frame], frame));
  // Still drawn and on screen after the restyle.
  PumpEvents();
  EXPECT_TRUE([window isVisible]);
}

// A titled window has a shadow until told otherwise; a borderless one
// only when asked; a restyle keeps what was set.
TEST_F(WindowChrome, TitledWindowsHaveAShadowUntilToldOtherwise) {
  NSWindow *titled = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor],
                                [NSColor redColor], TitledMask());
  NSWindow *plain = MakeWindow(NSMakeRect(320, 100, 200, 100), [NSColor blueColor],
                               [NSColor redColor], NSWindowStyleMaskBorderless);
  EXPECT_TRUE([titled hasShadow]);
  EXPECT_FALSE([plain hasShadow]);
  [titled setHasShadow:NO];
  [titled setStyleMask:TitledMask() | NSWindowStyleMaskFullSizeContentView];
  EXPECT_FALSE([titled hasShadow]);
  [plain setHasShadow:YES];
  EXPECT_TRUE([plain hasShadow]);
}

TEST_F(WindowChrome, TitleBarSettingsStartAtAppKitsDefaultsAndKeepValidValues) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor],
                                TitledMask());
  EXPECT_FALSE([window titlebarAppearsTransparent]);
  EXPECT_EQ([window titleVisibility], NSWindowTitleVisible);
  EXPECT_EQ([window animationBehavior], NSWindowAnimationBehaviorDefault);

  [window setTitlebarAppearsTransparent:YES];
  [window setTitleVisibility:NSWindowTitleHidden];
  [window setAnimationBehavior:NSWindowAnimationBehaviorNone];
  EXPECT_TRUE([window titlebarAppearsTransparent]);
  EXPECT_EQ([window titleVisibility], NSWindowTitleHidden);
  EXPECT_EQ([window animationBehavior], NSWindowAnimationBehaviorNone);

  // Values AppKit does not define leave the setting as it was.
  [window setTitleVisibility:(NSWindowTitleVisibility)7];
  [window setAnimationBehavior:(NSWindowAnimationBehavior)1];
  [window setAnimationBehavior:(NSWindowAnimationBehavior)-4];
  EXPECT_EQ([window titleVisibility], NSWindowTitleHidden);
  EXPECT_EQ([window animationBehavior], NSWindowAnimationBehaviorNone);
  [window setAnimationBehavior:NSWindowAnimationBehaviorAlertPanel];
  EXPECT_EQ([window animationBehavior], NSWindowAnimationBehaviorAlertPanel);

  // Settings belong to their window.
  NSWindow *other = MakeWindow(NSMakeRect(10, 10, 20, 20), [NSColor blueColor], [NSColor redColor]);
  EXPECT_FALSE([other titlebarAppearsTransparent]);
  EXPECT_EQ([other animationBehavior], NSWindowAnimationBehaviorDefault);
}

TEST_F(WindowChrome, StandardButtonsOfATitledWindowCanBeHidden) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor],
                                NSWindowStyleMaskTitled | NSWindowStyleMaskClosable);
  NSButton *close = [window standardWindowButton:NSWindowCloseButton];
  NSButton *miniaturize = [window standardWindowButton:NSWindowMiniaturizeButton];
  NSButton *zoom = [window standardWindowButton:NSWindowZoomButton];
  ASSERT_NE(close, (NSButton *)nil);
  ASSERT_NE(miniaturize, (NSButton *)nil);
  ASSERT_NE(zoom, (NSButton *)nil);
  EXPECT_NE(close, miniaturize);
  EXPECT_TRUE([close isEnabled]);
  EXPECT_FALSE([miniaturize isEnabled]);
  EXPECT_FALSE([zoom isEnabled]);

  [close setHidden:YES];
  EXPECT_EQ([window standardWindowButton:NSWindowCloseButton], close);
  EXPECT_TRUE([[window standardWindowButton:NSWindowCloseButton] isHidden]);
  EXPECT_FALSE([[window standardWindowButton:NSWindowZoomButton] isHidden]);

  [window setStyleMask:[window styleMask] | NSWindowStyleMaskResizable];
  EXPECT_TRUE([[window standardWindowButton:NSWindowZoomButton] isEnabled]);

  NSWindow *borderless = MakeWindow(NSMakeRect(10, 10, 20, 20), [NSColor blueColor], [NSColor redColor]);
  EXPECT_EQ([borderless standardWindowButton:NSWindowCloseButton], (NSButton *)nil);
  EXPECT_EQ([window standardWindowButton:(NSWindowButton)99], (NSButton *)nil);
}

TEST_F(WindowChrome, MovabilitySheetsAndScreenUpdates) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor]);
  EXPECT_TRUE([window isMovable]);
  [window setMovableByWindowBackground:YES];
  EXPECT_TRUE([window isMovableByWindowBackground]);
  [window setMovable:NO];
  EXPECT_FALSE([window isMovable]);
  EXPECT_FALSE([window isMovableByWindowBackground]);
  [window setFrameOrigin:NSMakePoint(120, 110)];  // code still moves it
  EXPECT_TRUE(NSEqualPoints([window frame].origin, NSMakePoint(120, 110)));
  [window setMovable:YES];
  EXPECT_TRUE([window isMovableByWindowBackground]);

  EXPECT_FALSE([window isSheet]);

  NSInteger before = TVScreenUpdatesDisabledCount();
  NSDisableScreenUpdates();
  NSDisableScreenUpdates();
  EXPECT_EQ(TVScreenUpdatesDisabledCount(), before + 2);
  NSEnableScreenUpdates();
  NSEnableScreenUpdates();
  NSEnableScreenUpdates();  // one too many is ignored
  EXPECT_EQ(TVScreenUpdatesDisabledCount(), before);
}

TEST_F(WindowChrome, BackingConversionsScaleByTheBackingAtOneX) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor]);
  CGFloat scale = [window backingScaleFactor];
  EXPECT_EQ(scale, [window userSpaceScaleFactor]);
  NSRect rect = NSMakeRect(1.5, -2, 30, 40);
  NSRect backing = [window convertRectToBacking:rect];
  EXPECT_TRUE(NSEqualRects(backing, NSMakeRect(1.5 * scale, -2 * scale, 30 * scale, 40 * scale)));
  EXPECT_TRUE(NSEqualRects([window convertRectFromBacking:backing], rect));
}

}  // namespace
