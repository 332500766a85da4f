// VXAnimatedSelectionTableRowView: the fading selection inside a real table
// on the manual clock, read back as pixels; the row view outside a window.
#import <Talvo/VXAnimatedSelectionTableRowView.h>

#import "controls/ControlsTestSupport.h"
#import "platform/QuartzCore/TVAnimationClock.h"

// Paints its selection red, as an application's subclass would.
@interface TVRedSelectionRowView : VXAnimatedSelectionTableRowView
@end

@implementation TVRedSelectionRowView
- (void)drawAnimatedSelectionInRect:(NSRect)dirtyRect {
  [[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1] set];
  NSRectFillUsingOperation(NSIntersectionRect([self bounds], dirtyRect), NSCompositeSourceOver);
}
@end

// Four empty rows, each with a row view of `rowViewClass`.
@interface TVRowViewSource : NSObject {
 @public
  Class _rowViewClass;
}
@end

@implementation TVRowViewSource
- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
  return 4;
}
- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)c row:(NSInteger)r {
  return @"";
}
- (NSTableRowView *)tableView:(NSTableView *)table rowViewForRow:(NSInteger)row {
  return [[[_rowViewClass alloc] initWithFrame:NSZeroRect] autorelease];
}
@end

namespace {

class AnimatedSelectionRowViewTest : public ControlsTest {
 protected:
  void TearDown() override {
    [table_.get() setDelegate:nil];
    [table_.get() setDataSource:nil];
    table_.reset();
    source_.reset();
    ControlsTest::TearDown();
  }
  void MakeTable(Class rowViewClass) {
    NSWindow *window = Window(NSMakeRect(80, 200, 240, 120));
    table_.reset([[NSTableView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)]);
    Owned<NSTableColumn> column([[NSTableColumn alloc] initWithIdentifier:@"c"]);
    [column.get() setWidth:200];
    [table_.get() addTableColumn:column];
    [table_.get() setBackgroundColor:[NSColor whiteColor]];
    [table_.get() setGridStyleMask:NSTableViewGridNone];
    [table_.get() setIntercellSpacing:NSMakeSize(0, 0)];
    [[window contentView] addSubview:table_];
    source_.reset([TVRowViewSource new]);
    source_.get()->_rowViewClass = rowViewClass;
    [table_.get() setDataSource:source_.get()];
    [table_.get() setDelegate:source_.get()];
    [table_.get() reloadData];
    [table_.get() display];
    Pump(0.02);
  }
  VXAnimatedSelectionTableRowView *RowView(NSInteger row) {
    return (VXAnimatedSelectionTableRowView *)[table_.get() rowViewAtRow:row makeIfNecessary:NO];
  }
  // The red channel in the middle of `row` (rows from the top).
  Pixel RowPixel(NSInteger row) {
    Owned<NSBitmapImageRep> rep(NewViewSnapshot(table_));
    NSRect rect = [table_.get() rectOfRow:row];
    return RepPixel(rep, 100, (int)[rep.get() pixelsHigh] - 1 - (int)NSMidY(rect));
  }
  void Select(NSInteger row) {
    [table_.get() selectRowIndexes:[NSIndexSet indexSetWithIndex:(NSUInteger)row]
              byExtendingSelection:NO];
  }

  Owned<NSTableView> table_;
  Owned<TVRowViewSource> source_;
};

}  // namespace

TEST_F(AnimatedSelectionRowViewTest, AlphaAnimatesThroughTheAnimatorAndRedrawsOnChange) {
  EXPECT_TRUE([[VXAnimatedSelectionTableRowView defaultAnimationForKey:@"backgroundAlpha"]
      isKindOfClass:[CABasicAnimation class]]);
  EXPECT_EQ([VXAnimatedSelectionTableRowView defaultAnimationForKey:@"somethingElse"], nil);
  EXPECT_NE([VXAnimatedSelectionTableRowView defaultAnimationForKey:@"frame"], nil);
  Owned<VXAnimatedSelectionTableRowView> row(
      [[VXAnimatedSelectionTableRowView alloc] initWithFrame:NSMakeRect(0, 0, 50, 20)]);
  EXPECT_EQ([row.get() backgroundAlpha], 0.0);
  [row.get() setNeedsDisplay:NO];
  [row.get() setBackgroundAlpha:0.0];
  EXPECT_FALSE([row.get() needsDisplay]);
  [row.get() setBackgroundAlpha:0.5];
  EXPECT_TRUE([row.get() needsDisplay]);
}

TEST_F(AnimatedSelectionRowViewTest, OutsideAWindowTheSelectionShowsAndGoesAtOnce) {
  Owned<VXAnimatedSelectionTableRowView> row(
      [[VXAnimatedSelectionTableRowView alloc] initWithFrame:NSMakeRect(0, 0, 50, 20)]);
  [row.get() setSelected:YES];
  EXPECT_EQ([row.get() backgroundAlpha], 1.0);
  EXPECT_TRUE([row.get() isSelected]);
  [row.get() setSelected:NO];
  EXPECT_EQ([row.get() backgroundAlpha], 0.0);
  EXPECT_FALSE([row.get() isSelected]);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
}

TEST_F(AnimatedSelectionRowViewTest, SelectionFadesInOverPointThreeSecondsAndLeavesAtOnce) {
  MakeTable([TVRedSelectionRowView class]);
  ASSERT_NE(RowView(1), nil);
  EXPECT_PIXEL(RowPixel(1), 255, 255, 255, 255);
  Select(1);
  EXPECT_TRUE([RowView(1) isSelected]);
  Advance(0.15);
  double midway = [RowView(1) backgroundAlpha];
  EXPECT_GT(midway, 0.05);
  EXPECT_LT(midway, 0.95);
  Pixel half = RowPixel(1);
  EXPECT_EQ(half.r, 255);
  EXPECT_GT(half.g, 20) << half;
  EXPECT_LT(half.g, 235) << half;
  Advance(0.2);
  RunLoopTurn();
  EXPECT_EQ([RowView(1) backgroundAlpha], 1.0);
  EXPECT_PIXEL(RowPixel(1), 255, 0, 0, 255);
  EXPECT_PIXEL(RowPixel(2), 255, 255, 255, 255);

  // Another row: the old selection goes at once, the new one fades in.
  Select(2);
  EXPECT_EQ([RowView(1) backgroundAlpha], 0.0);
  EXPECT_PIXEL(RowPixel(1), 255, 255, 255, 255);
  Advance(0.4);
  RunLoopTurn();
  EXPECT_PIXEL(RowPixel(2), 255, 0, 0, 255);
}

TEST_F(AnimatedSelectionRowViewTest, TheStandardSelectionIsNotDrawn) {
  MakeTable([VXAnimatedSelectionTableRowView class]);
  Select(0);
  Advance(0.4);
  RunLoopTurn();
  EXPECT_EQ([RowView(0) backgroundAlpha], 1.0);
  // No subclass paints: the row stays as the table's background.
  EXPECT_PIXEL(RowPixel(0), 255, 255, 255, 255);
}
