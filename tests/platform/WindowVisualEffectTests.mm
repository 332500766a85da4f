// NSVisualEffectView keeps its settings (GNUstep's reads back zero) and
// fills itself by material, appearance and activity, checked as pixels of
// the window picture.

#import "platform/WindowTestSupport.h"

namespace {

class VisualEffect : public WindowServerTest {
 protected:
  // A window whose content is one effect view, drawn; the view is
  // returned, the window kept by the fixture.
  NSVisualEffectView *MakeEffectWindow(NSAppearance *appearance) {
    window_ = MakeWindow(NSMakeRect(100, 100, 80, 60), [NSColor redColor], [NSColor redColor]);
    NSVisualEffectView *view =
        [[[NSVisualEffectView alloc] initWithFrame:NSMakeRect(0, 0, 80, 60)] autorelease];
    [window_ setContentView:view];
    [window_ setAppearance:appearance];
    return view;
  }
  // The grey level (or the pixel) in the middle of the window.
  uint32_t Centre() {
    [window_ display];
    CGImageRef image = CGWindowListCreateImageFromArray(CGRectNull, (CFArrayRef)WindowArray(window_),
                                                        kCGWindowImageBoundsIgnoreFraming);
    ImagePixels pixels(image);
    uint32_t pixel = pixels.at(40, 30);
    CGImageRelease(image);
    return pixel;
  }
  static int Grey(uint32_t pixel) { return (int)(pixel & 0xff); }

  NSWindow *window_ = nil;
};

TEST_F(VisualEffect, SettingsAreKept) {
  NSVisualEffectView *view = [[[NSVisualEffectView alloc] initWithFrame:NSZeroRect] autorelease];
  EXPECT_EQ([view material], NSVisualEffectMaterialAppearanceBased);
  EXPECT_EQ([view blendingMode], NSVisualEffectBlendingModeBehindWindow);
  EXPECT_EQ([view state], NSVisualEffectStateFollowsWindowActiveState);
  EXPECT_FALSE([view isEmphasized]);
  [view setMaterial:NSVisualEffectMaterialSidebar];
  [view setBlendingMode:NSVisualEffectBlendingModeWithinWindow];
  [view setState:NSVisualEffectStateActive];
  [view setEmphasized:YES];
  EXPECT_EQ([view material], NSVisualEffectMaterialSidebar);
  EXPECT_EQ([view blendingMode], NSVisualEffectBlendingModeWithinWindow);
  EXPECT_EQ([view state], NSVisualEffectStateActive);
  EXPECT_TRUE([view isEmphasized]);
  // Values outside AppKit's ranges are ignored.
  [view setState:(NSVisualEffectState)9];
  [view setBlendingMode:(NSVisualEffectBlendingMode)-1];
  EXPECT_EQ([view state], NSVisualEffectStateActive);
  EXPECT_EQ([view blendingMode], NSVisualEffectBlendingModeWithinWindow);

  NSImage *mask = [[[NSImage alloc] initWithSize:NSMakeSize(4, 4)] autorelease];
  NSUInteger count = [mask retainCount];
  [view setMaskImage:mask];
  EXPECT_EQ([view maskImage], mask);
  [view setMaskImage:(NSImage *)@"no"];
  EXPECT_EQ([view maskImage], mask);
  [view setMaskImage:nil];
  EXPECT_EQ([mask retainCount], count);
}

TEST_F(VisualEffect, FillFollowsMaterialAndAppearance) {
  NSVisualEffectView *view = MakeEffectWindow([NSAppearance appearanceNamed:NSAppearanceNameVibrantDark]);
  [view setState:NSVisualEffectStateActive];
  uint32_t dark = Centre();
  EXPECT_EQ(dark >> 24, 0xffu);
  EXPECT_LT(Grey(dark), 64);
  EXPECT_EQ(Grey(dark), (int)((dark >> 8) & 0xff));  // grey, not tinted

  [window_ setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameVibrantLight]];
  uint32_t light = Centre();
  EXPECT_GT(Grey(light), 200);

  // A material with a tone of its own ignores the appearance.
  [view setMaterial:NSVisualEffectMaterialUltraDark];
  EXPECT_LT(Grey(Centre()), 32);
  [window_ setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameDarkAqua]];
  EXPECT_LT(Grey(Centre()), 32);

  // A view's own appearance wins over the window's.
  [view setMaterial:NSVisualEffectMaterialAppearanceBased];
  [view setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameAqua]];
  EXPECT_EQ(Centre(), light);
}

TEST_F(VisualEffect, InactiveViewsShowThePlainWindowBackgroundAndSelectionsTheirEmphasis) {
  NSVisualEffectView *view = MakeEffectWindow([NSAppearance appearanceNamed:NSAppearanceNameAqua]);
  [view setMaterial:NSVisualEffectMaterialSidebar];
  [view setState:NSVisualEffectStateActive];
  uint32_t active = Centre();
  [view setState:NSVisualEffectStateInactive];
  uint32_t inactive = Centre();
  EXPECT_NE(active, inactive);
  // Following the window: a window that is neither key nor main is
  // inactive.
  [view setState:NSVisualEffectStateFollowsWindowActiveState];
  ASSERT_FALSE([window_ isKeyWindow]);
  EXPECT_EQ(Centre(), inactive);

  [view setState:NSVisualEffectStateActive];
  [view setMaterial:NSVisualEffectMaterialSelection];
  uint32_t plain = Centre();
  [view setEmphasized:YES];
  uint32_t emphasized = Centre();
  EXPECT_EQ(Grey(plain), (int)((plain >> 16) & 0xff));
  EXPECT_GT((int)(emphasized & 0xff), (int)((emphasized >> 16) & 0xff) + 100);  // blue
}

}  // namespace
