#import <Talvo/NSUndoManager+UndoWithoutRedo.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSUndoManager (undoWithoutRedo)

#pragma mark - Public

- (void)undoWithoutRedo {
  @try {
    if (![self canUndo]) {
      return;
    }
    [self undo];
    // An action registered outside undo and redo clears the redo stack; the
    // placeholder itself goes on the next pass of the run loop.
    // Without grouping by event there is no open group to register in.
    BOOL openGroup = ![self groupsByEvent] && [self groupingLevel] == 0;
    if (openGroup) {
      [self beginUndoGrouping];
    }
    // macOS takes a NULL selector here; GNUstep insists on one it can find a
    // signature for, so the placeholder names a method that does nothing.
    [self registerUndoWithTarget:self
                        selector:@selector(_undoWithoutRedoPlaceholder:)
                          object:nil];
    if (openGroup) {
      [self endUndoGrouping];
    }
    [self performSelector:@selector(removeAllActionsWithTarget:) withObject:self afterDelay:0];
  } @catch (NSException *exception) {
    // An undo manager in an inconsistent state (an open group, say).
  }
}

#pragma mark - Private

- (void)_undoWithoutRedoPlaceholder:(id)unused {
}

@end
