#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * A text field cell that centres its text vertically: the drawing rect
 * shrinks to the text's height and moves by half the difference. Editing
 * and selecting happen in the same centred rect.
 */
@interface VXVerticallyCenteredTextFieldCell : NSTextFieldCell {
  BOOL mIsEditingOrSelecting;
}

/** The inherited rect, centred unless the cell is editing or selecting. */
- (NSRect)drawingRectForBounds:(NSRect)rect;
/** The inherited drawing. */
- (void)drawInteriorWithFrame:(NSRect)cellFrame inView:(NSView *)controlView;
/** The inherited call with the centred frame. */
- (void)selectWithFrame:(NSRect)rect
                 inView:(NSView *)controlView
                 editor:(NSText *)textObj
               delegate:(nullable id)anObject
                  start:(NSInteger)selStart
                 length:(NSInteger)selLength;
/** The inherited call with the centred frame. */
- (void)editWithFrame:(NSRect)rect
               inView:(NSView *)controlView
               editor:(NSText *)textObj
             delegate:(nullable id)anObject
                event:(nullable NSEvent *)theEvent;

@end

NS_ASSUME_NONNULL_END
