// NSTableRowView, and the row views of GNUstep's cell-based NSTableView:
// the table's selection hook (GNUstep draws the selection between the
// background and the cells) draws the row views instead, so they sit under
// the cells; selection notifications keep their `selected` in step.

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#include <unordered_map>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@interface NSTableRowView (TalvoTableDrawing)
- (void)_tv_setEmphasizedWhileDrawing:(BOOL)emphasized;
@end

// Row views by row, per table (tables are not retained; they leave in their
// dealloc). Main thread only.
static std::unordered_map<NSTableView *, NSMutableDictionary *> rowViewsByTable;

static BOOL TVTableWantsRowViews(NSTableView *table) {
  id delegate = [table delegate];
  return delegate != nil && [delegate respondsToSelector:@selector(tableView:rowViewForRow:)];
}

static NSMutableDictionary *TVRowViews(NSTableView *table, BOOL create) {
  auto found = rowViewsByTable.find(table);
  if (found != rowViewsByTable.end()) {
    return found->second;
  }
  if (!create) {
    return nil;
  }
  NSMutableDictionary *rows = [NSMutableDictionary new];
  rowViewsByTable.emplace(table, rows);
  return rows;
}

static void TVDropRowView(NSTableView *table, NSMutableDictionary *rows, NSNumber *row,
                          BOOL tellDelegate = YES) {
  NSTableRowView *rowView = [[rows objectForKey:row] retain];
  [rows removeObjectForKey:row];
  [rowView removeFromSuperview];
  id delegate = tellDelegate ? [table delegate] : nil;
  if ([delegate respondsToSelector:@selector(tableView:didRemoveRowView:forRow:)]) {
    [delegate tableView:table didRemoveRowView:rowView forRow:[row integerValue]];
  }
  [rowView release];
}

static void TVDropAllRowViews(NSTableView *table, BOOL tellDelegate) {
  NSMutableDictionary *rows = TVRowViews(table, NO);
  for (NSNumber *row in [[rows allKeys] sortedArrayUsingSelector:@selector(compare:)]) {
    TVDropRowView(table, rows, row, tellDelegate);
  }
}

// Brings each row view's `selected` in line with the table's selection.
static void TVSyncSelection(NSTableView *table) {
  NSMutableDictionary *rows = TVRowViews(table, NO);
  if ([rows count] == 0) {
    return;
  }
  NSIndexSet *selected = [table selectedRowIndexes];
  for (NSNumber *row in [rows allKeys]) {
    NSTableRowView *rowView = [rows objectForKey:row];
    NSInteger index = [row integerValue];
    BOOL isSelected = [selected containsIndex:(NSUInteger)index];
    if ([rowView isSelected] != isSelected) {
      [rowView setSelected:isSelected];
    }
    [rowView setPreviousRowSelected:index > 0 && [selected containsIndex:(NSUInteger)index - 1]];
    [rowView setNextRowSelected:[selected containsIndex:(NSUInteger)index + 1]];
  }
}

static void TVObserveSelections(void);

static NSTableRowView *TVMakeRowView(NSTableView *table, NSInteger row) {
  TVObserveSelections();
  NSMutableDictionary *rows = TVRowViews(table, YES);
  NSNumber *key = @(row);
  NSTableRowView *rowView = [rows objectForKey:key];
  if (rowView != nil) {
    return rowView;
  }
  id delegate = [table delegate];
  rowView = [delegate tableView:table rowViewForRow:row];
  if (![rowView isKindOfClass:[NSTableRowView class]] || [rowView superview] != nil) {
    rowView = [[[NSTableRowView alloc] initWithFrame:[table rectOfRow:row]] autorelease];
  }
  [rows setObject:rowView forKey:key];
  [rowView setFrame:[table rectOfRow:row]];
  [rowView setSelectionHighlightStyle:[table selectionHighlightStyle]];
  [rowView setBackgroundColor:[table backgroundColor]];
  NSIndexSet *selected = [table selectedRowIndexes];
  [rowView setPreviousRowSelected:row > 0 && [selected containsIndex:(NSUInteger)row - 1]];
  [rowView setNextRowSelected:[selected containsIndex:(NSUInteger)row + 1]];
  [table addSubview:rowView];
  if ([selected containsIndex:(NSUInteger)row]) {
    [rowView setSelected:YES];
  }
  if ([delegate respondsToSelector:@selector(tableView:didAddRowView:forRow:)]) {
    [delegate tableView:table didAddRowView:rowView forRow:row];
  }
  return rowView;
}

// Row views for exactly the visible rows, each over its row's rect.
static void TVPlaceRowViews(NSTableView *table) {
  NSRange visible = [table rowsInRect:[table visibleRect]];
  NSMutableDictionary *rows = TVRowViews(table, YES);
  for (NSNumber *row in [rows allKeys]) {
    NSInteger index = [row integerValue];
    if (index < (NSInteger)visible.location || index >= (NSInteger)NSMaxRange(visible) ||
        index >= [table numberOfRows]) {
      TVDropRowView(table, rows, row);
    }
  }
  for (NSUInteger row = visible.location; row < NSMaxRange(visible); row++) {
    NSTableRowView *rowView = TVMakeRowView(table, (NSInteger)row);
    NSRect frame = [table rectOfRow:(NSInteger)row];
    if (!NSEqualRects([rowView frame], frame)) {
      [rowView setFrame:frame];
    }
  }
}

#pragma mark - Hooks

static void (*originalHighlightSelection)(id, SEL, NSRect) = NULL;
static void (*originalReloadData)(id, SEL) = NULL;
static void (*originalSetDelegate)(id, SEL, id) = NULL;
static void (*originalTableDealloc)(id, SEL) = NULL;

static void TVHighlightSelection(id receiver, SEL selector, NSRect clip) {
  NSTableView *table = receiver;
  if (!TVTableWantsRowViews(table)) {
    originalHighlightSelection(table, selector, clip);
    return;
  }
  TVPlaceRowViews(table);
  TVSyncSelection(table);
  NSWindow *window = [table window];
  BOOL emphasized = [window isKeyWindow] && [window firstResponder] == table;
  NSMutableDictionary *rows = TVRowViews(table, NO);
  NSArray *keys = [[rows allKeys] sortedArrayUsingSelector:@selector(compare:)];
  for (NSNumber *row in keys) {
    NSTableRowView *rowView = [rows objectForKey:row];
    [rowView _tv_setEmphasizedWhileDrawing:emphasized];
    NSRect frame = [rowView frame];
    NSRect dirty = NSIntersectionRect(frame, clip);
    if (NSIsEmptyRect(dirty)) {
      continue;
    }
    // The table is flipped, as row views are: a translation puts the row
    // view's origin at its row's top-left corner.
    [NSGraphicsContext saveGraphicsState];
    NSAffineTransform *move = [NSAffineTransform transform];
    [move translateXBy:NSMinX(frame) yBy:NSMinY(frame)];
    [move concat];
    NSRect local = NSOffsetRect(dirty, -NSMinX(frame), -NSMinY(frame));
    NSRectClip(local);
    [rowView drawRect:local];
    [NSGraphicsContext restoreGraphicsState];
  }
}

static void TVReloadData(id table, SEL selector) {
  TVDropAllRowViews(table, YES);
  originalReloadData(table, selector);
}

static void TVSetDelegate(id table, SEL selector, id delegate) {
  // The old delegate is not told: it is often on its way out (a delegate
  // clears itself in its dealloc).
  if (delegate != [table delegate]) {
    TVDropAllRowViews(table, NO);
  }
  originalSetDelegate(table, selector, delegate);
}

static void TVTableDealloc(id receiver, SEL selector) {
  NSTableView *table = receiver;
  auto found = rowViewsByTable.find(table);
  if (found != rowViewsByTable.end()) {
    NSMutableDictionary *rows = found->second;
    rowViewsByTable.erase(found);
    [rows release];
  }
  originalTableDealloc(table, selector);
}

// Selection changes by code and by the mouse are announced with these
// notifications (object: the table).
@interface _TVRowViewSelectionObserver : NSObject
@end

@implementation _TVRowViewSelectionObserver
- (void)selectionChanged:(NSNotification *)notification {
  id table = [notification object];
  if ([table isKindOfClass:[NSTableView class]] && rowViewsByTable.count(table) != 0) {
    TVSyncSelection(table);
  }
}
@end

static void TVObserveSelections(void) {
  static _TVRowViewSelectionObserver *observer = nil;
  if (observer != nil) {
    return;
  }
  observer = [_TVRowViewSelectionObserver new];
  NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
  [center addObserver:observer
             selector:@selector(selectionChanged:)
                 name:NSTableViewSelectionDidChangeNotification
               object:nil];
  [center addObserver:observer
             selector:@selector(selectionChanged:)
                 name:NSTableViewSelectionIsChangingNotification
               object:nil];
}

@interface _TVRowViewInstaller : NSObject
@end

@implementation _TVRowViewInstaller
+ (void)load {
  // The class is initialised before its methods change (the runtime shares
  // one dispatch table among classes not yet initialised), inside a pool of
  // its own: none exists yet.
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  Class table = [NSTableView class];
  originalHighlightSelection = (void (*)(id, SEL, NSRect))TVReplaceInstanceMethod(
      table, @selector(highlightSelectionInClipRect:), (IMP)TVHighlightSelection);
  originalReloadData =
      (void (*)(id, SEL))TVReplaceInstanceMethod(table, @selector(reloadData), (IMP)TVReloadData);
  originalSetDelegate = (void (*)(id, SEL, id))TVReplaceInstanceMethod(
      table, @selector(setDelegate:), (IMP)TVSetDelegate);
  originalTableDealloc =
      (void (*)(id, SEL))TVReplaceInstanceMethod(table, @selector(dealloc), (IMP)TVTableDealloc);
  [pool drain];
}
@end

#pragma mark - Public

@implementation NSTableRowView

@synthesize selectionHighlightStyle = _selectionHighlightStyle;
@synthesize groupRowStyle = _groupRowStyle;
@synthesize floating = _floating;
@synthesize targetForDropOperation = _targetForDropOperation;
@synthesize indentationForDropOperation = _indentationForDropOperation;
@synthesize draggingDestinationFeedbackStyle = _draggingDestinationFeedbackStyle;
@synthesize nextRowSelected = _nextRowSelected;
@synthesize previousRowSelected = _previousRowSelected;

- (void)dealloc {
  [_backgroundColor release];
  [super dealloc];
}

- (BOOL)isSelected {
  return _selected;
}

- (void)setSelected:(BOOL)selected {
  if (_selected == selected) {
    return;
  }
  _selected = selected;
  [self setNeedsDisplay:YES];
}

- (BOOL)isEmphasized {
  return _emphasized;
}

- (void)setEmphasized:(BOOL)emphasized {
  if (_emphasized == emphasized) {
    return;
  }
  _emphasized = emphasized;
  [self setNeedsDisplay:YES];
}

- (NSColor *)backgroundColor {
  return _backgroundColor;
}

- (void)setBackgroundColor:(NSColor *)color {
  if (color != nil && ![color isKindOfClass:[NSColor class]]) {
    return;
  }
  NSColor *old = _backgroundColor;
  _backgroundColor = [color copy];
  [old release];
  [self setNeedsDisplay:YES];
}

- (NSBackgroundStyle)interiorBackgroundStyle {
  return (_selected && _emphasized) ? NSBackgroundStyleEmphasized : NSBackgroundStyleNormal;
}

- (NSInteger)numberOfColumns {
  NSView *table = [self superview];
  return [table isKindOfClass:[NSTableView class]] ? [(NSTableView *)table numberOfColumns] : 0;
}

- (id)viewAtColumn:(NSInteger)column {
  return nil;
}

- (BOOL)isFlipped {
  return YES;
}

- (BOOL)isOpaque {
  return NO;
}

- (void)drawRect:(NSRect)dirtyRect {
  [self drawBackgroundInRect:dirtyRect];
  if (_selected && _selectionHighlightStyle != NSTableViewSelectionHighlightStyleNone) {
    [self drawSelectionInRect:dirtyRect];
  }
  [self drawSeparatorInRect:dirtyRect];
}

- (void)drawBackgroundInRect:(NSRect)dirtyRect {
  if (_backgroundColor == nil) {
    return;
  }
  [NSGraphicsContext saveGraphicsState];
  [_backgroundColor set];
  NSRectFillUsingOperation(NSIntersectionRect([self bounds], dirtyRect), NSCompositeSourceOver);
  [NSGraphicsContext restoreGraphicsState];
}

- (void)drawSelectionInRect:(NSRect)dirtyRect {
  NSColor *color = _emphasized ? [NSColor selectedControlColor]
                               : [NSColor secondarySelectedControlColor];
  [NSGraphicsContext saveGraphicsState];
  [color set];
  NSRectFillUsingOperation(NSIntersectionRect([self bounds], dirtyRect), NSCompositeSourceOver);
  [NSGraphicsContext restoreGraphicsState];
}

- (void)drawSeparatorInRect:(NSRect)dirtyRect {
}

#pragma mark - Private

// A row view draws only through its table (under the row's cells): its own
// display pass as a subview draws nothing, and redraw requests go to the
// table's rectangle of the row.
- (void)displayRectIgnoringOpacity:(NSRect)rect inContext:(NSGraphicsContext *)context {
  if (![[self superview] isKindOfClass:[NSTableView class]]) {
    [super displayRectIgnoringOpacity:rect inContext:context];
  }
}

- (void)setNeedsDisplayInRect:(NSRect)rect {
  NSView *table = [self superview];
  if ([table isKindOfClass:[NSTableView class]]) {
    [table setNeedsDisplayInRect:[self convertRect:NSIntersectionRect(rect, [self bounds])
                                            toView:table]];
    return;
  }
  [super setNeedsDisplayInRect:rect];
}

- (void)setNeedsDisplay:(BOOL)flag {
  if (flag && [[self superview] isKindOfClass:[NSTableView class]]) {
    [self setNeedsDisplayInRect:[self bounds]];
    return;
  }
  [super setNeedsDisplay:flag];
}

- (NSView *)hitTest:(NSPoint)point {
  return nil;
}

// Set by the table while it draws: no redisplay (the drawing is under way).
- (void)_tv_setEmphasizedWhileDrawing:(BOOL)emphasized {
  _emphasized = emphasized;
}

@end

@implementation NSTableView (TalvoRowViews)

- (NSTableRowView *)rowViewAtRow:(NSInteger)row makeIfNecessary:(BOOL)makeIfNecessary {
  NSTableRowView *rowView = [TVRowViews(self, NO) objectForKey:@(row)];
  if (rowView != nil || !makeIfNecessary) {
    return rowView;
  }
  if (row < 0 || row >= [self numberOfRows] || !TVTableWantsRowViews(self)) {
    return nil;
  }
  return TVMakeRowView(self, row);
}

- (void)enumerateAvailableRowViewsUsingBlock:(void (^)(NSTableRowView *, NSInteger))handler {
  if (handler == nil) {
    return;
  }
  NSMutableDictionary *rows = TVRowViews(self, NO);
  NSArray *keys = [[rows allKeys] sortedArrayUsingSelector:@selector(compare:)];
  for (NSNumber *row in keys) {
    NSTableRowView *rowView = [rows objectForKey:row];
    if (rowView != nil) {
      handler(rowView, [row integerValue]);
    }
  }
}

@end
