#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** The two-stop gradients Talvo's gradient cells fill their icons with. A
 * shared one takes the look in force when it is first asked for, and keeps
 * it: the newer look when the AppKit version (or the TALVO_APPKIT_VERSION
 * environment variable) is 1266 or above. Main thread. */
@interface NSGradient (gradientCell)

/** Shared: device white 0.46 to 0.35 (newer look), 0.53 to 0.34 (older). */
+ (NSGradient *)grayGradient;

/** Shared: device white 0.68 to 0.64 (newer look), 0.64 to 0.71 (older). */
+ (NSGradient *)lightGrayGradient;

/** Shared: the selection colour made lighter by 0.8 to the selection colour
 * (newer look); device RGB (0.58, 0.72, 1.0) to (0.11, 0.41, 1.0) (older). */
+ (NSGradient *)blueGradient;

/** New gradients with the colours of one look, whichever look the process
 * runs, for previews that show both side by side. */
+ (NSGradient *)grayGradientForNewerLook:(BOOL)newerLook;
+ (NSGradient *)lightGrayGradientForNewerLook:(BOOL)newerLook;
+ (NSGradient *)blueGradientForNewerLook:(BOOL)newerLook;

@end

NS_ASSUME_NONNULL_END
