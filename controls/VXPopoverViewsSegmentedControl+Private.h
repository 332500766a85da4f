// The popover segmented control's popup and watchers, for tests.
#import <Talvo/VXPopoverViewsSegmentedControl.h>

NS_ASSUME_NONNULL_BEGIN

@interface VXPopoverViewsSegmentedControl (Private)
- (nullable VXBottomPopupWindow *)_popoverWindow;
/** Whether the click monitor and the window observer are installed. */
- (BOOL)_isWatching;
/** The popup's final frame for the selected segment and a popup of `size`,
 * in screen coordinates. */
- (NSRect)_popupFrameForSize:(NSSize)size;
@end

NS_ASSUME_NONNULL_END
