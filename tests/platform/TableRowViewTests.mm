// Row views of a real table in a real window: asked of the delegate for the
// visible rows, placed over their rows, drawn under the cells in place of
// GNUstep's selection, and kept in step with the selection (by code and by
// the mouse), read back as pixels.

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>

#import "GraphicsTestSupport.h"
#import "support/TestSupport.h"
#import "platform/QuartzCore/TVAnimationClock.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// Selection in pure red, drawn at `alpha` through the CG context (as a
// fading selection draws it); logs its selected changes.
@interface TVRedRowView : NSTableRowView {
 @public
  CGFloat _alpha;
  NSMutableArray *_changes;
}
@end

@implementation TVRedRowView
- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _alpha = 1.0;
    _changes = [NSMutableArray new];
  }
  return self;
}
- (void)dealloc {
  [_changes release];
  [super dealloc];
}
- (void)setSelected:(BOOL)selected {
  [_changes addObject:@(selected)];
  [super setSelected:selected];
}
- (void)drawSelectionInRect:(NSRect)dirtyRect {
  CGContextRef port = (CGContextRef)[[NSGraphicsContext currentContext] graphicsPort];
  CGContextSaveGState(port);
  CGContextSetAlpha(port, _alpha);
  [[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1] set];
  NSRectFillUsingOperation(NSIntersectionRect([self bounds], dirtyRect), NSCompositeSourceOver);
  CGContextRestoreGState(port);
}
@end

// A selection that fades in as a toolkit row view makes it: backgroundAlpha
// animated through the animator in a 0.3 s group when selected, dropped at
// once when deselected, the selection drawn at that alpha.
@interface TVFadingRowView : NSTableRowView {
  double _backgroundAlpha;
}
@property(nonatomic, assign) double backgroundAlpha;
@end

@implementation TVFadingRowView
+ (id)defaultAnimationForKey:(NSString *)key {
  if ([key isEqualToString:@"backgroundAlpha"]) {
    return [CABasicAnimation animation];
  }
  return [super defaultAnimationForKey:key];
}
- (double)backgroundAlpha {
  return _backgroundAlpha;
}
- (void)setBackgroundAlpha:(double)alpha {
  if (alpha == _backgroundAlpha) {
    return;
  }
  _backgroundAlpha = alpha;
  [self setNeedsDisplay:YES];
}
- (void)setSelected:(BOOL)selected {
  if ([self window] == nil) {
    [self setBackgroundAlpha:selected ? 1.0 : 0.0];
    [super setSelected:selected];
    return;
  }
  [NSAnimationContext beginGrouping];
  [[NSAnimationContext currentContext] setDuration:selected ? 0.3 : 0.0];
  [[self animator] setBackgroundAlpha:selected ? 1.0 : 0.0];
  [super setSelected:selected];
  [NSAnimationContext endGrouping];
}
- (void)drawSelectionInRect:(NSRect)dirtyRect {
}
- (void)drawRect:(NSRect)dirtyRect {
  [super drawRect:dirtyRect];
  if (_backgroundAlpha > 0) {
    [NSGraphicsContext saveGraphicsState];
    CGContextSetAlpha((CGContextRef)[[NSGraphicsContext currentContext] graphicsPort],
                      (CGFloat)_backgroundAlpha);
    [[NSColor colorWithDeviceRed:1 green:0 blue:0 alpha:1] set];
    NSRectFillUsingOperation(NSIntersectionRect([self bounds], dirtyRect), NSCompositeSourceOver);
    [NSGraphicsContext restoreGraphicsState];
  }
}
@end

@interface TVFadingRowSource : NSObject
@end

@implementation TVFadingRowSource
- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
  return 4;
}
- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)c row:(NSInteger)r {
  return @"";
}
- (NSTableRowView *)tableView:(NSTableView *)table rowViewForRow:(NSInteger)row {
  return [[[TVFadingRowView alloc] initWithFrame:NSZeroRect] autorelease];
}
@end

// A cell that paints the left 10 points of its frame black: what a row's
// content looks like, to see that row views draw under it.
@interface TVBlackStripCell : NSTextFieldCell
@end

@implementation TVBlackStripCell
- (void)drawWithFrame:(NSRect)frame inView:(NSView *)view {
  [[NSColor blackColor] set];
  NSRectFill(NSMakeRect(NSMinX(frame), NSMinY(frame), 10, NSHeight(frame)));
}
@end

// Four rows; row views from the delegate (or none).
@interface TVRowSource : NSObject {
 @public
  BOOL _giveNil;
  NSMutableArray *_asked;
  NSMutableArray *_added;
  NSMutableArray *_removed;
  NSMutableArray *_made;
}
@end

@implementation TVRowSource
- (instancetype)init {
  self = [super init];
  if (self != nil) {
    _asked = [NSMutableArray new];
    _added = [NSMutableArray new];
    _removed = [NSMutableArray new];
    _made = [NSMutableArray new];
  }
  return self;
}
- (void)dealloc {
  [_made release];
  [_removed release];
  [_added release];
  [_asked release];
  [super dealloc];
}
- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
  return 4;
}
- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)c row:(NSInteger)r {
  return @"";
}
- (NSTableRowView *)tableView:(NSTableView *)table rowViewForRow:(NSInteger)row {
  [_asked addObject:@(row)];
  if (_giveNil) {
    return nil;
  }
  TVRedRowView *view = [[[TVRedRowView alloc] initWithFrame:NSZeroRect] autorelease];
  [_made addObject:view];
  return view;
}
- (void)tableView:(NSTableView *)table didAddRowView:(NSTableRowView *)rowView forRow:(NSInteger)row {
  [_added addObject:@(row)];
}
- (void)tableView:(NSTableView *)table
    didRemoveRowView:(NSTableRowView *)rowView
              forRow:(NSInteger)row {
  [_removed addObject:@(row)];
}
@end

// The same, without the row-view method.
@interface TVPlainRowSource : NSObject
@end

@implementation TVPlainRowSource
- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
  return 4;
}
- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)c row:(NSInteger)r {
  return @"";
}
@end

namespace {

class TableRowViews : public PooledTest {
 protected:
  void SetUp() override {
    PooledTest::SetUp();
    if (!HasWindowServer()) {
      GTEST_SKIP() << "needs a window server";
    }
    window_.reset([[NSWindow alloc] initWithContentRect:NSMakeRect(80, 200, 240, 120)
                                              styleMask:NSTitledWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO]);
    [window_.get() setReleasedWhenClosed:NO];
    table_.reset([[NSTableView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)]);
    Owned<NSTableColumn> column([[NSTableColumn alloc] initWithIdentifier:@"c"]);
    [column.get() setWidth:200];
    [column.get() setDataCell:[[[TVBlackStripCell alloc] initTextCell:@""] autorelease]];
    [table_.get() addTableColumn:column];
    [table_.get() setBackgroundColor:[NSColor whiteColor]];
    [table_.get() setGridStyleMask:NSTableViewGridNone];
    [table_.get() setIntercellSpacing:NSMakeSize(0, 0)];
    [[window_.get() contentView] addSubview:table_];
    [window_.get() makeKeyAndOrderFront:nil];
  }
  void TearDown() override {
    [table_.get() setDelegate:nil];
    [table_.get() setDataSource:nil];
    [window_.get() close];
    table_.reset();
    window_.reset();
    source_.reset();
    PooledTest::TearDown();
  }
  // The table does not retain its delegate: the fixture keeps it.
  void Use(id source) {
    source_.reset([source retain]);
    [table_.get() setDataSource:source];
    [table_.get() setDelegate:source];
    [table_.get() reloadData];
    [table_.get() display];
    PumpEvents();
  }
  // The table's pixels, rows from the top (the table is flipped).
  NSBitmapImageRep *NewSnapshot() {
    [table_.get() display];
    [table_.get() lockFocus];
    NSBitmapImageRep *rep =
        [[NSBitmapImageRep alloc] initWithFocusedViewRect:[table_.get() bounds]];
    [table_.get() unlockFocus];
    return rep;
  }
  // Pixel in the middle of `row`, at `x` (the cells' black strip is x < 10).
  Pixel RowPixel(NSBitmapImageRep *rep, NSInteger row, int x = 50) {
    NSRect rect = [table_.get() rectOfRow:row];
    int yFromTop = (int)NSMidY(rect);
    return RepPixel(rep, x, (int)[rep pixelsHigh] - 1 - yFromTop);
  }
  void Select(NSInteger row) {
    [table_.get() selectRowIndexes:[NSIndexSet indexSetWithIndex:(NSUInteger)row]
              byExtendingSelection:NO];
  }

  Owned<NSWindow> window_;
  Owned<NSTableView> table_;
  Owned<NSObject> source_;
};

TEST_F(TableRowViews, TheDelegateIsAskedForEachVisibleRowAndItsViewsArePlaced) {
  Owned<TVRowSource> source([TVRowSource new]);
  Use(source);
  EXPECT_NSEQ(source.get()->_asked, (@[ @0, @1, @2, @3 ]));
  EXPECT_NSEQ(source.get()->_added, (@[ @0, @1, @2, @3 ]));
  for (NSInteger row = 0; row < 4; row++) {
    NSTableRowView *rowView = [table_.get() rowViewAtRow:row makeIfNecessary:NO];
    ASSERT_TRUE(rowView != nil);
    EXPECT_EQ(rowView, [source.get()->_made objectAtIndex:(NSUInteger)row]);
    EXPECT_EQ([rowView superview], table_.get());
    EXPECT_TRUE(NSEqualRects([rowView frame], [table_.get() rectOfRow:row]));
    EXPECT_FALSE([rowView isSelected]);
  }
  EXPECT_TRUE([table_.get() rowViewAtRow:4 makeIfNecessary:YES] == nil);
  EXPECT_TRUE([table_.get() rowViewAtRow:-1 makeIfNecessary:YES] == nil);
  // Clicks pass through row views to the table.
  NSPoint inRow = NSMakePoint(20, NSMidY([table_.get() rectOfRow:2]));
  EXPECT_EQ([table_.get() hitTest:[table_.get() convertPoint:inRow toView:[table_.get() superview]]],
            table_.get());
  __block NSInteger enumerated = 0;
  [table_.get() enumerateAvailableRowViewsUsingBlock:^(NSTableRowView *rowView, NSInteger row) {
    EXPECT_EQ(row, enumerated);
    enumerated++;
  }];
  EXPECT_EQ(enumerated, 4);
  // Reloading drops them; the next draw asks again.
  [table_.get() reloadData];
  EXPECT_NSEQ(source.get()->_removed, (@[ @0, @1, @2, @3 ]));
  EXPECT_TRUE([table_.get() rowViewAtRow:0 makeIfNecessary:NO] == nil);
  [table_.get() display];
  EXPECT_EQ([source.get()->_asked count], 8u);
}

TEST_F(TableRowViews, SelectionIsKeptInStepByCodeAndByTheMouse) {
  Owned<TVRowSource> source([TVRowSource new]);
  Use(source);
  TVRedRowView *row1 = (TVRedRowView *)[table_.get() rowViewAtRow:1 makeIfNecessary:NO];
  TVRedRowView *row2 = (TVRedRowView *)[table_.get() rowViewAtRow:2 makeIfNecessary:NO];
  Select(1);
  EXPECT_TRUE([row1 isSelected]);
  EXPECT_NSEQ(row1->_changes, (@[ @(YES) ]));
  Select(2);
  EXPECT_FALSE([row1 isSelected]);
  EXPECT_TRUE([row2 isSelected]);
  EXPECT_TRUE([row1 isNextRowSelected]);
  EXPECT_FALSE([row1 isPreviousRowSelected]);
  [table_.get() deselectAll:nil];
  EXPECT_FALSE([row2 isSelected]);
  // A click on row 3.
  NSPoint point = NSMakePoint(20, NSMidY([table_.get() rectOfRow:3]));
  // The table's mouseDown: tracks until the up, which must be queued first.
  NSPoint inWindow = [table_.get() convertPoint:point toView:nil];
  [NSApp postEvent:[NSEvent mouseEventWithType:NSLeftMouseUp
                                      location:inWindow
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:[window_.get() windowNumber]
                                       context:nil
                                   eventNumber:0
                                    clickCount:1
                                      pressure:1]
           atStart:NO];
  SendMouseEvent(table_, NSLeftMouseDown, point);
  PumpEvents();
  ASSERT_EQ([table_.get() selectedRow], 3);
  EXPECT_TRUE([[table_.get() rowViewAtRow:3 makeIfNecessary:NO] isSelected]);
  EXPECT_FALSE([row2 isSelected]);
}

TEST_F(TableRowViews, RowViewsDrawUnderTheCellsInPlaceOfTheTablesSelection) {
  Owned<TVRowSource> source([TVRowSource new]);
  Use(source);
  Select(1);
  Owned<NSBitmapImageRep> rep(NewSnapshot());
  EXPECT_PIXEL(RowPixel(rep, 1), 255, 0, 0, 255);  // the row view's selection
  EXPECT_PIXEL(RowPixel(rep, 1, 5), 0, 0, 0, 255);  // the cell, drawn over it
  EXPECT_PIXEL(RowPixel(rep, 0), 255, 255, 255, 255);
  EXPECT_PIXEL(RowPixel(rep, 2), 255, 255, 255, 255);
  // Drawn at an alpha through the CG context: half red over the white background.
  TVRedRowView *row1 = (TVRedRowView *)[table_.get() rowViewAtRow:1 makeIfNecessary:NO];
  row1->_alpha = 0.5;
  [row1 setNeedsDisplay:YES];
  rep.reset(NewSnapshot());
  EXPECT_PIXEL_NEAR(RowPixel(rep, 1), 3, 255, 128, 128, 255);
  // Style None: no selection at all.
  [row1 setSelectionHighlightStyle:NSTableViewSelectionHighlightStyleNone];
  rep.reset(NewSnapshot());
  EXPECT_PIXEL(RowPixel(rep, 1), 255, 255, 255, 255);
}

TEST_F(TableRowViews, PlainRowViewsDrawTheStandardSelectionAndABackground) {
  Owned<TVRowSource> source([TVRowSource new]);
  source.get()->_giveNil = YES;
  Use(source);
  NSTableRowView *row0 = [table_.get() rowViewAtRow:0 makeIfNecessary:NO];
  ASSERT_TRUE(row0 != nil);
  EXPECT_EQ([row0 class], [NSTableRowView class]);
  EXPECT_TRUE([row0 isFlipped]);
  EXPECT_EQ([row0 numberOfColumns], 1);
  // Emphasized while the table is the key window's first responder.
  [window_.get() makeFirstResponder:table_];
  Select(0);
  Owned<NSBitmapImageRep> rep(NewSnapshot());
  EXPECT_TRUE([row0 isEmphasized]);
  EXPECT_EQ([row0 interiorBackgroundStyle], NSBackgroundStyleEmphasized);
  NSColor *expected = [[NSColor selectedControlColor]
      colorUsingColorSpaceName:NSDeviceRGBColorSpace];
  EXPECT_PIXEL(RowPixel(rep, 0), (int)lround([expected redComponent] * 255),
               (int)lround([expected greenComponent] * 255),
               (int)lround([expected blueComponent] * 255), 255);
  [window_.get() makeFirstResponder:nil];
  rep.reset(NewSnapshot());
  EXPECT_FALSE([row0 isEmphasized]);
  EXPECT_EQ([row0 interiorBackgroundStyle], NSBackgroundStyleNormal);
  expected = [[NSColor secondarySelectedControlColor] colorUsingColorSpaceName:NSDeviceRGBColorSpace];
  EXPECT_PIXEL(RowPixel(rep, 0), (int)lround([expected redComponent] * 255),
               (int)lround([expected greenComponent] * 255),
               (int)lround([expected blueComponent] * 255), 255);
  // A background colour of its own.
  NSTableRowView *row2 = [table_.get() rowViewAtRow:2 makeIfNecessary:NO];
  [row2 setBackgroundColor:[NSColor colorWithDeviceRed:0 green:0 blue:1 alpha:1]];
  rep.reset(NewSnapshot());
  EXPECT_PIXEL(RowPixel(rep, 2), 0, 0, 255, 255);
  EXPECT_PIXEL(RowPixel(rep, 3), 255, 255, 255, 255);
}

TEST_F(TableRowViews, WithoutTheDelegateMethodTheTableHasNoRowViews) {
  Owned<TVPlainRowSource> source([TVPlainRowSource new]);
  Use(source);
  Select(1);
  EXPECT_TRUE([table_.get() rowViewAtRow:1 makeIfNecessary:YES] == nil);
  EXPECT_EQ([[table_.get() subviews] count], 0u);
  Owned<NSBitmapImageRep> rep(NewSnapshot());
  // GNUstep's own selection fill is still there.
  Pixel selected = RowPixel(rep, 1);
  EXPECT_FALSE(selected == (Pixel{255, 255, 255, 255}));
}

TEST_F(TableRowViews, AFadingSelectionRunsInsideTheTable) {
  TVAnimationClockSetManual(YES);
  Owned<TVFadingRowSource> source([TVFadingRowSource new]);
  Use(source);
  Select(1);
  TVFadingRowView *row1 = (TVFadingRowView *)[table_.get() rowViewAtRow:1 makeIfNecessary:NO];
  ASSERT_TRUE([row1 isKindOfClass:[TVFadingRowView class]]);
  EXPECT_EQ([row1 backgroundAlpha], 0.0);  // the fade starts from nothing
  TVAnimationClockAdvance(0.15);
  double halfway = [row1 backgroundAlpha];
  EXPECT_GT(halfway, 0.2);
  EXPECT_LT(halfway, 0.95);  // the default curve is past 0.5 at half time
  Owned<NSBitmapImageRep> rep(NewSnapshot());
  Pixel mid = RowPixel(rep, 1);
  EXPECT_EQ(mid.r, 255);
  EXPECT_NEAR(mid.g, 255 * (1 - halfway), 3);  // red at the current alpha over white
  EXPECT_PIXEL(RowPixel(rep, 1, 5), 0, 0, 0, 255);  // the cell stays on top
  TVAnimationClockAdvance(0.2);
  EXPECT_EQ([row1 backgroundAlpha], 1.0);
  rep.reset(NewSnapshot());
  EXPECT_PIXEL(RowPixel(rep, 1), 255, 0, 0, 255);
  // Deselection is immediate.
  [table_.get() deselectAll:nil];
  EXPECT_EQ([row1 backgroundAlpha], 0.0);
  rep.reset(NewSnapshot());
  EXPECT_PIXEL(RowPixel(rep, 1), 255, 255, 255, 255);
  EXPECT_EQ(TVAnimationClockActiveCount(), 0u);
  TVAnimationClockSetManual(NO);
}

TEST_F(TableRowViews, RowViewsOutsideAWindowAndBadInputDoNotRaise) {
  Owned<NSTableRowView> loose([[NSTableRowView alloc] initWithFrame:NSMakeRect(0, 0, 50, 10)]);
  // AppKit's defaults.
  EXPECT_FALSE([loose.get() isEmphasized]);
  EXPECT_FALSE([loose.get() isSelected]);
  EXPECT_FALSE([loose.get() isFloating]);
  EXPECT_FALSE([loose.get() isGroupRowStyle]);
  EXPECT_FALSE([loose.get() isTargetForDropOperation]);
  EXPECT_EQ([loose.get() selectionHighlightStyle], NSTableViewSelectionHighlightStyleRegular);
  EXPECT_EQ([loose.get() interiorBackgroundStyle], NSBackgroundStyleNormal);
  EXPECT_EQ([loose.get() numberOfColumns], 0);
  EXPECT_TRUE([loose.get() backgroundColor] == nil);
  [loose.get() setSelected:YES];
  [loose.get() setBackgroundColor:nil];
  [loose.get() setBackgroundColor:(NSColor *)@"not a colour"];
  EXPECT_TRUE([loose.get() backgroundColor] == nil);
  EXPECT_TRUE([loose.get() hitTest:NSMakePoint(5, 5)] == nil);
  [table_.get() enumerateAvailableRowViewsUsingBlock:NullOf<void (^)(NSTableRowView *, NSInteger)>()];
  EXPECT_TRUE([table_.get() rowViewAtRow:NSIntegerMax makeIfNecessary:YES] == nil);
}

}  // namespace
