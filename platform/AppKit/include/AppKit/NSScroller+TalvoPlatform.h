/*
 * Scroller and knob styles for GNUstep 0.29 (platform/AppKit/cells/
 * ScrollerStyles.mm).
 *
 * A scroller's style defaults to its class's +preferredScrollerStyle (legacy
 * for NSScroller); a scroll view's style, once set, is given to its
 * scrollers. Tiling uses +scrollerWidthForControlSize:scrollerStyle: of each
 * scroller's class: a legacy scroller takes its width from the content, an
 * overlay scroller floats over content of the full width.
 *
 * Not covered: overlay scrollers never fade out (-flashScrollers does
 * nothing), and the system preference notification is never posted.
 */
#ifndef TALVO_PLATFORM_NSSCROLLER_H
#define TALVO_PLATFORM_NSSCROLLER_H

#import <AppKit/NSScrollView.h>
#import <AppKit/NSScroller.h>

// Added at load time (only where GNUstep has none).
@interface NSScroller (TalvoPlatformStyleClassMethods)
+ (CGFloat)scrollerWidthForControlSize:(NSControlSize)controlSize
                         scrollerStyle:(NSScrollerStyle)scrollerStyle;
+ (BOOL)isCompatibleWithOverlayScrollers;
@end

@interface NSScroller (TalvoPlatformStyles)
- (NSScrollerStyle)scrollerStyle;
- (void)setScrollerStyle:(NSScrollerStyle)scrollerStyle;
- (NSScrollerKnobStyle)knobStyle;
- (void)setKnobStyle:(NSScrollerKnobStyle)knobStyle;
@end

@interface NSScrollView (TalvoPlatformStyles)
- (NSScrollerStyle)scrollerStyle;
- (void)setScrollerStyle:(NSScrollerStyle)scrollerStyle;
- (NSScrollerKnobStyle)scrollerKnobStyle;
- (void)setScrollerKnobStyle:(NSScrollerKnobStyle)knobStyle;
- (void)flashScrollers;
@end

#endif
