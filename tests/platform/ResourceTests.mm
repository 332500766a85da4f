// The library's own resources through its framework bundle, bundle images
// with their 2x representations, template images, and the small AppKit
// behaviours controls rely on (the colour panel, miniaturize notifications).

#import <AppKit/AppKit.h>
#import <Talvo/Talvo.h>

#import "support/TestSupport.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

NSString *const kArtwork[] = {@"arrows",         @"trackCapLeft", @"trackFill",
                              @"trackCapLeftOff", @"trackFillOff", @"trackCapRightOff",
                              @"knobHover",      @"knobNormal"};

NSBundle *TalvoBundle() {
  return [NSBundle bundleForClass:[VXSplitView class]];
}

TEST(TalvoResources, AnyTalvoClassMapsToTheFrameworkBundle) {
  NSBundle *bundle = TalvoBundle();
  ASSERT_TRUE(bundle != nil);
  EXPECT_NE(bundle, [NSBundle mainBundle]);
  EXPECT_NSEQ([[bundle bundlePath] lastPathComponent], @"Talvo.framework");
  // Classes of every part of the library, platform layer included.
  EXPECT_EQ([NSBundle bundleForClass:[VXCollectionIsEmpty class]], bundle);
  EXPECT_EQ([NSBundle bundleForClass:[VXObservationCenter class]], bundle);
  EXPECT_EQ([NSBundle bundleForClass:[NSTableRowView class]], bundle);
  // Not the program's own classes.
  EXPECT_NE([NSBundle bundleForClass:[TVDeathWatch class]], bundle);
}

TEST(TalvoResources, EveryArtworkImageIsFoundAndLoadsAtItsPointSize) {
  NSBundle *bundle = TalvoBundle();
  for (NSString *name : kArtwork) {
    NSString *path = [bundle pathForImageResource:name];
    ASSERT_TRUE(path != nil) << [name UTF8String];
    Owned<NSImage> image([[NSImage alloc] initWithContentsOfFile:path]);
    ASSERT_TRUE(image.get() != nil) << [name UTF8String];
    EXPECT_GT([[image.get() representations] count], 0u) << [name UTF8String];
  }
  // What the slider's drawing assumes: caps and fills equally high, knobs
  // equally wide.
  NSSize fill = [[[[NSImage alloc] initWithContentsOfFile:[bundle pathForImageResource:@"trackFill"]]
      autorelease] size];
  for (NSString *name : {@"trackCapLeft", @"trackCapLeftOff", @"trackFillOff", @"trackCapRightOff"}) {
    NSImage *part = [bundle imageForResource:name];
    EXPECT_EQ([part size].height, fill.height) << [name UTF8String];
  }
  EXPECT_EQ([[bundle imageForResource:@"knobHover"] size].width,
            [[bundle imageForResource:@"knobNormal"] size].width);
}

TEST(TalvoResources, ImageForResourcePairsTheDoubleSizeFile) {
  NSImage *knob = [TalvoBundle() imageForResource:@"knobNormal"];
  ASSERT_TRUE(knob != nil);
  EXPECT_EQ([knob size].width, 16);
  EXPECT_EQ([knob size].height, 16);
  NSArray *reps = [knob representations];
  ASSERT_EQ([reps count], 2u);
  NSImageRep *single = [reps objectAtIndex:0];
  NSImageRep *twice = [reps objectAtIndex:1];
  EXPECT_EQ([single pixelsWide], 16);
  EXPECT_EQ([twice pixelsWide], 32);
  EXPECT_EQ([twice size].width, 16);  // same points, twice the pixels
  EXPECT_FALSE([knob isTemplate]);
  // Each call gives a new image (the caller may change it).
  EXPECT_NE([TalvoBundle() imageForResource:@"knobNormal"], knob);
  // An extension in the name is fine.
  EXPECT_TRUE([TalvoBundle() imageForResource:@"arrows.png"] != nil);
}

TEST(TalvoResources, MissingOrBadNamesGiveNilNeverARaise) {
  NSBundle *bundle = TalvoBundle();
  EXPECT_TRUE([bundle pathForImageResource:@"noSuchImage"] == nil);
  EXPECT_TRUE([bundle imageForResource:@"noSuchImage"] == nil);
  EXPECT_TRUE([bundle imageForResource:NullOf<NSString *>()] == nil);
  EXPECT_TRUE([bundle imageForResource:@""] == nil);
  EXPECT_TRUE([bundle imageForResource:(NSString *)@[ @"knobNormal" ]] == nil);
  EXPECT_TRUE([[NSBundle mainBundle] imageForResource:@"knobNormal"] == nil);
}

TEST(TalvoResources, UnreadableAndTemplateFilesInABundle) {
  // A scratch bundle: an empty "broken.png" (GNUstep raises on it) and a
  // template image named as such.
  NSString *dir = [NSTemporaryDirectory()
      stringByAppendingPathComponent:[NSString stringWithFormat:@"talvo-res-%d.bundle",
                                                                (int)getpid()]];
  NSString *resources = [dir stringByAppendingPathComponent:@"Resources"];
  [[NSFileManager defaultManager] createDirectoryAtPath:resources
                            withIntermediateDirectories:YES
                                             attributes:nil
                                                  error:NULL];
  [[NSData data] writeToFile:[resources stringByAppendingPathComponent:@"broken.png"]
                  atomically:NO];
  NSString *source = [TalvoBundle() pathForImageResource:@"arrows"];
  [[NSFileManager defaultManager]
      copyPath:source
        toPath:[resources stringByAppendingPathComponent:@"arrowsTemplate.png"]
       handler:nil];
  NSBundle *bundle = [NSBundle bundleWithPath:dir];
  ASSERT_TRUE(bundle != nil);
  EXPECT_TRUE([bundle imageForResource:@"broken"] == nil);
  NSImage *icon = [bundle imageForResource:@"arrowsTemplate"];
  ASSERT_TRUE(icon != nil);
  EXPECT_TRUE([icon isTemplate]);
  EXPECT_EQ([[icon representations] count], 1u);  // no @2x beside it
  [[NSFileManager defaultManager] removeFileAtPath:dir handler:nil];
}

TEST(TemplateImages, TheMarkIsKeptThroughCopiesAndClearedOnRequest) {
  Owned<NSImage> image([[NSImage alloc] initWithSize:NSMakeSize(4, 4)]);
  EXPECT_FALSE([image.get() isTemplate]);
  [image.get() setTemplate:YES];
  EXPECT_TRUE([image.get() isTemplate]);
  Owned<NSImage> copy([image.get() copy]);
  EXPECT_TRUE([copy.get() isTemplate]);
  [image.get() setTemplate:NO];
  EXPECT_FALSE([image.get() isTemplate]);
  EXPECT_TRUE([copy.get() isTemplate]);  // copies are separate
  Owned<NSImage> plainCopy([image.get() copy]);
  EXPECT_FALSE([plainCopy.get() isTemplate]);
  // A new image at a reused address starts unmarked.
  copy.reset();
  for (int i = 0; i < 50; i++) {
    Owned<NSImage> fresh([[NSImage alloc] initWithSize:NSMakeSize(1, 1)]);
    EXPECT_FALSE([fresh.get() isTemplate]);
  }
}

// Found by a name ending in "Template": a template; by any other: not.
TEST(TemplateImages, ImagesNamedLikeTemplatesAreTemplates) {
  Owned<NSImage> dot([[NSImage alloc] initWithSize:NSMakeSize(2, 2)]);
  Owned<NSImage> plain([[NSImage alloc] initWithSize:NSMakeSize(2, 2)]);
  ASSERT_TRUE([dot.get() setName:@"TalvoTestDotTemplate"]);
  ASSERT_TRUE([plain.get() setName:@"TalvoTestTemplateDot"]);
  EXPECT_TRUE([[NSImage imageNamed:@"TalvoTestDotTemplate"] isTemplate]);
  EXPECT_FALSE([[NSImage imageNamed:@"TalvoTestTemplateDot"] isTemplate]);
  EXPECT_EQ([NSImage imageNamed:@"TalvoNoSuchTemplate"], nil);
  EXPECT_EQ([NSImage imageNamed:(NSString *)[NSNull null]], nil);
  [dot.get() setName:nil];
  [plain.get() setName:nil];
}

TEST(ColorPanel, TheSharedPanelIsAColorPanelAndNeedsNoDisplay) {
  if (!HasWindowServer()) {
    GTEST_SKIP() << "needs a window server";
  }
  NSColorPanel *panel = nil;
  @try {
    panel = [NSColorPanel sharedColorPanel];
  } @catch (NSException *exception) {
    ADD_FAILURE() << "raised " << [[exception reason] UTF8String];
  }
  ASSERT_TRUE(panel != nil);
  EXPECT_TRUE([panel isKindOfClass:[NSColorPanel class]]);
  EXPECT_TRUE([panel isKindOfClass:[NSPanel class]]);
  EXPECT_EQ([NSColorPanel sharedColorPanel], panel);
  EXPECT_FALSE([panel isVisible]);
}

TEST(Miniaturize, DidMiniaturizeIsPostedWithoutAWindowManager) {
  if (!HasWindowServer()) {
    GTEST_SKIP() << "needs a window server";
  }
  Owned<NSWindow> window([[NSWindow alloc]
      initWithContentRect:NSMakeRect(100, 100, 120, 80)
                styleMask:NSTitledWindowMask | NSMiniaturizableWindowMask
                  backing:NSBackingStoreBuffered
                    defer:NO]);
  [window.get() setReleasedWhenClosed:NO];
  [window.get() orderFront:nil];
  int will = 0, did = 0;
  int *willCount = &will, *didCount = &did;
  NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
  id willObserver = [center addObserverForName:NSWindowWillMiniaturizeNotification
                                        object:window.get()
                                         queue:nil
                                    usingBlock:^(NSNotification *) {
                                      (*willCount)++;
                                    }];
  id didObserver = [center addObserverForName:NSWindowDidMiniaturizeNotification
                                       object:window.get()
                                        queue:nil
                                   usingBlock:^(NSNotification *) {
                                     EXPECT_EQ(*willCount, 1);  // will before did
                                     (*didCount)++;
                                   }];
  [window.get() miniaturize:nil];
  RunMainLoopUntil([&] { return did > 0; }, 1.0);
  EXPECT_EQ(did, 1);
  EXPECT_TRUE([window.get() isMiniaturized]);
  [window.get() deminiaturize:nil];
  EXPECT_FALSE([window.get() isMiniaturized]);
  [center removeObserver:willObserver];
  [center removeObserver:didObserver];
  [willObserver release];  // GNUstep answers the observer at +1
  [didObserver release];
  [window.get() close];
}

}  // namespace
