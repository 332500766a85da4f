// A page of the gallery: a titled, captioned view built only from Talvo's
// public headers, as an application would build it.
#import <Talvo/Talvo.h>

NS_ASSUME_NONNULL_BEGIN

@protocol GalleryPage <NSObject>
/** Short name, also the PNG file's base name. */
- (NSString *)identifier;
- (NSString *)title;
/** One line: what the page shows. */
- (NSString *)caption;
/** A new view showing the page, autoreleased. */
- (NSView *)makeViewWithFrame:(NSRect)frame;
@optional
/** One line on where the page's views ended up, printed by the headless
 * renderer so that its test can check them. */
- (NSString *)layoutReportForView:(NSView *)pageView;
@end

/** The pages, in gallery order. */
NSArray *GalleryAllPages(void);

/** A non-editable, borderless label. */
NSTextField *GalleryLabel(NSString *text, NSRect frame);

/** A plain view that fills itself with a colour. */
NSView *GallerySwatch(NSColor *color, NSRect frame);

NS_ASSUME_NONNULL_END
