#import <Talvo/VXTransparentScroller.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXTransparentScroller

#pragma mark - Lifecycle

- (instancetype)initWithFrame:(NSRect)frameRect {
  return [super initWithFrame:frameRect];
}

#pragma mark - Public

- (void)drawKnobSlotInRect:(NSRect)slotRect highlight:(BOOL)flag {
}

- (void)drawArrow:(NSScrollerArrow)whichArrow highlight:(BOOL)flag {
}

- (NSScrollerKnobStyle)knobStyle {
  return NSScrollerKnobStyleLight;
}

+ (BOOL)isCompatibleWithOverlayScrollers {
  return YES;
}

+ (NSScrollerStyle)preferredScrollerStyle {
  return NSScrollerStyleOverlay;
}

@end
