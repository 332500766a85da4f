#import "gallery/pages/StackViewPage.h"

@implementation StackViewPage

- (NSString *)identifier {
  return @"stack-view";
}

- (NSString *)title {
  return @"Stack view and container constraints";
}

- (NSString *)caption {
  return @"A horizontal stack (its hidden second view skipped, gaps of 6 from a margin of -6), "
         @"a vertical one, and a panel pinned inside a container with insets 10/20/30/40.";
}

- (NSArray *)colors {
  return [NSArray arrayWithObjects:[NSColor colorWithCalibratedRed:0.90 green:0.35 blue:0.30 alpha:1],
                                   [NSColor colorWithCalibratedRed:0.30 green:0.30 blue:0.30 alpha:1],
                                   [NSColor colorWithCalibratedRed:0.95 green:0.70 blue:0.20 alpha:1],
                                   [NSColor colorWithCalibratedRed:0.30 green:0.65 blue:0.40 alpha:1],
                                   [NSColor colorWithCalibratedRed:0.25 green:0.45 blue:0.85 alpha:1],
                                   nil];
}

- (VXStackView *)stackInFrame:(NSRect)frame vertical:(BOOL)vertical hideSecond:(BOOL)hide {
  VXStackView *stack = [[[VXStackView alloc] initWithFrame:frame] autorelease];
  [stack setVertical:vertical];
  [stack setMargin:-6];
  NSUInteger index = 0;
  for (NSColor *color in [self colors]) {
    NSView *item = GallerySwatch(color, NSMakeRect(0, 0, 60, 40));
    [item setHidden:hide && index == 1];
    [stack addSubview:item];
    index++;
  }
  // Widths along a horizontal stack, heights along a vertical one.
  NSLayoutAttribute size = vertical ? NSLayoutAttributeHeight : NSLayoutAttributeWidth;
  for (NSView *item in [stack subviews]) {
    [stack addConstraint:[NSLayoutConstraint constraintWithItem:item
                                                      attribute:size
                                                      relatedBy:NSLayoutRelationEqual
                                                         toItem:nil
                                                      attribute:NSLayoutAttributeNotAnAttribute
                                                     multiplier:1
                                                       constant:vertical ? 30 : 70]];
  }
  return stack;
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  NSView *page = [[[NSView alloc] initWithFrame:frame] autorelease];
  double top = NSHeight(frame);

  [page addSubview:GalleryLabel(@"Horizontal, second view hidden", NSMakeRect(20, top - 36, 300, 20))];
  // Four visible views of 70 with gaps of 6: 298 wide.
  [page addSubview:[self stackInFrame:NSMakeRect(20, top - 110, 298, 70) vertical:NO hideSecond:YES]];

  [page addSubview:GalleryLabel(@"Vertical", NSMakeRect(380, top - 36, 200, 20))];
  // Five views of 30 with gaps of 6: 174 high.
  [page addSubview:[self stackInFrame:NSMakeRect(380, top - 214, 120, 174) vertical:YES hideSecond:NO]];

  [page addSubview:GalleryLabel(@"Pinned with insets", NSMakeRect(20, top - 140, 300, 20))];
  NSView *container = GallerySwatch([NSColor colorWithCalibratedWhite:0.85 alpha:1],
                                    NSMakeRect(20, top - 330, 330, 180));
  NSView *inner = GallerySwatch([NSColor colorWithCalibratedRed:0.25 green:0.45 blue:0.85 alpha:1],
                                NSZeroRect);
  [inner setTranslatesAutoresizingMaskIntoConstraints:NO];
  [container addSubview:inner];
  NSEdgeInsets insets = NSEdgeInsetsMake(10, 20, 30, 40);
  [container addConstraints:[NSLayoutConstraint constraintsWithItem:inner
                                                        inContainer:container
                                                         edgeInsets:insets]];
  [page addSubview:container];
  return page;
}

@end
