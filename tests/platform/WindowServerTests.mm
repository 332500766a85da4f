// The window-server stand-in: window descriptions, lists and pictures of
// real windows under Xvfb, read back as pixels.

#import "platform/WindowTestSupport.h"

namespace {

constexpr uint32_t kBlue = 0xff0000ff, kRed = 0xffff0000, kGreen = 0xff00ff00;

CGFloat ScreenTop() { return NSMaxY([[[NSScreen screens] objectAtIndex:0] frame]); }

using WindowList = WindowServerTest;

TEST_F(WindowList, DescriptionHasBoundsFromTheTopLeftAndTheWindowsState) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 200, 240, 120), [NSColor blueColor], [NSColor redColor]);
  [window setLevel:NSFloatingWindowLevel];
  [window setAlphaValue:0.75];
  NSArray *list = (NSArray *)CGWindowListCreateDescriptionFromArray((CFArrayRef)WindowArray(window));
  ASSERT_EQ([list count], 1u);
  NSDictionary *d = [list objectAtIndex:0];
  CGRect bounds = CGRectZero;
  ASSERT_TRUE(CGRectMakeWithDictionaryRepresentation(
      (CFDictionaryRef)[d objectForKey:(NSString *)kCGWindowBounds], &bounds));
  EXPECT_TRUE(NSEqualRects(bounds, NSMakeRect(100, ScreenTop() - 320, 240, 120)))
      << [NSStringFromRect(bounds) UTF8String];
  EXPECT_EQ([[d objectForKey:(NSString *)kCGWindowNumber] integerValue], [window windowNumber]);
  EXPECT_EQ([[d objectForKey:(NSString *)kCGWindowLayer] integerValue], NSFloatingWindowLevel);
  EXPECT_DOUBLE_EQ([[d objectForKey:(NSString *)kCGWindowAlpha] doubleValue], 0.75);
  EXPECT_TRUE([[d objectForKey:(NSString *)kCGWindowIsOnscreen] boolValue]);
  EXPECT_EQ([[d objectForKey:(NSString *)kCGWindowOwnerPID] intValue], getpid());

  [window orderOut:nil];
  [list release];
  list = (NSArray *)CGWindowListCreateDescriptionFromArray((CFArrayRef)WindowArray(window));
  ASSERT_EQ([list count], 1u);
  EXPECT_FALSE([[[list objectAtIndex:0] objectForKey:(NSString *)kCGWindowIsOnscreen] boolValue]);
  [list release];
}

TEST_F(WindowList, ArraysOfRawIdsAndNumbersInTheirOrderUnknownOnesLeftOut) {
  NSWindow *a = MakeWindow(NSMakeRect(10, 10, 50, 50), [NSColor blueColor], [NSColor redColor]);
  NSWindow *b = MakeWindow(NSMakeRect(80, 10, 50, 50), [NSColor blueColor], [NSColor redColor]);
  // As Quartz callers make them: window ids stored as the pointers.
  NSArray *raw = [[[TVRawValueArray alloc] initWithValues:{(const void *)(uintptr_t)[b windowNumber],
                                                            (const void *)(uintptr_t)[a windowNumber]}]
      autorelease];
  NSArray *list = (NSArray *)CGWindowListCreateDescriptionFromArray((CFArrayRef)raw);
  ASSERT_EQ([list count], 2u);
  EXPECT_EQ([[[list objectAtIndex:0] objectForKey:(NSString *)kCGWindowNumber] integerValue], [b windowNumber]);
  EXPECT_EQ([[[list objectAtIndex:1] objectForKey:(NSString *)kCGWindowNumber] integerValue], [a windowNumber]);
  [list release];

  NSArray *mixed = @[ @(999999), @(-3), @"text", @([a windowNumber]) ];
  list = (NSArray *)CGWindowListCreateDescriptionFromArray((CFArrayRef)mixed);
  ASSERT_EQ([list count], 1u);
  EXPECT_EQ([[[list objectAtIndex:0] objectForKey:(NSString *)kCGWindowNumber] integerValue], [a windowNumber]);
  [list release];

  EXPECT_EQ(CGWindowListCreateDescriptionFromArray(NULL), (CFArrayRef)NULL);
  EXPECT_EQ(CGWindowListCreateDescriptionFromArray((CFArrayRef) @"not an array"), (CFArrayRef)NULL);
  list = (NSArray *)CGWindowListCreateDescriptionFromArray((CFArrayRef) @[]);
  EXPECT_EQ([list count], 0u);
  [list release];
}

TEST_F(WindowList, OnScreenListRunsFrontToBack) {
  NSWindow *back = MakeWindow(NSMakeRect(10, 10, 50, 50), [NSColor blueColor], [NSColor redColor]);
  NSWindow *front = MakeWindow(NSMakeRect(30, 30, 50, 50), [NSColor blueColor], [NSColor redColor]);
  NSWindow *hidden = MakeWindow(NSMakeRect(50, 50, 50, 50), [NSColor blueColor], [NSColor redColor]);
  [hidden orderOut:nil];
  NSArray *onScreen = (NSArray *)CGWindowListCreate(kCGWindowListOptionOnScreenOnly, kCGNullWindowID);
  NSUInteger f = [onScreen indexOfObject:@([front windowNumber])];
  NSUInteger b = [onScreen indexOfObject:@([back windowNumber])];
  ASSERT_NE(f, (NSUInteger)NSNotFound);
  ASSERT_NE(b, (NSUInteger)NSNotFound);
  EXPECT_LT(f, b);
  EXPECT_EQ([onScreen indexOfObject:@([hidden windowNumber])], (NSUInteger)NSNotFound);
  [onScreen release];

  NSArray *all = (NSArray *)CGWindowListCopyWindowInfo(kCGWindowListOptionAll, kCGNullWindowID);
  bool sawHidden = false;
  for (NSDictionary *d in all) {
    sawHidden |= [[d objectForKey:(NSString *)kCGWindowNumber] integerValue] == [hidden windowNumber];
  }
  EXPECT_TRUE(sawHidden);
  [all release];

  NSArray *below = (NSArray *)CGWindowListCreate(kCGWindowListOptionOnScreenBelowWindow, (CGWindowID)[front windowNumber]);
  EXPECT_NE([below indexOfObject:@([back windowNumber])], (NSUInteger)NSNotFound);
  EXPECT_EQ([below indexOfObject:@([front windowNumber])], (NSUInteger)NSNotFound);
  [below release];
}

TEST(WindowGeometryDictionaries, RoundTripAndRejectMalformedOnes) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  CGRect rect = CGRectMake(-1.5, 2.25, 300, 0);
  NSDictionary *d = (NSDictionary *)CGRectCreateDictionaryRepresentation(rect);
  EXPECT_NSEQ([d objectForKey:@"X"], @(-1.5));
  EXPECT_NSEQ([d objectForKey:@"Height"], @(0));
  CGRect back = CGRectNull;
  EXPECT_TRUE(CGRectMakeWithDictionaryRepresentation((CFDictionaryRef)d, &back));
  EXPECT_TRUE(NSEqualRects(back, rect));
  EXPECT_FALSE(CGRectMakeWithDictionaryRepresentation((CFDictionaryRef)d, NullOf<CGRect *>()));
  [d release];

  CGRect untouched = CGRectMake(1, 2, 3, 4);
  EXPECT_FALSE(CGRectMakeWithDictionaryRepresentation(NULL, &untouched));
  EXPECT_FALSE(CGRectMakeWithDictionaryRepresentation((CFDictionaryRef) @{@"X" : @1, @"Y" : @2, @"Width" : @3}, &untouched));
  EXPECT_FALSE(CGRectMakeWithDictionaryRepresentation(
      (CFDictionaryRef) @{@"X" : @1, @"Y" : @2, @"Width" : @"3", @"Height" : @4}, &untouched));
  EXPECT_FALSE(CGRectMakeWithDictionaryRepresentation((CFDictionaryRef) @[ @1 ], &untouched));
  EXPECT_TRUE(NSEqualRects(untouched, NSMakeRect(1, 2, 3, 4)));

  CGPoint point = CGPointZero;
  NSDictionary *p = (NSDictionary *)CGPointCreateDictionaryRepresentation(CGPointMake(7, -8));
  EXPECT_TRUE(CGPointMakeWithDictionaryRepresentation((CFDictionaryRef)p, &point));
  EXPECT_EQ(point.x, 7);
  EXPECT_EQ(point.y, -8);
  [p release];
  CGSize size = CGSizeZero;
  NSDictionary *s = (NSDictionary *)CGSizeCreateDictionaryRepresentation(CGSizeMake(5, 6));
  EXPECT_TRUE(CGSizeMakeWithDictionaryRepresentation((CFDictionaryRef)s, &size));
  EXPECT_EQ(size.width, 5);
  EXPECT_EQ(size.height, 6);
  [s release];
  [pool drain];
}

using WindowCapture = WindowServerTest;

// The picture without framing is the window's own pixels: the marker at
// the top-left, the fill elsewhere, exactly the window's size.
TEST_F(WindowCapture, BareWindowIsItsPixelsExactly) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 200, 100), [NSColor blueColor], [NSColor redColor]);
  PumpEvents();
  CGRect bounds = CGRectMake(100, ScreenTop() - 200, 200, 100);
  CGImageRef image = CGWindowListCreateImageFromArray(bounds, (CFArrayRef)WindowArray(window),
                                                      kCGWindowImageBoundsIgnoreFraming);
  ASSERT_NE(image, (CGImageRef)NULL);
  ImagePixels pixels(image);
  EXPECT_EQ(pixels.width(), 200u);
  EXPECT_EQ(pixels.height(), 100u);
  int wrong = 0;
  for (size_t y = 0; y < 100; y++) {
    for (size_t x = 0; x < 200; x++) {
      wrong += pixels.at(x, y) != ((x < 10 && y < 10) ? kRed : kBlue);
    }
  }
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(CGImageGetAlphaInfo(image), kCGImageAlphaPremultipliedFirst);
  CGImageRelease(image);
}

// Another window on top changes nothing: the picture comes from the
// window's own buffer.
TEST_F(WindowCapture, CoveredWindowIsStillCapturedWhole) {
  NSWindow *under = MakeWindow(NSMakeRect(100, 100, 120, 80), [NSColor blueColor], [NSColor redColor]);
  NSWindow *over = MakeWindow(NSMakeRect(90, 90, 200, 150), [NSColor greenColor], [NSColor greenColor]);
  PumpEvents();
  std::vector<int> stack = XStackingIndexes(@[ under, over ]);
  ASSERT_LT(stack[0], stack[1]);
  CGImageRef image = CGWindowListCreateImageFromArray(CGRectNull, (CFArrayRef)WindowArray(under),
                                                      kCGWindowImageBoundsIgnoreFraming);
  ASSERT_NE(image, (CGImageRef)NULL);
  ImagePixels pixels(image);
  EXPECT_EQ(pixels.at(5, 5), kRed);
  EXPECT_EQ(pixels.at(60, 40), kBlue);
  EXPECT_EQ(pixels.at(119, 79), kBlue);
  CGImageRelease(image);
}

// With framing the window sits inside the margin the rect asks for; the
// margin is clear except for the drawn shadow, which falls below the
// window and fades out before the corners.
TEST_F(WindowCapture, ShadowMarginIsClearOutsideTheDrawnShadow) {
  NSWindow *window = MakeWindow(NSMakeRect(200, 200, 160, 100), [NSColor blueColor], [NSColor redColor]);
  [window setHasShadow:YES];
  PumpEvents();
  // The borderless shadow reach Talvo asks for: 17 left and right, 13
  // above, 21 below.
  CGRect bounds = CGRectMake(200 - 17, ScreenTop() - 300 - 13, 160 + 34, 100 + 34);
  CGImageRef image = CGWindowListCreateImageFromArray(bounds, (CFArrayRef)WindowArray(window),
                                                      kCGWindowImageDefault);
  ASSERT_NE(image, (CGImageRef)NULL);
  ImagePixels pixels(image);
  ASSERT_EQ(pixels.width(), 194u);
  ASSERT_EQ(pixels.height(), 134u);
  EXPECT_EQ(pixels.at(17, 13), kRed);        // the window's own top-left
  EXPECT_EQ(pixels.at(17 + 80, 13 + 50), kBlue);
  EXPECT_EQ(pixels.at(0, 0) >> 24, 0u);      // corners: nothing
  EXPECT_EQ(pixels.at(193, 0) >> 24, 0u);
  EXPECT_EQ(pixels.at(193, 133) >> 24, 0u);
  uint32_t below = pixels.at(17 + 80, 13 + 100 + 3);  // just under the window
  EXPECT_GT(below >> 24, 40u);
  EXPECT_EQ(below & 0x00ffffff, 0u);         // black, premultiplied
  EXPECT_GT(pixels.at(17 + 80, 13 + 100 + 3) >> 24, pixels.at(17 + 80, 13 + 100 + 15) >> 24);
  CGImageRelease(image);

  [window setHasShadow:NO];
  image = CGWindowListCreateImageFromArray(bounds, (CFArrayRef)WindowArray(window), kCGWindowImageDefault);
  ImagePixels plain(image);
  EXPECT_EQ(plain.width(), 194u);
  EXPECT_EQ(plain.at(17 + 80, 13 + 100 + 3), 0u);
  EXPECT_EQ(plain.at(17, 13), kRed);
  CGImageRelease(image);
}

// A window that is partly transparent casts the shadow of what it drew:
// under its drawn square, not under its clear corners.
TEST_F(WindowCapture, ClearWindowsCastTheShadowOfTheirShape) {
  NSWindow *window = MakeWindow(NSMakeRect(300, 300, 100, 100), [NSColor clearColor], [NSColor clearColor]);
  [window setOpaque:NO];
  [window setBackgroundColor:[NSColor clearColor]];
  [window setHasShadow:YES];
  NSView *square = [[[TVMarkedView alloc] initWithFrame:NSMakeRect(30, 30, 40, 40)
                                                   fill:[NSColor redColor]
                                                 marker:[NSColor redColor]] autorelease];
  [[window contentView] addSubview:square];
  [window display];
  PumpEvents();
  CGRect bounds = CGRectMake(300 - 20, ScreenTop() - 400 - 20, 140, 140);
  CGImageRef image = CGWindowListCreateImageFromArray(bounds, (CFArrayRef)WindowArray(window), kCGWindowImageDefault);
  ASSERT_NE(image, (CGImageRef)NULL);
  ImagePixels pixels(image);
  EXPECT_EQ(pixels.at(20 + 50, 20 + 50), kRed);
  EXPECT_EQ(pixels.at(20 + 5, 20 + 5), 0u);           // a clear corner of the window
  uint32_t under = pixels.at(20 + 50, 20 + 72);        // just below the square
  EXPECT_GT(under >> 24, 40u);
  EXPECT_EQ(under & 0x00ffffff, 0u);
  EXPECT_EQ(pixels.at(20 + 50, 20 + 98) >> 24, 0u);    // far below it
  CGImageRelease(image);
}

TEST_F(WindowCapture, NothingForWindowsOffScreenOrBadInput) {
  NSWindow *window = MakeWindow(NSMakeRect(100, 100, 60, 40), [NSColor blueColor], [NSColor redColor]);
  CGRect bounds = CGRectMake(100, ScreenTop() - 140, 60, 40);
  CFArrayRef array = (CFArrayRef)WindowArray(window);
  EXPECT_EQ(CGWindowListCreateImageFromArray(bounds, NULL, 0), (CGImageRef)NULL);
  EXPECT_EQ(CGWindowListCreateImageFromArray(bounds, (CFArrayRef) @[ @(987654) ], 0), (CGImageRef)NULL);
  EXPECT_EQ(CGWindowListCreateImageFromArray(bounds, (CFArrayRef) @"x", 0), (CGImageRef)NULL);
  EXPECT_EQ(CGWindowListCreateImageFromArray(CGRectZero, array, 0), (CGImageRef)NULL);
  EXPECT_EQ(CGWindowListCreateImageFromArray(CGRectMake(NAN, 0, 10, 10), array, 0), (CGImageRef)NULL);
  EXPECT_EQ(CGWindowListCreateImageFromArray(CGRectMake(0, 0, -5, 10), array, 0), (CGImageRef)NULL);
  // A rect beside the window holds none of it.
  EXPECT_EQ(CGWindowListCreateImageFromArray(CGRectMake(500, 10, 20, 20), array,
                                             kCGWindowImageBoundsIgnoreFraming),
            (CGImageRef)NULL);

  [window orderOut:nil];
  EXPECT_EQ(CGWindowListCreateImageFromArray(bounds, array, 0), (CGImageRef)NULL);
  EXPECT_EQ(CGWindowListCreateImageFromArray(bounds, array, kCGWindowImageBoundsIgnoreFraming), (CGImageRef)NULL);

  NSWindow *deferred = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 30, 30)
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:YES];
  EXPECT_EQ(CGWindowListCreateImageFromArray(CGRectNull, (CFArrayRef)WindowArray(deferred), 0), (CGImageRef)NULL);
  [deferred release];
}

// Several windows: the first of the array is drawn uppermost, each where
// it lies on screen.
TEST_F(WindowCapture, SeveralWindowsComposeWithTheFirstOnTop) {
  NSWindow *a = MakeWindow(NSMakeRect(100, 100, 40, 40), [NSColor greenColor], [NSColor greenColor]);
  NSWindow *b = MakeWindow(NSMakeRect(120, 100, 40, 40), [NSColor blueColor], [NSColor blueColor]);
  PumpEvents();
  NSArray *both = @[ @([a windowNumber]), @([b windowNumber]) ];
  CGImageRef image = CGWindowListCreateImageFromArray(CGRectMake(100, ScreenTop() - 140, 60, 40),
                                                      (CFArrayRef)both, kCGWindowImageBoundsIgnoreFraming);
  ASSERT_NE(image, (CGImageRef)NULL);
  ImagePixels pixels(image);
  EXPECT_EQ(pixels.width(), 60u);
  EXPECT_EQ(pixels.at(5, 20), kGreen);
  EXPECT_EQ(pixels.at(30, 20), kGreen);  // overlap: a is first
  EXPECT_EQ(pixels.at(55, 20), kBlue);
  CGImageRelease(image);

  // Framed, each casts its shadow over what lies below it.
  [a setHasShadow:YES];
  [b setHasShadow:YES];
  image = CGWindowListCreateImageFromArray(CGRectMake(90, ScreenTop() - 150, 80, 70), (CFArrayRef)both,
                                           kCGWindowImageDefault);
  ASSERT_NE(image, (CGImageRef)NULL);
  ImagePixels framed(image);
  EXPECT_EQ(framed.width(), 80u);
  EXPECT_EQ(framed.at(10 + 5, 10 + 20), kGreen);
  EXPECT_EQ(framed.at(10 + 30, 10 + 20), kGreen);
  EXPECT_EQ(framed.at(10 + 55, 10 + 20), kBlue);
  EXPECT_EQ(framed.at(0, 0), 0u);
  uint32_t below = framed.at(10 + 45, 10 + 43);
  EXPECT_GT(below >> 24, 40u);
  EXPECT_EQ(below & 0x00ffffff, 0u);
  CGImageRelease(image);
}

}  // namespace
