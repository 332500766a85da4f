#import <Talvo/NSUndoManager+UndoWithoutRedo.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSUndoManager (undoWithoutRedo)

- (void)undoWithoutRedo {
  @try {
    if (![self canUndo]) {
      return;
    }
    [self undo];
    // An action registered outside undo and redo clears the redo stack; the
    // placeholder itself goes on the next pass of the run loop.
    [self registerUndoWithTarget:self selector:NULL object:nil];
    [self performSelector:@selector(removeAllActionsWithTarget:) withObject:self afterDelay:0];
  } @catch (NSException *exception) {
    // An undo manager in an inconsistent state (an open group, say).
  }
}

@end
