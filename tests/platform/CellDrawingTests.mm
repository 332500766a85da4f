// Button cells draw through their rect and part methods; controls highlight
// through -highlight:withFrame:inView:; text field cells keep the field
// editor where editing put it.

#import "platform/CellTestSupport.h"

// Logs which part methods run, with their rects; rect overrides optional.
@interface TVPartsButtonCell : NSButtonCell {
 @public
  NSMutableArray *_log;
  BOOL _customTitleRect;
  BOOL _customImageRect;
  NSRect _imageFrame;
  NSRect _titleFrame;
}
@end

@implementation TVPartsButtonCell
- (void)dealloc {
  [_log release];
  [super dealloc];
}
- (void)note:(NSString *)entry {
  if (_log == nil) {
    _log = [NSMutableArray new];
  }
  [_log addObject:entry];
}
- (NSRect)titleRectForBounds:(NSRect)bounds {
  if (_customTitleRect) {
    // The right half, full height.
    return NSMakeRect(NSMidX(bounds), NSMinY(bounds), NSWidth(bounds) / 2, NSHeight(bounds));
  }
  return [super titleRectForBounds:bounds];
}
- (NSRect)imageRectForBounds:(NSRect)bounds {
  if (_customImageRect) {
    return NSMakeRect(NSMinX(bounds), NSMinY(bounds), 20, 20);
  }
  return [super imageRectForBounds:bounds];
}
- (void)drawBezelWithFrame:(NSRect)frame inView:(NSView *)view {
  [self note:@"bezel"];
  [super drawBezelWithFrame:frame inView:view];
}
- (void)drawImage:(NSImage *)image withFrame:(NSRect)frame inView:(NSView *)view {
  [self note:@"image"];
  _imageFrame = frame;
  [super drawImage:image withFrame:frame inView:view];
}
- (NSRect)drawTitle:(NSAttributedString *)title withFrame:(NSRect)frame inView:(NSView *)view {
  [self note:@"title"];
  _titleFrame = frame;
  return [super drawTitle:title withFrame:frame inView:view];
}
- (void)highlight:(BOOL)flag withFrame:(NSRect)frame inView:(NSView *)view {
  [self note:flag ? @"highlight YES" : @"highlight NO"];
  [super highlight:flag withFrame:frame inView:view];
}
@end

static NSImage *SolidImage(NSSize size, NSColor *color) {
  NSImage *image = [[[NSImage alloc] initWithSize:size] autorelease];
  [image lockFocus];
  [color set];
  NSRectFill(NSMakeRect(0, 0, size.width, size.height));
  [image unlockFocus];
  return image;
}

class CellDrawing : public ControlWindowTest {
 protected:
  NSButton *AddButton(TVPartsButtonCell *cell, NSRect frame) {
    NSButton *button = Add([[NSButton alloc] initWithFrame:frame]);
    [button setCell:cell];
    [cell release];
    [button setTarget:recorder()];
    [button setAction:@selector(act:)];
    return button;
  }
};

TEST_F(CellDrawing, PartsRunInOrderWithTheRectsTheRectMethodsGive) {
  TVPartsButtonCell *cell = [[TVPartsButtonCell alloc] initTextCell:@"Title"];
  NSButton *button = AddButton(cell, NSMakeRect(20, 200, 160, 40));
  [button setImage:SolidImage(NSMakeSize(16, 16), [NSColor redColor])];
  [button setImagePosition:NSImageLeft];
  [button display];
  EXPECT_NSEQ(cell->_log, (@[ @"bezel", @"image", @"title" ]));
  NSRect bounds = [button bounds];
  EXPECT_TRUE(NSEqualRects(cell->_imageFrame, [cell imageRectForBounds:bounds]));
  EXPECT_TRUE(NSEqualRects(cell->_titleFrame, [cell titleRectForBounds:bounds]));
  // Image left of the title, both inside the drawing rect, not overlapping.
  NSRect interior = [cell drawingRectForBounds:bounds];
  EXPECT_LE(NSMaxX(cell->_imageFrame), NSMinX(cell->_titleFrame));
  EXPECT_TRUE(NSContainsRect(interior, cell->_imageFrame));
  EXPECT_TRUE(NSContainsRect(interior, cell->_titleFrame));
  EXPECT_EQ(NSWidth(cell->_imageFrame), 16);
}

TEST_F(CellDrawing, ImagePositionsSplitTheInterior) {
  TVPartsButtonCell *cell = [[TVPartsButtonCell alloc] initTextCell:@"T"];
  NSButton *button = AddButton(cell, NSMakeRect(20, 150, 120, 80));
  [button setImage:SolidImage(NSMakeSize(16, 16), [NSColor redColor])];
  NSRect bounds = [button bounds];
  [button display];  // the cell learns its (flipped) control view
  [button setImagePosition:NSImageRight];
  EXPECT_GE(NSMinX([cell imageRectForBounds:bounds]), NSMaxX([cell titleRectForBounds:bounds]));
  // Above is visual: in the flipped button it has the smaller y.
  [button setImagePosition:NSImageAbove];
  ASSERT_TRUE([button isFlipped]);
  EXPECT_LE(NSMaxY([cell imageRectForBounds:bounds]), NSMinY([cell titleRectForBounds:bounds]));
  [button setImagePosition:NSImageOnly];
  EXPECT_TRUE(NSIsEmptyRect([cell titleRectForBounds:bounds]));
  [cell->_log removeAllObjects];
  [button display];
  EXPECT_NSEQ(cell->_log, (@[ @"bezel", @"image" ]));
}

TEST_F(CellDrawing, AnOverriddenTitleRectMovesOnlyTheTitle) {
  TVPartsButtonCell *cell = [[TVPartsButtonCell alloc] initTextCell:@"MMMM"];
  cell->_customTitleRect = YES;
  NSButton *button = AddButton(cell, NSMakeRect(20, 200, 200, 30));
  [button setBordered:NO];
  [cell setBackgroundColor:[NSColor whiteColor]];
  NSBitmapImageRep *rep = Grab(button);
  EXPECT_TRUE(NSEqualRects(cell->_titleFrame, NSMakeRect(100, 0, 100, 30)));
  int darkLeft = 0, darkRight = 0;
  for (int y = 0; y < 30; y++) {
    for (int x = 0; x < 200; x++) {
      RGB p = PixelAt(rep, x, y);
      if (p.r + p.g + p.b < 200) {
        (x < 100 ? darkLeft : darkRight)++;
      }
    }
  }
  EXPECT_EQ(darkLeft, 0);
  EXPECT_GT(darkRight, 10);
}

TEST_F(CellDrawing, AnOverriddenImageRectPlacesTheImage) {
  TVPartsButtonCell *cell = [[TVPartsButtonCell alloc] initTextCell:@""];
  cell->_customImageRect = YES;
  NSButton *button = AddButton(cell, NSMakeRect(20, 200, 100, 40));
  [button setBordered:NO];
  [button setImage:SolidImage(NSMakeSize(20, 20), [NSColor blueColor])];
  [button setImagePosition:NSImageOnly];
  NSBitmapImageRep *rep = Grab(button);
  EXPECT_TRUE(NSEqualRects(cell->_imageFrame, NSMakeRect(0, 0, 20, 20)));
  // Flipped button: y 0...20 are the top rows.
  RGB inside = PixelAt(rep, 10, 10);
  RGB outside = PixelAt(rep, 60, 30);
  EXPECT_EQ(inside.b, 255);
  EXPECT_LT(inside.r, 40);
  EXPECT_NE(outside.b - outside.r, 255);
}

TEST_F(CellDrawing, TrackingHighlightsThroughTheCellAndSendsTheAction) {
  TVPartsButtonCell *cell = [[TVPartsButtonCell alloc] initTextCell:@"Press"];
  NSButton *button = AddButton(cell, NSMakeRect(20, 200, 100, 30));
  [button display];
  [cell->_log removeAllObjects];
  Click(button, NSMakePoint(50, 15));
  NSMutableArray *highlights = [NSMutableArray array];
  for (NSString *entry in cell->_log) {
    if ([entry hasPrefix:@"highlight"]) {
      [highlights addObject:entry];
    }
  }
  EXPECT_NSEQ(highlights, (@[ @"highlight YES", @"highlight NO" ]));
  EXPECT_FALSE([cell isHighlighted]);
  EXPECT_EQ(recorder()->_count, 1);
}

TEST_F(CellDrawing, BadInputToTheRectMethodsRaisesNothing) {
  NSButtonCell *cell = [[[NSButtonCell alloc] initTextCell:@"x"] autorelease];
  [cell setImage:SolidImage(NSMakeSize(8, 8), [NSColor redColor])];
  [cell setImagePosition:NSImageLeft];
  NSRect nanRect = NSMakeRect(NAN, 0, INFINITY, -5);
  [cell titleRectForBounds:nanRect];
  [cell imageRectForBounds:NSMakeRect(0, 0, -10, -10)];
  [cell drawInteriorWithFrame:NSMakeRect(0, 0, 10, 10) inView:nil];
  SUCCEED();
}

#pragma mark - Text field editing

// A cell with its own title rect that uses AppKit's idiom for editing.
@interface TVInsetTextCell : NSTextFieldCell
@end

@implementation TVInsetTextCell
- (NSRect)titleRectForBounds:(NSRect)bounds {
  return NSInsetRect(bounds, 4, 8);
}
- (void)editWithFrame:(NSRect)rect inView:(NSView *)view editor:(NSText *)editor
             delegate:(id)delegate event:(NSEvent *)event {
  [super editWithFrame:[self titleRectForBounds:rect] inView:view editor:editor
              delegate:delegate event:event];
}
- (void)selectWithFrame:(NSRect)rect inView:(NSView *)view editor:(NSText *)editor
               delegate:(id)delegate start:(NSInteger)start length:(NSInteger)length {
  [super selectWithFrame:[self titleRectForBounds:rect] inView:view editor:editor
                delegate:delegate start:start length:length];
}
@end

// The editor's frame in the field's coordinates (its clip view's, if any).
static NSRect EditorFrame(NSTextField *field) {
  NSText *editor = [field currentEditor];
  if (editor == nil) {
    return NSZeroRect;
  }
  NSView *box = [[editor superview] isKindOfClass:[NSClipView class]] ? [editor superview] : editor;
  return [field convertRect:[box bounds] fromView:box];
}

TEST_F(CellDrawing, TheFieldEditorSitsInTheTitleRectOnceAndStaysThereOnRedraw) {
  NSTextField *field = Add([[NSTextField alloc] initWithFrame:NSMakeRect(20, 100, 200, 40)]);
  TVInsetTextCell *cell = [[TVInsetTextCell alloc] initTextCell:@"hello"];
  [cell setEditable:YES];
  [cell setBezeled:YES];
  [field setCell:cell];
  [cell release];
  [field display];
  ASSERT_TRUE([window_.get() makeFirstResponder:field]);
  NSRect expected = NSInsetRect([field bounds], 4, 8);
  EXPECT_TRUE(NSEqualRects(EditorFrame(field), expected))
      << [NSStringFromRect(EditorFrame(field)) UTF8String];
  [field display];
  DrainEvents();
  EXPECT_TRUE(NSEqualRects(EditorFrame(field), expected))
      << [NSStringFromRect(EditorFrame(field)) UTF8String];
  [window_.get() makeFirstResponder:nil];
}

TEST_F(CellDrawing, APlainTextFieldEditsWhereItDrawsItsTitle) {
  NSTextField *field = Add([[NSTextField alloc] initWithFrame:NSMakeRect(20, 100, 200, 24)]);
  [field setStringValue:@"plain"];
  [field display];
  ASSERT_TRUE([window_.get() makeFirstResponder:field]);
  NSRect before = EditorFrame(field);
  EXPECT_TRUE(NSEqualRects(before, [[field cell] titleRectForBounds:[field bounds]]))
      << [NSStringFromRect(before) UTF8String];
  [field display];
  EXPECT_TRUE(NSEqualRects(EditorFrame(field), before));
  [window_.get() makeFirstResponder:nil];
}
