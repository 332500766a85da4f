#import "gallery/pages/ControlsPage.h"

// A black-on-clear template icon: a rounded square with a hole.
static NSImage *GalleryIcon(CGFloat side) {
  NSImage *image = [[[NSImage alloc] initWithSize:NSMakeSize(side, side)] autorelease];
  [image lockFocus];
  [[NSColor clearColor] set];
  NSRectFillUsingOperation(NSMakeRect(0, 0, side, side), NSCompositeCopy);
  NSBezierPath *shape = [NSBezierPath bezierPath];
  [shape appendBezierPathWithRoundedRect:NSMakeRect(1, 1, side - 2, side - 2)
                                 xRadius:side / 5
                                 yRadius:side / 5];
  [shape appendBezierPathWithOvalInRect:NSInsetRect(NSMakeRect(0, 0, side, side), side * 0.3,
                                                    side * 0.3)];
  [shape setWindingRule:NSEvenOddWindingRule];
  [[NSColor blackColor] set];
  [shape fill];
  [image unlockFocus];
  return image;
}

// One state of the drawer in one look. The drawer draws in a control's
// bounds (it flips about their height), so each state has a view of its own.
@interface ControlsPageDrawerState : NSView {
  NSImage *_icon;
  BOOL _newer;
  int _state;
}
- (instancetype)initWithFrame:(NSRect)frame newerLook:(BOOL)newer state:(int)state;
@end

@implementation ControlsPageDrawerState

- (instancetype)initWithFrame:(NSRect)frame newerLook:(BOOL)newer state:(int)state {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _icon = [GalleryIcon(18) retain];
    _newer = newer;
    _state = state;
  }
  return self;
}

- (void)dealloc {
  [_icon release];
  [super dealloc];
}

- (void)drawRect:(NSRect)dirtyRect {
  [[NSColor colorWithCalibratedWhite:0.93 alpha:1] set];
  NSRectFill([self bounds]);
  // 0 normal, 1 over, 2 pressed, 3 on, 4 disabled, 5 not main, 6 over and pressed.
  VXGradientCellDrawer *drawer = [[VXGradientCellDrawer alloc] init];
  [drawer setGradient:[NSGradient grayGradientForNewerLook:_newer]];
  [drawer setOnGradient:[NSGradient blueGradientForNewerLook:_newer]];
  [drawer setLightShadowOpacity:_newer ? 0.0 : 0.42];
  [drawer setInnerShadowRadius:_newer ? 1.0 : 2.0];
  [drawer setInnerShadowOpacity:_newer ? 1.0 : 0.85];
  [drawer setEnabledDrawing:_state != 4];
  [drawer setMainWindowDrawing:_state != 5];
  [drawer setMouseOverDrawing:_state == 1 || _state == 6];
  [drawer setHighlightedDrawing:_state == 2 || _state == 6];
  [drawer setDrawingState:_state == 3 ? 1 : 0];
  [drawer drawImage:_icon inFrame:[self bounds]];
  [drawer release];
}

@end

// Opens the popover control's popup once the page is in a window.
@interface ControlsPageView : NSView {
  VXPopoverViewsSegmentedControl *_segmented;
}
- (void)setSegmented:(VXPopoverViewsSegmentedControl *)segmented;
@end

@implementation ControlsPageView

- (void)setSegmented:(VXPopoverViewsSegmentedControl *)segmented {
  _segmented = segmented;  // a subview: the page holds it
}

- (void)viewDidMoveToWindow {
  [super viewDidMoveToWindow];
  if ([self window] != nil && _segmented != nil) {
    [_segmented performSelector:@selector(showPopoverView) withObject:nil afterDelay:0.05];
  } else {
    [NSObject cancelPreviousPerformRequestsWithTarget:_segmented];
    [_segmented dismissPopoverView];
  }
}

@end

@implementation ControlsPage

- (NSString *)identifier {
  return @"controls";
}

- (NSString *)title {
  return @"Controls and cells";
}

- (NSString *)caption {
  return @"The gradient drawer in seven states in both looks, gradient, tab-bar and pop-up cells, "
         @"the flat slider at 0, 30, 70 and 100 and disabled, matte colour wells, a mask image "
         @"view, a centred text field, hover buttons and the popover segmented control.";
}

- (void)addLabel:(NSString *)text at:(NSPoint)point to:(NSView *)page {
  [page addSubview:GalleryLabel(text, NSMakeRect(point.x, point.y, 680 - point.x, 17))];
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  ControlsPageView *page = [[[ControlsPageView alloc] initWithFrame:frame] autorelease];
  CGFloat top = NSHeight(frame);
  NSImage *icon = GalleryIcon(16);

  // The drawer's states: normal, over, pressed, on, disabled, not main, over + pressed.
  [self addLabel:@"normal   over  pressed   on   disabled  not main  both"
              at:NSMakePoint(20, top - 24)
              to:page];
  for (int look = 0; look < 2; ++look) {
    for (int state = 0; state < 7; ++state) {
      NSRect cell = NSMakeRect(20 + state * 48, top - 64 - look * 36, 48, 36);
      [page addSubview:[[[ControlsPageDrawerState alloc] initWithFrame:cell
                                                             newerLook:look == 1
                                                                 state:state] autorelease]];
    }
  }
  [self addLabel:@"older look (top), newer look (bottom)" at:NSMakePoint(20, top - 120) to:page];

  // Gradient button cells in buttons: plain, light gray, on with blue.
  CGFloat x = 380;
  for (int i = 0; i < 3; ++i) {
    VXButton *button =
        [[[VXButton alloc] initWithFrame:NSMakeRect(x + i * 44, top - 60, 36, 30)] autorelease];
    VXGradientButtonCell *cell = [[[VXGradientButtonCell alloc] initImageCell:icon] autorelease];
    [cell setBordered:NO];
    [cell setImagePosition:NSImageOnly];
    [cell setGradientType:i == 1 ? 1 : 0];
    [cell setButtonType:NSToggleButton];
    [cell setShowsStateBy:NSContentsCellMask];
    [cell setState:i == 2 ? NSOnState : NSOffState];
    [button setCell:cell];
    [page addSubview:button];
  }
  // Tab-bar cells, the middle one on.
  for (int i = 0; i < 3; ++i) {
    NSButton *tab = [[[NSButton alloc] initWithFrame:NSMakeRect(x + 140 + i * 56, top - 60, 52, 30)]
        autorelease];
    VXTabBarButtonCell *cell = [[[VXTabBarButtonCell alloc] init] autorelease];
    [cell setImage:icon];
    [cell setImagePosition:NSImageOnly];
    [cell setBordered:NO];
    [cell setState:i == 1 ? NSOnState : NSOffState];
    [tab setCell:cell];
    [page addSubview:tab];
  }
  [self addLabel:@"gradient buttons, tab bar (middle on)" at:NSMakePoint(x, top - 84) to:page];

  NSPopUpButton *popUp = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(x, top - 130, 60, 30)
                                                     pullsDown:NO] autorelease];
  VXGradientPopUpButtonCell *popUpCell =
      [[[VXGradientPopUpButtonCell alloc] initTextCell:@"" pullsDown:NO] autorelease];
  [popUp setCell:popUpCell];
  [popUp addItemWithTitle:@""];
  [[popUp itemAtIndex:0] setImage:icon];
  [popUp selectItemAtIndex:0];
  [popUpCell setImage:icon];
  [page addSubview:popUp];
  [self addLabel:@"gradient pop-up" at:NSMakePoint(x + 70, top - 124) to:page];

  // Flat sliders.
  CGFloat y = top - 170;
  const double values[] = {0, 30, 70, 100};
  for (int i = 0; i < 5; ++i) {
    NSSlider *slider =
        [[[NSSlider alloc] initWithFrame:NSMakeRect(20 + i * 136, y, 124, 22)] autorelease];
    [slider setCell:[[[VXFlatSliderCell alloc] init] autorelease]];
    [slider setMinValue:0];
    [slider setMaxValue:100];
    [slider setDoubleValue:i < 4 ? values[i] : 50];
    [slider setEnabled:i < 4];
    [page addSubview:slider];
  }
  [self addLabel:@"flat slider at 0, 30, 70, 100; disabled at 50"
              at:NSMakePoint(20, y - 20)
              to:page];

  // Small views.
  y = top - 250;
  for (int i = 0; i < 2; ++i) {
    VXMatteColorWell *well =
        [[[VXMatteColorWell alloc] initWithFrame:NSMakeRect(20 + i * 60, y, 50, 30)] autorelease];
    [well setBordered:i == 0];
    [well setFrame:[well frame]];
    [well setColor:i == 0 ? [NSColor colorWithCalibratedRed:0.85 green:0.3 blue:0.2 alpha:1]
                          : [NSColor colorWithCalibratedRed:0.2 green:0.45 blue:0.85 alpha:1]];
    [page addSubview:well];
  }
  VXMaskImageView *mask =
      [[[VXMaskImageView alloc] initWithFrame:NSMakeRect(150, y, 30, 30)] autorelease];
  [mask setMaskImage:GalleryIcon(30)];
  [mask setFillColor:[NSColor colorWithCalibratedRed:0.1 green:0.6 blue:0.3 alpha:1]];
  [page addSubview:mask];
  NSTextField *field =
      [[[NSTextField alloc] initWithFrame:NSMakeRect(200, y - 6, 160, 42)] autorelease];
  VXVerticallyCenteredTextFieldCell *fieldCell =
      [[[VXVerticallyCenteredTextFieldCell alloc] initTextCell:@"Centred text"] autorelease];
  [fieldCell setEditable:YES];
  [fieldCell setBezeled:YES];
  [fieldCell setDrawsBackground:YES];
  [field setCell:fieldCell];
  [page addSubview:field];
  VXButton *hover = [[[VXButton alloc] initWithFrame:NSMakeRect(380, y, 100, 28)] autorelease];
  [hover setTitle:@"Hover me"];
  [page addSubview:hover];
  VXAnimatedButton *fading =
      [[[VXAnimatedButton alloc] initWithFrame:NSMakeRect(490, y, 100, 28)] autorelease];
  [fading setTitle:@"Fading"];
  [fading setWantsLayer:YES];
  [page addSubview:fading];
  NSScrollView *scroll =
      [[[NSScrollView alloc] initWithFrame:NSMakeRect(610, y - 60, 90, 90)] autorelease];
  VXTransparentScroller *scroller =
      [[[VXTransparentScroller alloc] initWithFrame:NSMakeRect(0, 0, 12, 90)] autorelease];
  [scroll setVerticalScroller:scroller];
  [scroll setHasVerticalScroller:YES];
  [scroll setDocumentView:GallerySwatch([NSColor colorWithCalibratedWhite:0.8 alpha:1],
                                        NSMakeRect(0, 0, 80, 300))];
  [page addSubview:scroll];
  [self addLabel:@"matte wells, mask view, centred text, hover and fading buttons, overlay scroller"
              at:NSMakePoint(20, y - 24)
              to:page];

  // The popover segmented control, its first segment's popup open.
  y = top - 340;
  VXPopoverViewsSegmentedControl *segmented = [[[VXPopoverViewsSegmentedControl alloc]
      initWithFrame:NSMakeRect(20, y, 210, 24)] autorelease];
  [segmented setSegmentCount:3];
  NSArray *labels = @[ @"Colour", @"Size", @"None" ];
  for (NSInteger i = 0; i < 3; ++i) {
    [segmented setWidth:66 forSegment:i];
    [segmented setLabel:[labels objectAtIndex:(NSUInteger)i] forSegment:i];
  }
  for (NSInteger i = 0; i < 2; ++i) {
    NSView *accessory =
        GallerySwatch(i == 0 ? [NSColor colorWithCalibratedRed:0.95 green:0.8 blue:0.4 alpha:1]
                             : [NSColor colorWithCalibratedRed:0.6 green:0.8 blue:0.95 alpha:1],
                      NSMakeRect(0, 0, 120 + 40 * i, 60));
    [accessory addSubview:GalleryLabel(i == 0 ? @"segment 1's view" : @"segment 2's view",
                                       NSMakeRect(8, 20, 150, 17))];
    [segmented setAccessoryView:accessory forSegment:i];
  }
  [segmented setSelectedSegment:0];
  [segmented awakeFromNib];
  [page addSubview:segmented];
  [page setSegmented:segmented];
  [self addLabel:@"popover segmented control (segment 3 has no view)"
              at:NSMakePoint(20, y - 24)
              to:page];
  return page;
}

- (NSString *)layoutReportForView:(NSView *)pageView {
  for (NSView *view in [pageView subviews]) {
    if ([view isKindOfClass:[VXPopoverViewsSegmentedControl class]]) {
      NSInteger segment = [(VXPopoverViewsSegmentedControl *)view selectedSegment];
      BOOL shown = NO;
      for (NSWindow *child in [[pageView window] childWindows]) {
        if ([child isVisible]) shown = YES;
      }
      return [NSString
          stringWithFormat:@"popover segment %ld %@", (long)segment, shown ? @"shown" : @"hidden"];
    }
  }
  return @"no popover control";
}

@end
