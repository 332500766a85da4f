#import <Talvo/VXCustomWindow.h>

NS_ASSUME_NONNULL_BEGIN

/** A custom window with a frame view of the toolkit's own between the
 * window and the client's content view.
 *
 * -setContentView: puts the client's view inside the frame view, pinned by
 * constraints to its leading, trailing and bottom edges and
 * `contentTopMargin` points below its top; the frame view becomes the
 * window's content view, so -contentView answers it and
 * -actualContentView the client's view. Setting nil keeps the frame view
 * (and what it holds). `contentTopMargin` animates through the window's
 * animator inside an animation group. */
@interface VXBarlessCustomWindow : VXCustomWindow {
  NSView *_frameView;
  NSLayoutConstraint *_topConstraint;
  double _contentTopMargin;
}

/** The class of frame view that +frameViewForRect: makes; NSView here. */
+ (Class)frameViewClass;
/** A new frame view (autoreleased) of +frameViewClass with `rect`. */
+ (NSView *)frameViewForRect:(NSRect)rect;

/** The distance from the frame view's top to the client's view; 0 at
 * first. Non-finite values are ignored. */
@property(nonatomic, assign) double contentTopMargin;
/** The client's content view: the frame view's first subview, or nil. */
@property(nonatomic, readonly, nullable) NSView *actualContentView;

/** Makes the frame view once, sized like the window's frame. */
- (void)_initFrameView;

/** The rect with its height grown by contentTopMargin. On GNUstep under
 *  -GSScaleFactor 2, where window frames are in device pixels, the size is
 *  then scaled to them as NSWindow's own conversion does. */
- (NSRect)frameRectForContentRect:(NSRect)contentRect;

@end

NS_ASSUME_NONNULL_END
