// Pop-up button cells draw their bezel and title through the documented
// override points, and NSPopUpNoArrow leaves the arrow out.

#import "platform/CellTestSupport.h"

@interface TVPopUpPartsCell : NSPopUpButtonCell {
 @public
  NSMutableArray *_log;
  BOOL _redBezel;
  NSRect _titleFrame;
}
@end

@implementation TVPopUpPartsCell
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
- (void)drawBezelWithFrame:(NSRect)frame inView:(NSView *)view {
  [self note:@"bezel"];
  if (_redBezel) {
    [[NSColor redColor] set];
    NSRectFill(frame);
    return;
  }
  [super drawBezelWithFrame:frame inView:view];
}
- (NSRect)drawTitle:(NSAttributedString *)title withFrame:(NSRect)frame inView:(NSView *)view {
  [self note:[@"title " stringByAppendingString:[title string]]];
  _titleFrame = frame;
  return [super drawTitle:title withFrame:frame inView:view];
}
@end

class CellPopUp : public ControlWindowTest {
 protected:
  NSPopUpButton *AddPopUp(TVPopUpPartsCell *cell, BOOL pullsDown = NO) {
    NSPopUpButton *popUp = Add([[NSPopUpButton alloc] initWithFrame:NSMakeRect(20, 200, 160, 26)
                                                          pullsDown:pullsDown]);
    if (cell != nil) {
      [popUp setCell:cell];
      [cell release];
    }
    [popUp addItemsWithTitles:@[ @"Alpha", @"Beta" ]];
    return popUp;
  }
};

TEST_F(CellPopUp, TheBezelComesFromDrawBezel) {
  TVPopUpPartsCell *cell = [[TVPopUpPartsCell alloc] initTextCell:@"" pullsDown:NO];
  cell->_redBezel = YES;
  NSPopUpButton *popUp = AddPopUp(cell);
  NSBitmapImageRep *rep = Grab(popUp);
  EXPECT_TRUE([cell->_log containsObject:@"bezel"]);
  RGB corner = PixelAt(rep, 2, 2);
  EXPECT_EQ(corner.r, 255);
  EXPECT_EQ(corner.g, 0);
}

TEST_F(CellPopUp, AnOverriddenDrawTitleGetsTheSelectedTitle) {
  TVPopUpPartsCell *cell = [[TVPopUpPartsCell alloc] initTextCell:@"" pullsDown:NO];
  NSPopUpButton *popUp = AddPopUp(cell);
  [popUp selectItemAtIndex:1];
  [popUp display];
  EXPECT_TRUE([cell->_log containsObject:@"title Beta"]);
  EXPECT_TRUE(NSContainsRect([popUp bounds], cell->_titleFrame));
  EXPECT_GT(NSWidth(cell->_titleFrame), 0);
}

TEST_F(CellPopUp, NoArrowLeavesThePopUpArrowOut) {
  NSPopUpButton *popUp = AddPopUp(nil);
  NSBitmapImageRep *withArrow = Grab(popUp);
  [[popUp cell] setArrowPosition:NSPopUpNoArrow];
  NSBitmapImageRep *without = Grab(popUp);
  int differing = 0;
  for (int y = 0; y < 26; y++) {
    for (int x = 120; x < 160; x++) {
      RGB a = PixelAt(withArrow, x, y), b = PixelAt(without, x, y);
      differing += (a.r != b.r || a.g != b.g || a.b != b.b);
    }
  }
  EXPECT_GT(differing, 4);
}

TEST_F(CellPopUp, GNUstepsOwnPopUpStillDrawsItsBezel) {
  NSPopUpButton *popUp = AddPopUp(nil);
  NSBitmapImageRep *rep = Grab(popUp);
  // A bezel is not one flat colour: some edge pixel differs from the middle.
  RGB middle = PixelAt(rep, 60, 13);
  int differing = 0;
  for (int x = 0; x < 160; x++) {
    RGB edge = PixelAt(rep, x, 0);
    differing += (edge.r != middle.r || edge.g != middle.g);
  }
  EXPECT_GT(differing, 20);
}
