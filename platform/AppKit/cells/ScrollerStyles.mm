// Scroller styles for GNUstep 0.29, which has neither scroller nor knob
// styles and tiles every scroll view with its fixed 18-point scroller width.
// A scroller has a style (legacy or overlay) and a knob style; a scroll view
// sets both on its scrollers, and tiles with the width its scrollers' class
// gives for their control size and style: a legacy scroller takes that width
// from the content, an overlay scroller floats over content that keeps the
// full width.

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

#include <cmath>
#include <unordered_map>

namespace {

struct TVStyles {
  bool hasStyle = false;  // set explicitly (otherwise the class's preference)
  NSScrollerStyle style = NSScrollerStyleLegacy;
  NSScrollerKnobStyle knobStyle = NSScrollerKnobStyleDefault;
  bool hasKnobStyle = false;
};

// Scrollers' and scroll views' styles, by object; entries leave in dealloc.
std::unordered_map<const void *, TVStyles> &StyleTable() {
  static std::unordered_map<const void *, TVStyles> table;
  return table;
}

TVStyles StylesOf(id object) {
  auto found = StyleTable().find(object);
  return found == StyleTable().end() ? TVStyles() : found->second;
}

bool ValidStyle(NSInteger style) {
  return style == NSScrollerStyleLegacy || style == NSScrollerStyleOverlay;
}

bool ValidKnobStyle(NSInteger style) {
  return style >= NSScrollerKnobStyleDefault && style <= NSScrollerKnobStyleLight;
}

}  // namespace

#pragma mark - Scroller class methods

static CGFloat TVScrollerWidthForSizeAndStyle(Class self, SEL _cmd, NSControlSize size,
                                              NSScrollerStyle style) {
  // The overlay scroller, when it shows, is as wide as the legacy one.
  return [self scrollerWidthForControlSize:size];
}

static NSScrollerStyle TVPreferredScrollerStyle(Class self, SEL _cmd) {
  return NSScrollerStyleLegacy;
}

static BOOL TVCompatibleWithOverlay(Class self, SEL _cmd) {
  Class base = [NSScroller class];
  if (self == base) {
    return YES;
  }
  // A subclass that draws on its own may not suit a scroller over content.
  SEL drawing[] = {@selector(drawRect:), @selector(drawKnob), @selector(drawKnobSlotInRect:highlight:),
                   @selector(drawArrow:highlight:)};
  for (SEL selector : drawing) {
    if (class_getMethodImplementation(self, selector) !=
        class_getMethodImplementation(base, selector)) {
      return NO;
    }
  }
  return YES;
}

#pragma mark - Knob drawing

static void (*originalDrawKnob)(id, SEL) = NULL;

static void TVScrollerDrawKnob(NSScroller *self, SEL _cmd) {
  NSScrollerKnobStyle knobStyle = [self knobStyle];
  if (knobStyle != NSScrollerKnobStyleDark && knobStyle != NSScrollerKnobStyleLight) {
    originalDrawKnob(self, _cmd);
    return;
  }
  NSRect knob = [self rectForPart:NSScrollerKnob];
  if (NSIsEmptyRect(knob)) {
    return;
  }
  // A rounded knob, dark for light backgrounds and light for dark ones.
  NSRect body = NSInsetRect(knob, 2, 2);
  CGFloat radius = MIN(NSWidth(body), NSHeight(body)) / 2;
  NSBezierPath *path = [NSBezierPath bezierPathWithRoundedRect:body xRadius:radius yRadius:radius];
  [NSGraphicsContext saveGraphicsState];
  [(knobStyle == NSScrollerKnobStyleDark ? [NSColor colorWithCalibratedWhite:0 alpha:0.5]
                                         : [NSColor colorWithCalibratedWhite:1 alpha:0.6]) set];
  [path fill];
  [NSGraphicsContext restoreGraphicsState];
}

#pragma mark - Tiling

static void (*originalTile)(id, SEL) = NULL;

// The line GNUstep keeps between content and scroller (its tiling reserves
// its own scroller width and this line, whatever the scroller's width).
static CGFloat TVSeparator(CGFloat gap) {
  return gap < 0 ? 0 : (gap > 1 ? 1 : gap);
}

// Re-fits one scroller and the content after GNUstep's tiling, which gave the
// scroller its fixed width and took that width (plus a separator) from the
// content.
static void TVFitScroller(NSScrollView *scrollView, NSScroller *scroller, BOOL vertical) {
  if (scroller == nil || [scroller superview] != scrollView || [scroller isHidden]) {
    return;
  }
  NSClipView *content = [scrollView contentView];
  NSRect old = [scroller frame];
  NSRect frame = old;
  NSRect contentFrame = [content frame];
  NSScrollerStyle style = [scroller scrollerStyle];
  CGFloat width = [[scroller class] scrollerWidthForControlSize:[scroller controlSize]
                                                  scrollerStyle:style];
  if (!(width > 0) || !std::isfinite(width)) {
    return;
  }
  BOOL overlay = style == NSScrollerStyleOverlay;
  if (vertical) {
    BOOL trailing = NSMidX(old) >= NSMidX(contentFrame);
    if (trailing) {
      CGFloat gap = TVSeparator(NSMinX(old) - NSMaxX(contentFrame));
      frame.origin.x = NSMaxX(old) - width;
      frame.size.width = width;
      contentFrame.size.width = (overlay ? NSMaxX(old) : NSMinX(frame) - gap) - NSMinX(contentFrame);
    } else {
      CGFloat gap = TVSeparator(NSMinX(contentFrame) - NSMaxX(old));
      frame.size.width = width;
      CGFloat start = overlay ? NSMinX(old) : NSMaxX(frame) + gap;
      contentFrame.size.width = NSMaxX(contentFrame) - start;
      contentFrame.origin.x = start;
    }
  } else {
    BOOL highY = NSMidY(old) >= NSMidY(contentFrame);
    if (highY) {
      CGFloat gap = TVSeparator(NSMinY(old) - NSMaxY(contentFrame));
      frame.origin.y = NSMaxY(old) - width;
      frame.size.height = width;
      contentFrame.size.height =
          (overlay ? NSMaxY(old) : NSMinY(frame) - gap) - NSMinY(contentFrame);
    } else {
      CGFloat gap = TVSeparator(NSMinY(contentFrame) - NSMaxY(old));
      frame.size.height = width;
      CGFloat start = overlay ? NSMinY(old) : NSMaxY(frame) + gap;
      contentFrame.size.height = NSMaxY(contentFrame) - start;
      contentFrame.origin.y = start;
    }
  }
  if (contentFrame.size.width < 0 || contentFrame.size.height < 0) {
    return;
  }
  if (!NSEqualRects(frame, old)) {
    [scroller setFrame:frame];
  }
  if (!NSEqualRects(contentFrame, [content frame])) {
    [content setFrame:contentFrame];
  }
  if (overlay) {
    // Floating scrollers draw over the content.
    NSArray *subviews = [scrollView subviews];
    if ([subviews indexOfObjectIdenticalTo:scroller] < [subviews indexOfObjectIdenticalTo:content]) {
      [scroller retain];
      [scroller removeFromSuperview];
      [scrollView addSubview:scroller positioned:NSWindowAbove relativeTo:content];
      [scroller release];
    }
  }
}

// Keeps a scroller running along the content's whole edge when it did before.
static void TVFollowContent(NSScroller *scroller, NSRect before, NSRect after, BOOL vertical) {
  if (scroller == nil || [scroller isHidden]) {
    return;
  }
  NSRect frame = [scroller frame];
  if (vertical && std::fabs(NSMinY(frame) - NSMinY(before)) < 0.5 &&
      std::fabs(NSHeight(frame) - NSHeight(before)) < 0.5) {
    frame.origin.y = NSMinY(after);
    frame.size.height = NSHeight(after);
  } else if (!vertical && std::fabs(NSMinX(frame) - NSMinX(before)) < 0.5 &&
             std::fabs(NSWidth(frame) - NSWidth(before)) < 0.5) {
    frame.origin.x = NSMinX(after);
    frame.size.width = NSWidth(after);
  } else {
    return;
  }
  if (!NSEqualRects(frame, [scroller frame])) {
    [scroller setFrame:frame];
  }
}

static void TVScrollViewTile(NSScrollView *self, SEL _cmd) {
  originalTile(self, _cmd);
  NSScroller *vertical = [self hasVerticalScroller] ? [self verticalScroller] : nil;
  NSScroller *horizontal = [self hasHorizontalScroller] ? [self horizontalScroller] : nil;
  TVStyles own = StylesOf(self);
  if (own.hasStyle) {
    for (NSScroller *scroller in @[ vertical ?: (id)[NSNull null], horizontal ?: (id)[NSNull null] ]) {
      if ([scroller isKindOfClass:[NSScroller class]]) {
        StyleTable()[scroller].hasStyle = true;
        StyleTable()[scroller].style = own.style;
      }
    }
  }
  NSRect before = [[self contentView] frame];
  TVFitScroller(self, vertical, YES);
  NSRect middle = [[self contentView] frame];
  TVFollowContent(horizontal, before, middle, NO);
  TVFitScroller(self, horizontal, NO);
  TVFollowContent(vertical, middle, [[self contentView] frame], YES);
}

#pragma mark - Lifecycle

static void (*originalScrollerDealloc)(id, SEL) = NULL;
static void (*originalScrollViewDealloc)(id, SEL) = NULL;

static void TVScrollerDealloc(NSScroller *self, SEL _cmd) {
  StyleTable().erase(self);
  originalScrollerDealloc(self, _cmd);
}

static void TVScrollViewDealloc(NSScrollView *self, SEL _cmd) {
  StyleTable().erase(self);
  originalScrollViewDealloc(self, _cmd);
}

static void TVRetileAround(NSScroller *scroller) {
  NSView *parent = [scroller superview];
  if ([parent isKindOfClass:[NSScrollView class]]) {
    [(NSScrollView *)parent tile];
    [parent setNeedsDisplay:YES];
  }
}

#pragma mark - Installation

@implementation NSScroller (TalvoPlatformStyles)

- (NSScrollerStyle)scrollerStyle {
  TVStyles styles = StylesOf(self);
  if (styles.hasStyle) {
    return styles.style;
  }
  NSScrollerStyle preferred = [[self class] preferredScrollerStyle];
  return ValidStyle(preferred) ? preferred : NSScrollerStyleLegacy;
}

- (void)setScrollerStyle:(NSScrollerStyle)style {
  if (!ValidStyle(style)) {
    return;
  }
  BOOL changed = [self scrollerStyle] != style;
  TVStyles &styles = StyleTable()[self];
  styles.hasStyle = true;
  styles.style = style;
  if (changed) {
    TVRetileAround(self);
    [self setNeedsDisplay:YES];
  }
}

- (NSScrollerKnobStyle)knobStyle {
  return StylesOf(self).knobStyle;
}

- (void)setKnobStyle:(NSScrollerKnobStyle)knobStyle {
  if (!ValidKnobStyle(knobStyle)) {
    return;
  }
  TVStyles &styles = StyleTable()[self];
  styles.knobStyle = knobStyle;
  styles.hasKnobStyle = true;
  [self setNeedsDisplay:YES];
}

+ (void)load {
  Class meta = objc_getMetaClass("NSScroller");
  class_addMethod(meta, @selector(scrollerWidthForControlSize:scrollerStyle:),
                  (IMP)TVScrollerWidthForSizeAndStyle, "d@:QQ");
  class_addMethod(meta, @selector(preferredScrollerStyle), (IMP)TVPreferredScrollerStyle, "q@:");
  class_addMethod(meta, @selector(isCompatibleWithOverlayScrollers), (IMP)TVCompatibleWithOverlay,
                  "c@:");
  originalDrawKnob = (void (*)(id, SEL))TVReplaceInstanceMethod(
      objc_getClass("NSScroller"), @selector(drawKnob), (IMP)TVScrollerDrawKnob);
  originalScrollerDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      objc_getClass("NSScroller"), @selector(dealloc), (IMP)TVScrollerDealloc);
  originalTile = (void (*)(id, SEL))TVReplaceInstanceMethod(objc_getClass("NSScrollView"), @selector(tile),
                                                            (IMP)TVScrollViewTile);
  originalScrollViewDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
      objc_getClass("NSScrollView"), @selector(dealloc), (IMP)TVScrollViewDealloc);
}

@end

@implementation NSScrollView (TalvoPlatformStyles)

- (NSScrollerStyle)scrollerStyle {
  TVStyles styles = StylesOf(self);
  if (styles.hasStyle) {
    return styles.style;
  }
  NSScroller *scroller = [self verticalScroller] ?: [self horizontalScroller];
  return scroller != nil ? [scroller scrollerStyle] : [NSScroller preferredScrollerStyle];
}

- (void)setScrollerStyle:(NSScrollerStyle)style {
  if (!ValidStyle(style)) {
    return;
  }
  TVStyles &styles = StyleTable()[self];
  styles.hasStyle = true;
  styles.style = style;
  [self tile];
  [self setNeedsDisplay:YES];
}

- (NSScrollerKnobStyle)scrollerKnobStyle {
  TVStyles styles = StylesOf(self);
  if (styles.hasKnobStyle) {
    return styles.knobStyle;
  }
  NSScroller *scroller = [self verticalScroller] ?: [self horizontalScroller];
  return scroller != nil ? [scroller knobStyle] : NSScrollerKnobStyleDefault;
}

- (void)setScrollerKnobStyle:(NSScrollerKnobStyle)knobStyle {
  if (!ValidKnobStyle(knobStyle)) {
    return;
  }
  TVStyles &styles = StyleTable()[self];
  styles.knobStyle = knobStyle;
  styles.hasKnobStyle = true;
  [[self verticalScroller] setKnobStyle:knobStyle];
  [[self horizontalScroller] setKnobStyle:knobStyle];
}

- (void)flashScrollers {
  // Overlay scrollers here stay visible: nothing to flash.
}

@end
