/*
 * NSTableRowView for GNUstep 0.29, whose tables are cell-based and have no
 * row views.
 *
 * A table whose delegate answers tableView:rowViewForRow: keeps one row
 * view per visible row: asked for when the row first shows (a nil answer
 * gives a plain NSTableRowView), placed over rectOfRow: as a subview of
 * the table, and dropped when the row scrolls out of sight or the table
 * reloads. The table draws each row view under its row's cells, in place of
 * its own selection fill, and keeps `selected` in step with its selection
 * (row views of newly selected rows get setSelected:YES when the selection
 * changes, by code or by the mouse). Tables whose delegate does not answer
 * the method draw as before and have no row views.
 *
 * Row views draw only through the table: setNeedsDisplay: on one asks the
 * table to redraw the row. They take no mouse events (hitTest: answers nil;
 * clicks reach the table). Not covered: view-based tables (cell views
 * inside row views), group rows, floating rows, drag-and-drop feedback,
 * row actions, row views of rows that are not visible.
 */
#ifndef TALVO_PLATFORM_NSTABLEROWVIEW_H
#define TALVO_PLATFORM_NSTABLEROWVIEW_H

#import <AppKit/NSCell.h>
#import <AppKit/NSTableView.h>
#import <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

@class NSColor;

/** AppKit's names for the two background styles GNUstep calls Light and Dark. */
enum {
  NSBackgroundStyleNormal = NSBackgroundStyleLight,
  NSBackgroundStyleEmphasized = NSBackgroundStyleDark
};

typedef NS_ENUM(NSInteger, NSTableViewDraggingDestinationFeedbackStyle) {
  NSTableViewDraggingDestinationFeedbackStyleNone = -1,
  NSTableViewDraggingDestinationFeedbackStyleRegular = 0,
  NSTableViewDraggingDestinationFeedbackStyleSourceList = 1,
  NSTableViewDraggingDestinationFeedbackStyleGap = 2
};

@interface NSTableRowView : NSView {
 @private
  NSColor *_backgroundColor;
  NSTableViewSelectionHighlightStyle _selectionHighlightStyle;
  NSTableViewDraggingDestinationFeedbackStyle _draggingDestinationFeedbackStyle;
  CGFloat _indentationForDropOperation;
  BOOL _selected;
  BOOL _emphasized;
  BOOL _groupRowStyle;
  BOOL _floating;
  BOOL _targetForDropOperation;
  BOOL _nextRowSelected;
  BOOL _previousRowSelected;
}

/** Whether the row is selected; the table sets it. Setting it redraws. */
@property(nonatomic, assign, getter=isSelected) BOOL selected;

/** Whether the selection draws in the emphasized colour. NO for a new
 * row view; a table sets it, each time it draws, to whether it is the first
 * responder of the key window. */
@property(nonatomic, assign, getter=isEmphasized) BOOL emphasized;

/** The table's selection style, copied when the row view is placed. None
 * draws no selection. */
@property(nonatomic, assign) NSTableViewSelectionHighlightStyle selectionHighlightStyle;

/** Stored only (group and floating rows, drop feedback are not drawn). */
@property(nonatomic, assign, getter=isGroupRowStyle) BOOL groupRowStyle;
@property(nonatomic, assign, getter=isFloating) BOOL floating;
@property(nonatomic, assign, getter=isTargetForDropOperation) BOOL targetForDropOperation;
@property(nonatomic, assign) CGFloat indentationForDropOperation;
@property(nonatomic, assign)
    NSTableViewDraggingDestinationFeedbackStyle draggingDestinationFeedbackStyle;
@property(nonatomic, assign, getter=isNextRowSelected) BOOL nextRowSelected;
@property(nonatomic, assign, getter=isPreviousRowSelected) BOOL previousRowSelected;

/** Filled by drawBackgroundInRect:; the table sets its own background
 * colour when it places the row view. nil fills nothing. */
@property(nonatomic, copy, nullable) NSColor *backgroundColor;

/** NSBackgroundStyleEmphasized while selected and emphasized, else Normal. */
- (NSBackgroundStyle)interiorBackgroundStyle;

/** The number of columns of the table the row view is in; 0 outside one. */
- (NSInteger)numberOfColumns;

/** nil: cell-based tables have no views per column. */
- (nullable id)viewAtColumn:(NSInteger)column;

/** Fills `dirtyRect` with backgroundColor (when set). */
- (void)drawBackgroundInRect:(NSRect)dirtyRect;

/** Fills the bounds (within `dirtyRect`) with the selection colour:
 * selectedControlColor (the colour of GNUstep's own table selection) when
 * emphasized, else secondarySelectedControlColor. Called by drawRect: only while selected
 * and the highlight style is not None. */
- (void)drawSelectionInRect:(NSRect)dirtyRect;

/** Draws nothing (no grid lines between row views). */
- (void)drawSeparatorInRect:(NSRect)dirtyRect;

@end

@interface NSTableView (TalvoRowViews)

/** The row view of `row`: the one the table holds, else (with
 * `makeIfNecessary`) a new one for a valid row when the delegate answers
 * tableView:rowViewForRow:, else nil. */
- (nullable NSTableRowView *)rowViewAtRow:(NSInteger)row makeIfNecessary:(BOOL)makeIfNecessary;

/** Calls `handler` for each row view the table holds, by row. */
- (void)enumerateAvailableRowViewsUsingBlock:(void (^)(NSTableRowView *rowView,
                                                       NSInteger row))handler;

@end

/** The delegate method a table asks for its row views (part of Apple's
 * NSTableViewDelegate; declared here so that delegates can be asked). */
@interface NSObject (TalvoTableRowViewDelegate)
- (nullable NSTableRowView *)tableView:(NSTableView *)tableView rowViewForRow:(NSInteger)row;
- (void)tableView:(NSTableView *)tableView
    didAddRowView:(NSTableRowView *)rowView
           forRow:(NSInteger)row;
- (void)tableView:(NSTableView *)tableView
    didRemoveRowView:(NSTableRowView *)rowView
              forRow:(NSInteger)row;
@end

NS_ASSUME_NONNULL_END

#endif
