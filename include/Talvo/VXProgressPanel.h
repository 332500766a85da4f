#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** A 340 x 100 point panel with a bold message above a progress
 * indicator, run as a sheet. The message is the panel's title: set the
 * title, then begin the sheet. */
@interface VXProgressPanel : NSPanel {
  NSProgressIndicator *indicator;
  NSTextField *messageField;
}

/** At (20, 12, 300, 20) in the content view. */
@property(nonatomic, retain) NSProgressIndicator *indicator;
/** At (20, 40, 300, 20): bold 14-point, no bezel, background or editing. */
@property(nonatomic, retain) NSTextField *messageField;

- (nullable instancetype)init;

/** Starts the indicator, shows the title in the message field and begins
 * the panel as a sheet on `window` with the panel as modal delegate and no
 * end selector. On AppKit it returns at once; GNUstep runs every sheet in a
 * modal session, so there it returns when the sheet ends (end it with
 * -[NSApp endSheet:] and order the panel out). Ending the sheet and
 * stopping the indicator are the caller's. A nil window does nothing. */
- (void)beginSheetModalForWindow:(nullable NSWindow *)window;

@end

NS_ASSUME_NONNULL_END
