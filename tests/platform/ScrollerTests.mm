// Scroller and knob styles, and scroll-view tiling by scroller style and by
// the scroller class's width.

#import "platform/CellTestSupport.h"

// A narrow scroller that draws its own parts.
@interface TVThinScroller : NSScroller
@end

@implementation TVThinScroller
// GNUstep's scroller keeps its frame as wide as +scrollerWidth says.
+ (CGFloat)scrollerWidth {
  return 10;
}
+ (CGFloat)scrollerWidthForControlSize:(NSControlSize)size scrollerStyle:(NSScrollerStyle)style {
  return 10;
}
- (void)drawKnobSlotInRect:(NSRect)rect highlight:(BOOL)flag {
}
@end

@interface TVOverlayScroller : NSScroller
@end

@implementation TVOverlayScroller
+ (NSScrollerStyle)preferredScrollerStyle {
  return NSScrollerStyleOverlay;
}
@end

class Scroller : public ControlWindowTest {
 protected:
  NSScrollView *AddScrollView(NSScroller *vertical) {
    NSScrollView *scrollView = Add([[NSScrollView alloc] initWithFrame:NSMakeRect(20, 20, 200, 200)]);
    if (vertical != nil) {
      [scrollView setVerticalScroller:vertical];
      [vertical release];
    }
    [scrollView setHasVerticalScroller:YES];
    NSView *document = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 150, 1000)];
    [scrollView setDocumentView:document];
    [document release];
    [scrollView tile];
    return scrollView;
  }
};

TEST_F(Scroller, ClassWidthsAndStyles) {
  CGFloat legacy = [NSScroller scrollerWidthForControlSize:NSRegularControlSize];
  EXPECT_EQ([NSScroller scrollerWidthForControlSize:NSRegularControlSize
                                      scrollerStyle:NSScrollerStyleLegacy], legacy);
  EXPECT_EQ([NSScroller scrollerWidthForControlSize:NSRegularControlSize
                                      scrollerStyle:NSScrollerStyleOverlay], legacy);
  EXPECT_EQ([NSScroller preferredScrollerStyle], NSScrollerStyleLegacy);
  EXPECT_TRUE([NSScroller isCompatibleWithOverlayScrollers]);
  EXPECT_FALSE([TVThinScroller isCompatibleWithOverlayScrollers]);
  EXPECT_TRUE([TVOverlayScroller isCompatibleWithOverlayScrollers]);
}

TEST_F(Scroller, StylesDefaultToTheClassAndRefuseBadValues) {
  Owned<NSScroller> plain([[NSScroller alloc] initWithFrame:NSMakeRect(0, 0, 15, 100)]);
  Owned<TVOverlayScroller> overlay([[TVOverlayScroller alloc] initWithFrame:NSMakeRect(0, 0, 15, 100)]);
  EXPECT_EQ([plain.get() scrollerStyle], NSScrollerStyleLegacy);
  EXPECT_EQ([overlay.get() scrollerStyle], NSScrollerStyleOverlay);
  [plain.get() setScrollerStyle:NSScrollerStyleOverlay];
  [plain.get() setScrollerStyle:7];
  EXPECT_EQ([plain.get() scrollerStyle], NSScrollerStyleOverlay);
  EXPECT_EQ([plain.get() knobStyle], NSScrollerKnobStyleDefault);
  [plain.get() setKnobStyle:NSScrollerKnobStyleLight];
  [plain.get() setKnobStyle:-1];
  EXPECT_EQ([plain.get() knobStyle], NSScrollerKnobStyleLight);
}

TEST_F(Scroller, LegacyTilingUsesTheScrollerClassWidth) {
  NSScrollView *scrollView = AddScrollView([[TVThinScroller alloc] initWithFrame:NSMakeRect(0, 0, 10, 100)]);
  NSRect scroller = [[scrollView verticalScroller] frame];
  NSRect content = [[scrollView contentView] frame];
  EXPECT_EQ(NSWidth(scroller), 10);
  // Side by side, with at most GNUstep's one-point separator between.
  BOOL trailing = NSMinX(scroller) >= NSMaxX(content);
  CGFloat gap = trailing ? NSMinX(scroller) - NSMaxX(content) : NSMinX(content) - NSMaxX(scroller);
  EXPECT_GE(gap, 0);
  EXPECT_LE(gap, 1);
  EXPECT_GE(NSWidth(content), 200 - 10 - 1 - 4);  // less any border
}

TEST_F(Scroller, TheDefaultScrollerTilesAsBefore) {
  NSScrollView *scrollView = AddScrollView(nil);
  NSRect scroller = [[scrollView verticalScroller] frame];
  EXPECT_EQ(NSWidth(scroller), [NSScroller scrollerWidth]);
  EXPECT_FALSE(NSIntersectsRect(scroller, [[scrollView contentView] frame]));
}

TEST_F(Scroller, OverlayScrollersFloatOverFullWidthContent) {
  NSScrollView *scrollView = AddScrollView(nil);
  CGFloat legacyWidth = NSWidth([[scrollView contentView] frame]);
  [scrollView setScrollerStyle:NSScrollerStyleOverlay];
  EXPECT_EQ([scrollView scrollerStyle], NSScrollerStyleOverlay);
  EXPECT_EQ([[scrollView verticalScroller] scrollerStyle], NSScrollerStyleOverlay);
  NSRect content = [[scrollView contentView] frame];
  NSRect scroller = [[scrollView verticalScroller] frame];
  EXPECT_GT(NSWidth(content), legacyWidth + [NSScroller scrollerWidth] - 0.5);
  EXPECT_TRUE(NSContainsRect(content, scroller) || NSIntersectsRect(content, scroller));
  NSArray *subviews = [scrollView subviews];
  EXPECT_GT([subviews indexOfObjectIdenticalTo:[scrollView verticalScroller]],
            [subviews indexOfObjectIdenticalTo:[scrollView contentView]]);
  // And back.
  [scrollView setScrollerStyle:NSScrollerStyleLegacy];
  EXPECT_EQ(NSWidth([[scrollView contentView] frame]), legacyWidth);
}

TEST_F(Scroller, AnOverlayScrollerClassTilesAsOverlay) {
  NSScrollView *scrollView = AddScrollView([[TVOverlayScroller alloc] initWithFrame:NSMakeRect(0, 0, 15, 100)]);
  NSRect content = [[scrollView contentView] frame];
  NSRect scroller = [[scrollView verticalScroller] frame];
  EXPECT_TRUE(NSIntersectsRect(content, scroller));
}

TEST_F(Scroller, KnobStylesPropagateAndDrawTheKnob) {
  NSScrollView *scrollView = AddScrollView(nil);
  [scrollView setScrollerKnobStyle:NSScrollerKnobStyleDark];
  NSScroller *scroller = [scrollView verticalScroller];
  EXPECT_EQ([scroller knobStyle], NSScrollerKnobStyleDark);
  EXPECT_EQ([scrollView scrollerKnobStyle], NSScrollerKnobStyleDark);
  [scrollView display];
  NSRect knob = [scroller rectForPart:NSScrollerKnob];
  ASSERT_FALSE(NSIsEmptyRect(knob));
  NSBitmapImageRep *dark = Grab(scroller);
  RGB darkKnob = PixelAt(dark, (int)NSMidX(knob), (int)NSMidY(knob));
  [scroller setKnobStyle:NSScrollerKnobStyleLight];
  NSBitmapImageRep *light = Grab(scroller);
  RGB lightKnob = PixelAt(light, (int)NSMidX(knob), (int)NSMidY(knob));
  EXPECT_LT(darkKnob.r + 60, lightKnob.r) << darkKnob.r << " vs " << lightKnob.r;
}
