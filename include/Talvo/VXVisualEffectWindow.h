#import <Talvo/VXBarlessCustomWindow.h>

NS_ASSUME_NONNULL_BEGIN

/** A dark window that moves by its background and stays visible when the
 * application deactivates. With the newer look its frame view is a
 * vibrant-dark NSVisualEffectView (material appearance-based, blending
 * behind the window, always active); with the older look a plain view
 * through which the window draws a rounded rect of white 0.12 (the whole
 * dirty rect for a sheet). */
@interface VXVisualEffectWindow : VXBarlessCustomWindow

/** The content view, that is the frame view (an NSVisualEffectView with the
 * newer look, a plain view otherwise). */
@property(nonatomic, readonly, nullable) NSVisualEffectView *backgroundEffectView;

- (void)drawRect:(NSRect)dirtyRect;

@end

NS_ASSUME_NONNULL_END
