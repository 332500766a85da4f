// The small views and cells: the matte colour well's rects and pixels, the
// centred text rect (also while editing), the mask image view and the
// transparent scroller.
#import <Talvo/VXMaskImageView.h>
#import <Talvo/VXMatteColorWell.h>
#import <Talvo/VXTransparentScroller.h>
#import <Talvo/VXVerticallyCenteredTextFieldCell.h>

#import "controls/ControlsTestSupport.h"
#import "controls/VXMatteColorWell+Private.h"

using SmallViewsTest = ControlsTest;

#define EXPECT_RECT_EQ(rect, ex, ey, ew, eh)                    \
  EXPECT_TRUE(NSEqualRects((rect), NSMakeRect(ex, ey, ew, eh))) \
      << [NSStringFromRect(rect) UTF8String]

TEST_F(SmallViewsTest, MatteWellInsetsItsSwatchByItsBorderAndFollowsItsFrame) {
  Owned<VXMatteColorWell> well([[VXMatteColorWell alloc] initWithFrame:NSMakeRect(0, 0, 40, 30)]);
  [well.get() setBordered:YES];
  [well.get() setFrame:NSMakeRect(0, 0, 40, 30)];
  EXPECT_RECT_EQ([well.get() _colorRect], 5, 5, 30, 20);
  EXPECT_RECT_EQ([well.get() _borderRect], 5, 4, 30, 20);
  [well.get() setBordered:NO];
  [well.get() setFrame:NSMakeRect(10, 10, 50, 20)];
  EXPECT_RECT_EQ([well.get() _colorRect], 3, 3, 44, 14);
  EXPECT_RECT_EQ([well.get() _borderRect], 3, 2, 44, 14);
  [well.get() setFrame:NSZeroRect];
  EXPECT_RECT_EQ([well.get() _colorRect], 3, 3, -6, -6);
}

TEST_F(SmallViewsTest, MatteWellDrawsSwatchLightLineOutlinesAndGradient) {
  NSWindow *window = Window(NSMakeRect(100, 100, 60, 40), [NSColor blackColor]);
  VXMatteColorWell *well =
      [[[VXMatteColorWell alloc] initWithFrame:NSMakeRect(0, 0, 40, 30)] autorelease];
  [well setBordered:YES];
  [well setFrame:NSMakeRect(0, 0, 40, 30)];
  [well setColor:[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1]];
  [[window contentView] addSubview:well];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(well));
  EXPECT_PIXEL(RepPixel(rep, 20, 15), 255, 0, 0, 255);     // swatch
  EXPECT_PIXEL(RepPixel(rep, 5, 15), 128, 128, 128, 255);  // swatch outline
  EXPECT_PIXEL(RepPixel(rep, 0, 15), 128, 128, 128, 255);  // well outline
  EXPECT_PIXEL(RepPixel(rep, 20, 4), 222, 222, 222, 255);  // light line below
  Pixel bottom = RepPixel(rep, 2, 1);
  Pixel top = RepPixel(rep, 2, 28);
  // Not active: the gradient runs at 90 degrees, 0.7 at the bottom.
  EXPECT_NEAR(bottom.r, 179, 8) << bottom;
  EXPECT_NEAR(top.r, 230, 8) << top;
}

TEST_F(SmallViewsTest, CentredTextRectShrinksToTheTextUnlessEditing) {
  NSWindow *window = Window(NSMakeRect(100, 100, 200, 80));
  NSTextField *field =
      [[[NSTextField alloc] initWithFrame:NSMakeRect(10, 10, 150, 60)] autorelease];
  VXVerticallyCenteredTextFieldCell *cell =
      [[[VXVerticallyCenteredTextFieldCell alloc] initTextCell:@"Centre"] autorelease];
  [cell setEditable:YES];
  [cell setBezeled:YES];
  [field setCell:cell];
  [[window contentView] addSubview:field];
  NSRect bounds = [field bounds];
  NSTextFieldCell *plain = [[[NSTextFieldCell alloc] initTextCell:@"Centre"] autorelease];
  [plain setBezeled:YES];
  NSRect inherited = [plain drawingRectForBounds:bounds];
  CGFloat textHeight = [cell cellSizeForBounds:bounds].height;
  NSRect centred = [cell drawingRectForBounds:bounds];
  ASSERT_LT(textHeight, inherited.size.height);
  EXPECT_DOUBLE_EQ(centred.size.height, textHeight);
  EXPECT_NEAR(centred.origin.y, inherited.origin.y + (inherited.size.height - textHeight) / 2,
              1e-4);
  EXPECT_DOUBLE_EQ(centred.origin.x, inherited.origin.x);

  // Editing: the field editor sits in the centred rect, centred once.
  [window makeFirstResponder:field];
  Pump(0.02);
  NSText *editor = [window fieldEditor:NO forObject:field];
  ASSERT_NE(editor, nil);
  NSView *editorView =
      [editor superview] != field && [editor superview] != nil ? [editor superview] : editor;
  NSRect editorFrame = [field convertRect:[editorView frame] fromView:[editorView superview]];
  EXPECT_NEAR(NSMidY(editorFrame), NSMidY(centred), 2.0)
      << [NSStringFromRect(editorFrame) UTF8String];
  EXPECT_LE(editorFrame.size.height, textHeight + 2.0);
  [window makeFirstResponder:nil];

  // A text as tall as the rect keeps the inherited rect.
  NSRect tight = NSMakeRect(0, 0, 150, textHeight);
  EXPECT_TRUE(NSEqualRects([cell drawingRectForBounds:tight], [plain drawingRectForBounds:tight]));
}

TEST_F(SmallViewsTest, MaskImageViewPaintsTheShapeInItsColourAndNothingWithoutEither) {
  NSWindow *window = Window(NSMakeRect(100, 100, 40, 40));
  VXMaskImageView *view =
      [[[VXMaskImageView alloc] initWithFrame:NSMakeRect(0, 0, 40, 40)] autorelease];
  EXPECT_NSEQ([view fillColor], [NSColor blackColor]);
  EXPECT_TRUE([view allowsVibrancy]);
  [[window contentView] addSubview:view];
  Owned<NSBitmapImageRep> empty(NewViewSnapshot(view));
  EXPECT_PIXEL(RepPixel(empty, 20, 20), 255, 255, 255, 255);

  NSImage *mask = SquareIcon(NSMakeSize(20, 20), 5, [NSColor blackColor]);
  [view setMaskImage:mask];
  [view setFillColor:[NSColor colorWithDeviceRed:0 green:0 blue:1 alpha:1]];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(view));
  // Stretched over the bounds: the shape covers 10 ... 30.
  EXPECT_PIXEL(RepPixel(rep, 20, 20), 0, 0, 255, 255);
  EXPECT_PIXEL(RepPixel(rep, 5, 5), 255, 255, 255, 255);

  [view setFillColor:nil];
  Owned<NSBitmapImageRep> none(NewViewSnapshot(view));
  EXPECT_PIXEL(RepPixel(none, 20, 20), 255, 255, 255, 255);
  [view setMaskImage:nil];
  [view setFillColor:[NSColor redColor]];
  Owned<NSBitmapImageRep> noMask(NewViewSnapshot(view));
  EXPECT_PIXEL(RepPixel(noMask, 20, 20), 255, 255, 255, 255);
  [view setMaskImage:(NSImage *)[NSColor redColor]];  // wrong class: ignored when drawing
  Owned<NSBitmapImageRep> wrong(NewViewSnapshot(view));
  EXPECT_PIXEL(RepPixel(wrong, 20, 20), 255, 255, 255, 255);
}

TEST_F(SmallViewsTest, MaskImageViewRedrawsOnlyForADifferentObject) {
  Owned<VXMaskImageView> view([[VXMaskImageView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)]);
  NSColor *color = [view.get() fillColor];
  [view.get() setNeedsDisplay:NO];
  [view.get() setFillColor:color];
  EXPECT_FALSE([view.get() needsDisplay]);
  [view.get() setFillColor:[NSColor redColor]];
  EXPECT_TRUE([view.get() needsDisplay]);
}

TEST_F(SmallViewsTest, TransparentScrollerDrawsNothingButItsLightKnob) {
  EXPECT_TRUE([VXTransparentScroller isCompatibleWithOverlayScrollers]);
  EXPECT_EQ([VXTransparentScroller preferredScrollerStyle], 1);
  NSWindow *window = Window(NSMakeRect(100, 100, 40, 200), [NSColor colorWithDeviceRed:0
                                                                                 green:1
                                                                                  blue:0
                                                                                 alpha:1]);
  VXTransparentScroller *scroller =
      [[[VXTransparentScroller alloc] initWithFrame:NSMakeRect(0, 0, 18, 200)] autorelease];
  EXPECT_EQ([scroller knobStyle], 2);
  [scroller setEnabled:YES];
  [scroller setFloatValue:0.0 knobProportion:0.25];
  [[window contentView] addSubview:scroller];
  Owned<NSBitmapImageRep> rep(NewViewSnapshot(scroller));
  int backdrop = 0, other = 0;
  for (int y = 0; y < 200; y += 4) {
    Pixel p = RepPixel(rep, 9, y);
    if (p.r < 10 && p.g > 245 && p.b < 10) {
      ++backdrop;
    } else {
      ++other;
    }
  }
  // The slot shows the window's green; only the knob (a quarter) covers it.
  EXPECT_GT(backdrop, 30);
  EXPECT_GT(other, 5);
}
