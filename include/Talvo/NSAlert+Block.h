#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** Running an alert as a sheet with a completion block. */
@interface NSAlert (block)

/** Runs the alert as a sheet on `window`. `completion` (copied; the copy
 * belongs to the pending sheet) is called once with the return code after
 * the sheet has ended. The alert's own delegate is not involved. (GNUstep
 * runs the sheet in a modal session: there the call returns once it has
 * ended, after the completion.) A nil
 * window does nothing; a nil completion runs the sheet without a call. */
- (void)VXBeginSheetModalForWindow:(nullable NSWindow *)window
                        completion:(nullable void (^)(NSInteger returnCode))completion;

/** The sheet's end: calls the block in `contextInfo` with `returnCode`, then
 * releases it. */
+ (void)VXalertDidEnd:(nullable NSAlert *)alert
           returnCode:(NSInteger)returnCode
          contextInfo:(nullable void *)contextInfo;

@end

NS_ASSUME_NONNULL_END
