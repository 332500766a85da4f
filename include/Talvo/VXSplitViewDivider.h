#import <AppKit/AppKit.h>

@class VXSplitView;

NS_ASSUME_NONNULL_BEGIN

/**
 * The thin vertical strip between two views of a VXSplitView. Placed only by
 * the split view's constraints; draws through the split view's
 * dividerDrawer, or as a dark and a light one-point strip.
 */
@interface VXSplitViewDivider : NSView {
  VXSplitView *_splitView;
  NSInteger _index;
}

/** The split view that made the divider (not retained). */
@property(nonatomic, assign, nullable) VXSplitView *splitView;
/** 0 for the divider after the first view in layout. */
@property(nonatomic, assign) NSInteger index;

- (BOOL)allowsVibrancy;

@end

NS_ASSUME_NONNULL_END
