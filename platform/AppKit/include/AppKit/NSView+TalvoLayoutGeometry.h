/*
 * The view geometry Auto Layout reads, on GNUstep: layout direction,
 * baselines, alignment rects and the fitting size.
 *
 * userInterfaceLayoutDirection is the view's own once set (setting it asks
 * for a layout pass, in which leading and trailing follow it); until then
 * the application's, which is left-to-right unless the user default
 * NSForceRightToLeftWritingDirection is YES (as on macOS). A view does not
 * inherit its superview's direction.
 *
 * firstBaselineOffsetFromTop and lastBaselineOffsetFromBottom are 0 for
 * views, as on macOS. For an NSControl whose cell is a text cell with a
 * font (NSTextField, for one) they say where GNUstep draws its text: the
 * line box (the font's defaultLineHeightForFont, times the number of lines
 * for a wrapping cell) is centred vertically in the cell's
 * titleRectForBounds:, and a line's baseline is one font ascender below the
 * line's top. (AppKit sets text at the top of the title rect, so its
 * numbers differ by the centring; the ascender rule is AppKit's.)
 * baselineOffsetFromBottom is lastBaselineOffsetFromBottom.
 *
 * alignmentRectInsets are zero by default; override them in a subclass.
 * alignmentRectForFrame: and frameForAlignmentRect: apply them (top inset at
 * the top edge whatever the view's flippedness, as on macOS).
 *
 * fittingSize is the smallest size the view's own constraints allow.
 *
 * Not covered: NSControl subclasses other than text cells (buttons, pop-up
 * buttons) answer 0 baselines; attributed strings with several fonts are
 * measured with the cell's font.
 */
#ifndef TALVO_PLATFORM_NSVIEW_LAYOUT_GEOMETRY_H
#define TALVO_PLATFORM_NSVIEW_LAYOUT_GEOMETRY_H

#import <AppKit/NSApplication.h>
#import <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSView (TalvoPlatformGeometry)

- (CGFloat)firstBaselineOffsetFromTop;
- (CGFloat)lastBaselineOffsetFromBottom;
- (CGFloat)baselineOffsetFromBottom;
- (NSEdgeInsets)alignmentRectInsets;
- (NSRect)alignmentRectForFrame:(NSRect)frame;
- (NSRect)frameForAlignmentRect:(NSRect)alignmentRect;
/** The smallest size the view's own constraints allow it. */
- (NSSize)fittingSize;

@end

@interface NSApplication (TalvoPlatformLayoutDirection)

/** Left-to-right unless NSForceRightToLeftWritingDirection is set. */
- (NSUserInterfaceLayoutDirection)userInterfaceLayoutDirection;

@end

NS_ASSUME_NONNULL_END

#endif
