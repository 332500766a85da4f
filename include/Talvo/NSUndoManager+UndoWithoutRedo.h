#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSUndoManager (undoWithoutRedo)

/** Undoes the last group so that it cannot be redone: a placeholder action
 * registered right after the undo clears the redo stack, and is itself
 * removed on the next pass of the run loop. Does nothing when there is
 * nothing to undo. */
- (void)undoWithoutRedo;

@end

NS_ASSUME_NONNULL_END
