#import <Talvo/VXBarlessCustomWindow.h>

NS_ASSUME_NONNULL_BEGIN

/** A shadowed, immovable pop-up panel that never becomes key or main: a
 * light rounded body (white 0.94, radius 4) with a 10-point arrow centred
 * on its top edge. The client's content sits 5 points below the top, under
 * the arrow. Ignored by accessibility; its accessibility parent is its
 * parent window's unignored ancestor. */
@interface VXBottomPopupWindow : VXBarlessCustomWindow

/** A borderless, buffered, deferred window with the zero rect. */
- (nullable instancetype)init;

/** YES. */
- (BOOL)accessibilityIsIgnored;
/** For NSAccessibilityParentAttribute the parent window's unignored
 * ancestor; otherwise the inherited answer (nil where there is none). */
- (nullable id)accessibilityAttributeValue:(NSString *)attribute;

@end

NS_ASSUME_NONNULL_END
