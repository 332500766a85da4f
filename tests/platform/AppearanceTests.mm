// Named appearances and how views, windows and the application pass them
// down; the appearance current while a view draws.

#import "platform/WindowTestSupport.h"

// Notes the current appearance each time it draws.
@interface TVAppearanceRecordingView : NSView {
  NSAppearance *_drawnWith;
}
@property(nonatomic, readonly) NSAppearance *drawnWith;
@end

@implementation TVAppearanceRecordingView
@synthesize drawnWith = _drawnWith;

- (void)dealloc {
  [_drawnWith release];
  [super dealloc];
}

- (void)drawRect:(NSRect)dirty {
  [_drawnWith release];
  _drawnWith = [[NSAppearance currentAppearance] retain];
}

@end

namespace {

using Appearance = PooledTest;

TEST_F(Appearance, NamedAppearancesBelongToNobodyAndUnknownNamesKeepTheirName) {
  NSString *names[] = {NSAppearanceNameAqua, NSAppearanceNameDarkAqua, NSAppearanceNameVibrantLight,
                       NSAppearanceNameVibrantDark};
  for (NSString *name : names) {
    NSAppearance *appearance = [NSAppearance appearanceNamed:name];
    ASSERT_NE(appearance, (NSAppearance *)nil) << [name UTF8String];
    EXPECT_NSEQ([appearance name], name);
    EXPECT_NSEQ([[NSAppearance appearanceNamed:[[name mutableCopy] autorelease]] name], name);
  }
  EXPECT_TRUE([[NSAppearance appearanceNamed:NSAppearanceNameVibrantDark] talvo_isDark]);
  EXPECT_TRUE([[NSAppearance appearanceNamed:NSAppearanceNameDarkAqua] talvo_isDark]);
  EXPECT_FALSE([[NSAppearance appearanceNamed:NSAppearanceNameVibrantLight] talvo_isDark]);
  EXPECT_TRUE([[NSAppearance appearanceNamed:NSAppearanceNameVibrantDark] allowsVibrancy]);
  EXPECT_FALSE([[NSAppearance appearanceNamed:NSAppearanceNameAqua] allowsVibrancy]);

  // AppKit answers an unknown name with a plain appearance of that name.
  NSAppearance *madeUp = [NSAppearance appearanceNamed:@"NSAppearanceNameVibrantMadeUp"];
  EXPECT_NSEQ([madeUp name], @"NSAppearanceNameVibrantMadeUp");
  EXPECT_FALSE([madeUp allowsVibrancy]);
  EXPECT_FALSE([madeUp talvo_isDark]);
  EXPECT_EQ([NSAppearance appearanceNamed:NullOf<NSString *>()], (NSAppearance *)nil);
  EXPECT_EQ([NSAppearance appearanceNamed:(NSString *)@42], (NSAppearance *)nil);
  EXPECT_EQ([[NSAppearance alloc] initWithAppearanceNamed:(NSString *)@42 bundle:nil], (NSAppearance *)nil);

  // Autoreleased: once the pool drains, the caller's retain is the only one.
  NSAppearance *aqua = nil;
  @autoreleasepool {
    aqua = [[NSAppearance appearanceNamed:NSAppearanceNameAqua] retain];
  }
  EXPECT_EQ([aqua retainCount], 1u);
  [aqua release];
}

TEST_F(Appearance, CurrentAppearanceIsAquaUntilSet) {
  NSAppearance *saved = [[NSAppearance currentAppearance] retain];
  [NSAppearance setCurrentAppearance:nil];
  EXPECT_NSEQ([[NSAppearance currentAppearance] name], NSAppearanceNameAqua);
  [NSAppearance setCurrentAppearance:[NSAppearance appearanceNamed:NSAppearanceNameDarkAqua]];
  EXPECT_NSEQ([[NSAppearance currentAppearance] name], NSAppearanceNameDarkAqua);
  [NSAppearance setCurrentAppearance:saved];
  [saved release];
}

TEST_F(Appearance, BestMatchIsTheExactNameOrThePlainOneAVibrantOneVaries) {
  NSAppearance *vibrantDark = [NSAppearance appearanceNamed:NSAppearanceNameVibrantDark];
  NSArray *lightAndDark = @[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ];
  EXPECT_NSEQ([vibrantDark bestMatchFromAppearancesWithNames:lightAndDark], NSAppearanceNameDarkAqua);
  EXPECT_NSEQ([vibrantDark bestMatchFromAppearancesWithNames:(@[ NSAppearanceNameDarkAqua, NSAppearanceNameVibrantDark ])],
              NSAppearanceNameVibrantDark);
  EXPECT_NSEQ([[NSAppearance appearanceNamed:NSAppearanceNameVibrantLight] bestMatchFromAppearancesWithNames:lightAndDark],
              NSAppearanceNameAqua);
  EXPECT_EQ([vibrantDark bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua ]], (NSString *)nil);
  EXPECT_EQ([vibrantDark bestMatchFromAppearancesWithNames:(NSArray *)@"x"], (NSString *)nil);
  NSAppearance *aqua = [NSAppearance appearanceNamed:NSAppearanceNameAqua];
  EXPECT_EQ([aqua bestMatchFromAppearancesWithNames:@[ NSAppearanceNameVibrantLight ]], (NSString *)nil);
  EXPECT_NSEQ([aqua bestMatchFromAppearancesWithNames:(@[ @42, NSAppearanceNameDarkAqua, NSAppearanceNameAqua ])],
              NSAppearanceNameAqua);
}

TEST_F(Appearance, ArchivesKeepTheName) {
  NSAppearance *dark = [NSAppearance appearanceNamed:NSAppearanceNameVibrantDark];
  NSData *keyed = [NSKeyedArchiver archivedDataWithRootObject:dark];
  NSAppearance *back = [NSKeyedUnarchiver unarchiveObjectWithData:keyed];
  EXPECT_NSEQ([back name], NSAppearanceNameVibrantDark);
  EXPECT_TRUE([back allowsVibrancy]);
  NSData *old = [NSArchiver archivedDataWithRootObject:dark];
  EXPECT_NSEQ([[NSUnarchiver unarchiveObjectWithData:old] name], NSAppearanceNameVibrantDark);
  EXPECT_NSEQ(NSAppearanceNameAccessibilityHighContrastDarkAqua, @"NSAppearanceNameAccessibilityDarkAqua");
}

class AppearanceInheritance : public WindowServerTest {};

TEST_F(AppearanceInheritance, ViewsInheritFromSuperviewThenWindowThenApplication) {
  NSAppearance *dark = [NSAppearance appearanceNamed:NSAppearanceNameVibrantDark];
  NSAppearance *light = [NSAppearance appearanceNamed:NSAppearanceNameVibrantLight];
  NSAppearance *darkAqua = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor]);
  NSView *outer = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  NSView *inner = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 50, 50)] autorelease];
  [outer addSubview:inner];

  EXPECT_EQ([inner appearance], (NSAppearance *)nil);
  EXPECT_NSEQ([[inner effectiveAppearance] name], NSAppearanceNameAqua);  // detached, nothing set

  [[window contentView] addSubview:outer];
  [window setAppearance:dark];
  EXPECT_EQ([window effectiveAppearance], dark);
  EXPECT_EQ([inner effectiveAppearance], dark);
  [outer setAppearance:light];
  EXPECT_EQ([inner effectiveAppearance], light);
  EXPECT_EQ([outer appearance], light);
  EXPECT_EQ([inner appearance], (NSAppearance *)nil);
  [inner setAppearance:darkAqua];
  EXPECT_EQ([inner effectiveAppearance], darkAqua);
  [inner setAppearance:nil];
  [outer setAppearance:nil];
  EXPECT_EQ([inner effectiveAppearance], dark);

  // Moved out of the window, the view no longer sees the window's.
  [outer removeFromSuperview];
  EXPECT_NSEQ([[inner effectiveAppearance] name], NSAppearanceNameAqua);

  [window setAppearance:nil];
  [NSApp setAppearance:darkAqua];
  EXPECT_EQ([window effectiveAppearance], darkAqua);
  EXPECT_EQ([[window contentView] effectiveAppearance], darkAqua);
  EXPECT_EQ([NSApp effectiveAppearance], darkAqua);
  [NSApp setAppearance:nil];
  EXPECT_NSEQ([[NSApp effectiveAppearance] name], NSAppearanceNameAqua);

  // Anything that is not an appearance leaves things as they were.
  [window setAppearance:light];
  [window setAppearance:(NSAppearance *)@"dark"];
  [inner setAppearance:(NSAppearance *)[NSColor redColor]];
  EXPECT_EQ([window appearance], light);
  EXPECT_EQ([inner appearance], (NSAppearance *)nil);
  [window setAppearance:nil];
}

TEST_F(AppearanceInheritance, AppearanceSetOnAViewOrWindowLeavesWithIt) {
  NSAppearance *dark = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
  NSUInteger before = [dark retainCount];
  NSView *view = [[NSView alloc] initWithFrame:NSZeroRect];
  [view setAppearance:dark];
  NSWindow *window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 10, 10)
                                                 styleMask:NSBorderlessWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:YES];
  [window setReleasedWhenClosed:NO];
  [window setAppearance:dark];
  EXPECT_EQ([dark retainCount], before + 2);
  [view release];
  [window release];
  EXPECT_EQ([dark retainCount], before);
}

TEST_F(AppearanceInheritance, ViewsDrawUnderTheirEffectiveAppearance) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor]);
  TVAppearanceRecordingView *plain =
      [[[TVAppearanceRecordingView alloc] initWithFrame:NSMakeRect(0, 0, 50, 50)] autorelease];
  TVAppearanceRecordingView *dark =
      [[[TVAppearanceRecordingView alloc] initWithFrame:NSMakeRect(60, 0, 50, 50)] autorelease];
  TVAppearanceRecordingView *nested =
      [[[TVAppearanceRecordingView alloc] initWithFrame:NSMakeRect(0, 0, 20, 20)] autorelease];
  [dark addSubview:nested];
  [dark setAppearance:[NSAppearance appearanceNamed:NSAppearanceNameVibrantDark]];
  [[window contentView] addSubview:plain];
  [[window contentView] addSubview:dark];
  [window display];
  EXPECT_NSEQ([[plain drawnWith] name], NSAppearanceNameAqua);
  EXPECT_NSEQ([[dark drawnWith] name], NSAppearanceNameVibrantDark);
  EXPECT_NSEQ([[nested drawnWith] name], NSAppearanceNameVibrantDark);
  // Outside drawing the current appearance is back to what it was.
  EXPECT_NSEQ([[NSAppearance currentAppearance] name], NSAppearanceNameAqua);
}

}  // namespace
