#import <Talvo/VXVerticallyCenteredTextFieldCell.h>

#include "core/controls/ControlGeometry.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXVerticallyCenteredTextFieldCell

#pragma mark - Public

- (NSRect)drawingRectForBounds:(NSRect)rect {
  NSRect drawing = [super drawingRectForBounds:rect];
  if (mIsEditingOrSelecting) return drawing;
  CGFloat textHeight = [self cellSizeForBounds:rect].height;
  talvo::controls::Rect centred = talvo::controls::VerticallyCenteredRect(
      {drawing.origin.x, drawing.origin.y, drawing.size.width, drawing.size.height}, textHeight);
  return NSMakeRect(centred.x, centred.y, centred.width, centred.height);
}

- (void)drawInteriorWithFrame:(NSRect)cellFrame inView:(NSView *)controlView {
  [super drawInteriorWithFrame:cellFrame inView:controlView];
}

- (void)selectWithFrame:(NSRect)rect
                 inView:(NSView *)controlView
                 editor:(NSText *)textObj
               delegate:(id)anObject
                  start:(NSInteger)selStart
                 length:(NSInteger)selLength {
  NSRect centred = [self drawingRectForBounds:rect];
  // The inherited code asks for the drawing rect of the centred frame: not twice.
  mIsEditingOrSelecting = YES;
  @try {
    [super selectWithFrame:centred
                    inView:controlView
                    editor:textObj
                  delegate:anObject
                     start:selStart
                    length:selLength];
  } @finally {
    mIsEditingOrSelecting = NO;
  }
}

- (void)editWithFrame:(NSRect)rect
               inView:(NSView *)controlView
               editor:(NSText *)textObj
             delegate:(id)anObject
                event:(NSEvent *)theEvent {
  NSRect centred = [self drawingRectForBounds:rect];
  mIsEditingOrSelecting = YES;
  @try {
    [super editWithFrame:centred
                  inView:controlView
                  editor:textObj
                delegate:anObject
                   event:theEvent];
  } @finally {
    mIsEditingOrSelecting = NO;
  }
}

@end
