// The view geometry that Auto Layout reads: layout direction, baselines,
// alignment rects and the fitting size. GNUstep answers a fixed
// left-to-right direction and lacks the rest.

#import <AppKit/AppKit.h>

#include <cmath>

#import "platform/AppKit/autolayout/TVLayoutState.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

// The cell whose text a control shows, or nil for controls without text.
NSCell *TextCell(NSView *view) {
  if (![view isKindOfClass:[NSControl class]]) {
    return nil;
  }
  NSCell *cell = [(NSControl *)view cell];
  if (cell == nil || [cell type] != NSTextCellType || [cell font] == nil) {
    return nil;
  }
  return cell;
}

// Where GNUstep draws a text cell's first line, measured from the top of
// the control: the line box of the cell's font is centred vertically in
// the cell's title rect (GNUstep centres text rather than setting it at the
// top as AppKit does), and the baseline sits one ascender below its top.
// The line box is the font's default line height, so an empty field has
// the same baseline as a filled one.
struct TextMetrics {
  CGFloat firstBaselineFromTop;
  CGFloat lineHeight;
  CGFloat textHeight;
};

TextMetrics MeasureText(NSView *view, NSCell *cell) {
  NSFont *font = [cell font];
  NSRect bounds = [view bounds];
  NSRect title = [cell titleRectForBounds:bounds];
  CGFloat lineHeight = [font defaultLineHeightForFont];
  CGFloat textHeight = lineHeight;
  if ([cell wraps]) {
    NSSize size = [cell cellSizeForBounds:NSMakeRect(0, 0, NSWidth(title), CGFLOAT_MAX)];
    NSSize oneLine = [cell cellSizeForBounds:NSMakeRect(0, 0, CGFLOAT_MAX, CGFLOAT_MAX)];
    // The cell's own insets are in both sizes: the difference is the extra
    // lines.
    textHeight = MAX(lineHeight, lineHeight + (size.height - oneLine.height));
  }
  CGFloat topInset =
      [view isFlipped] ? NSMinY(title) - NSMinY(bounds) : NSMaxY(bounds) - NSMaxY(title);
  CGFloat textTop = topInset + (NSHeight(title) - MIN(textHeight, NSHeight(title))) / 2;
  TextMetrics metrics;
  metrics.firstBaselineFromTop = textTop + [font ascender];
  metrics.lineHeight = lineHeight;
  metrics.textHeight = textHeight;
  return metrics;
}

}  // namespace

#pragma mark - Layout direction

// AppKit's switch for testing right-to-left interfaces.
static NSUserInterfaceLayoutDirection TVDefaultLayoutDirection(void) {
  return [[NSUserDefaults standardUserDefaults] boolForKey:@"NSForceRightToLeftWritingDirection"]
             ? NSUserInterfaceLayoutDirectionRightToLeft
             : NSUserInterfaceLayoutDirectionLeftToRight;
}

static NSUserInterfaceLayoutDirection TVViewLayoutDirection(NSView *view, SEL selector) {
  _TVViewLayoutState *state = TVLayoutState(view, NO);
  if (state != nil && state->_hasLayoutDirection) {
    return state->_layoutDirection;
  }
  // NSApp, not +sharedApplication: asking must not start an application.
  return NSApp != nil ? [NSApp userInterfaceLayoutDirection] : TVDefaultLayoutDirection();
}

static void TVViewSetLayoutDirection(NSView *view, SEL selector,
                                     NSUserInterfaceLayoutDirection direction) {
  if (direction != NSUserInterfaceLayoutDirectionLeftToRight &&
      direction != NSUserInterfaceLayoutDirectionRightToLeft) {
    return;
  }
  _TVViewLayoutState *state = TVLayoutState(view, YES);
  BOOL changed = !state->_hasLayoutDirection || state->_layoutDirection != direction;
  state->_hasLayoutDirection = YES;
  state->_layoutDirection = direction;
  if (changed) {
    [view setNeedsLayout:YES];
    TVMarkNeedsLayoutPass(view);
  }
}

@implementation NSApplication (TalvoPlatformLayoutDirection)

- (NSUserInterfaceLayoutDirection)userInterfaceLayoutDirection {
  return TVDefaultLayoutDirection();
}

@end

#pragma mark - Baselines, alignment rects, fitting size

@implementation NSView (TalvoPlatformGeometry)

- (CGFloat)firstBaselineOffsetFromTop {
  NSCell *cell = TextCell(self);
  return cell != nil ? MeasureText(self, cell).firstBaselineFromTop : 0;
}

- (CGFloat)lastBaselineOffsetFromBottom {
  NSCell *cell = TextCell(self);
  if (cell == nil) {
    return 0;
  }
  TextMetrics metrics = MeasureText(self, cell);
  CGFloat lines = MAX(1, std::floor(metrics.textHeight / metrics.lineHeight + 0.001));
  CGFloat lastFromTop = metrics.firstBaselineFromTop + (lines - 1) * metrics.lineHeight;
  return NSHeight([self bounds]) - lastFromTop;
}

- (CGFloat)baselineOffsetFromBottom {
  return [self lastBaselineOffsetFromBottom];
}

- (NSEdgeInsets)alignmentRectInsets {
  return NSEdgeInsetsMake(0, 0, 0, 0);
}

// The insets grow the alignment rect outward to the frame; y grows upward
// in frames, so bottom is on the origin side.
- (NSRect)alignmentRectForFrame:(NSRect)frame {
  NSEdgeInsets insets = [self alignmentRectInsets];
  return NSMakeRect(NSMinX(frame) + insets.left, NSMinY(frame) + insets.bottom,
                    NSWidth(frame) - insets.left - insets.right,
                    NSHeight(frame) - insets.top - insets.bottom);
}

- (NSRect)frameForAlignmentRect:(NSRect)alignmentRect {
  NSEdgeInsets insets = [self alignmentRectInsets];
  return NSMakeRect(NSMinX(alignmentRect) - insets.left, NSMinY(alignmentRect) - insets.bottom,
                    NSWidth(alignmentRect) + insets.left + insets.right,
                    NSHeight(alignmentRect) + insets.top + insets.bottom);
}

- (NSSize)fittingSize {
  return TVFittingSize(self);
}

@end

#pragma mark - Hooks

@interface _TVViewGeometryHooks : NSObject
@end

@implementation _TVViewGeometryHooks

+ (void)load {
  Class view = [NSView class];
  TVReplaceInstanceMethod(view, @selector(userInterfaceLayoutDirection),
                          (IMP)TVViewLayoutDirection);
  TVReplaceInstanceMethod(view, @selector(setUserInterfaceLayoutDirection:),
                          (IMP)TVViewSetLayoutDirection);
}

@end
