// Text field cells keep the field editor where editing put it. GNUstep 0.29
// places the editor at -titleRectForBounds: of the rect it is given, and
// moves it back there on every redraw while editing. A cell that overrides
// -titleRectForBounds: and also passes [self titleRectForBounds:rect] to
// super's -editWithFrame:... or -selectWithFrame:... (AppKit's idiom) got
// the inset twice; here the rect such a cell passes is the editor's rect.
// Redraws during editing leave the editor alone, as AppKit does.

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

// The cell being edited and the rect its editor was given (one field editor
// edits at a time; the cell is not retained, it is only compared).
static NSCell *editingCell = nil;

static BOOL TVOverrides(Class cls, SEL selector) {
  return class_getMethodImplementation(cls, selector) !=
         class_getMethodImplementation([NSTextFieldCell class], selector);
}

// Whether the cell places its editor itself, by AppKit's idiom.
static BOOL TVPlacesEditorItself(NSCell *cell) {
  Class cls = [cell class];
  return TVOverrides(cls, @selector(titleRectForBounds:)) &&
         (TVOverrides(cls, @selector(editWithFrame:inView:editor:delegate:event:)) ||
          TVOverrides(cls, @selector(selectWithFrame:inView:editor:delegate:start:length:)));
}

static void TVPlaceEditor(NSText *editor, NSView *controlView, NSRect rect) {
  if (editor == nil || controlView == nil) {
    return;
  }
  NSView *holder = [editor superview];
  if ([holder isKindOfClass:[NSClipView class]] && [holder superview] == controlView) {
    [holder setFrame:rect];
    [editor setFrameSize:NSMakeSize(NSWidth(rect), MAX(NSHeight([editor frame]), NSHeight(rect)))];
  } else if (holder == controlView) {
    [editor setFrame:rect];
  }
}

static void TVStartEditing(NSCell *cell, NSRect rect, NSView *view, NSText *editor) {
  editingCell = cell;
  if (TVPlacesEditorItself(cell)) {
    TVPlaceEditor(editor, view, rect);
  }
}

static void (*originalEdit)(id, SEL, NSRect, NSView *, NSText *, id, NSEvent *) = NULL;
static void (*originalSelect)(id, SEL, NSRect, NSView *, NSText *, id, NSInteger, NSInteger) = NULL;
static void (*originalDrawInterior)(id, SEL, NSRect, NSView *) = NULL;
static void (*originalEndEditing)(id, SEL, NSText *) = NULL;

static void TVEditWithFrame(NSTextFieldCell *self, SEL _cmd, NSRect rect, NSView *view,
                            NSText *editor, id delegate, NSEvent *event) {
  originalEdit(self, _cmd, rect, view, editor, delegate, event);
  TVStartEditing(self, rect, view, editor);
}

static void TVSelectWithFrame(NSTextFieldCell *self, SEL _cmd, NSRect rect, NSView *view,
                              NSText *editor, id delegate, NSInteger start, NSInteger length) {
  originalSelect(self, _cmd, rect, view, editor, delegate, start, length);
  TVStartEditing(self, rect, view, editor);
}

static void TVTextFieldDrawInterior(NSTextFieldCell *self, SEL _cmd, NSRect frame, NSView *view) {
  if (self == editingCell && [view isKindOfClass:[NSControl class]] &&
      [(NSControl *)view currentEditor] != nil) {
    // The editor is a subview and draws the text itself, where it was put.
    return;
  }
  originalDrawInterior(self, _cmd, frame, view);
}

static void TVEndEditing(NSCell *self, SEL _cmd, NSText *editor) {
  if (self == editingCell) {
    editingCell = nil;
  }
  originalEndEditing(self, _cmd, editor);
}

static void (*originalDealloc)(id, SEL) = NULL;

static void TVTextFieldDealloc(NSTextFieldCell *self, SEL _cmd) {
  if (self == editingCell) {
    editingCell = nil;
  }
  originalDealloc(self, _cmd);
}

@interface NSTextFieldCell (TalvoPlatformEditing)
@end

@implementation NSTextFieldCell (TalvoPlatformEditing)

+ (void)load {
  Class cell = objc_getClass("NSTextFieldCell");
  originalEdit = (void (*)(id, SEL, NSRect, NSView *, NSText *, id, NSEvent *))TVReplaceInstanceMethod(
      cell, @selector(editWithFrame:inView:editor:delegate:event:), (IMP)TVEditWithFrame);
  originalSelect = (void (*)(id, SEL, NSRect, NSView *, NSText *, id, NSInteger, NSInteger))
      TVReplaceInstanceMethod(cell, @selector(selectWithFrame:inView:editor:delegate:start:length:),
                              (IMP)TVSelectWithFrame);
  originalDrawInterior = (void (*)(id, SEL, NSRect, NSView *))TVReplaceInstanceMethod(
      cell, @selector(drawInteriorWithFrame:inView:), (IMP)TVTextFieldDrawInterior);
  originalEndEditing = (void (*)(id, SEL, NSText *))TVReplaceInstanceMethod(
      cell, @selector(endEditing:), (IMP)TVEndEditing);
  originalDealloc =
      (void (*)(id, SEL))TVReplaceInstanceMethod(cell, @selector(dealloc), (IMP)TVTextFieldDealloc);
}

@end
