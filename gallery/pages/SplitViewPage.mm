#import "gallery/pages/SplitViewPage.h"

// Owns the page's split view and answers its buttons.
@interface SplitViewPageController : NSObject <VXSplitViewDelegate> {
  VXSplitView *_splitView;  // not retained: the page view holds it
  NSUInteger _pushed;
}
- (instancetype)initWithSplitView:(VXSplitView *)splitView;
@end

@implementation SplitViewPageController

- (instancetype)initWithSplitView:(VXSplitView *)splitView {
  self = [super init];
  if (self != nil) {
    _splitView = splitView;
  }
  return self;
}

- (NSView *)panelNamed:(NSString *)name width:(double)width color:(NSColor *)color {
  NSView *panel = GallerySwatch(color, NSMakeRect(0, 0, width, 300));
  NSTextField *label = GalleryLabel(name, NSMakeRect(8, 8, 140, 20));
  [label setAutoresizingMask:NSViewMaxXMargin | NSViewMinYMargin];
  [panel addSubview:label];
  return panel;
}

- (void)pushLeft:(id)sender {
  NSColor *color = [NSColor colorWithCalibratedRed:0.80 green:0.88 blue:0.97 alpha:1];
  [_splitView pushSubView:[self panelNamed:@"Navigator" width:150 color:color]
               atPosition:VXSplitViewPushPositionBeginning
             autosaveName:@"navigator"];
}

- (void)pushRight:(id)sender {
  NSColor *color = [NSColor colorWithCalibratedRed:0.97 green:0.90 blue:0.78 alpha:1];
  [_splitView pushSubView:[self panelNamed:@"Inspector" width:170 color:color]
               atPosition:VXSplitViewPushPositionEnd
             autosaveName:@"inspector"];
}

- (void)popLeft:(id)sender {
  [_splitView popSubViewAtPosition:VXSplitViewPushPositionBeginning];
}

- (void)popRight:(id)sender {
  [_splitView popSubViewAtPosition:VXSplitViewPushPositionEnd];
}

#pragma mark - VXSplitViewDelegate

- (BOOL)splitView:(VXSplitView *)splitView
    shouldCollapseSubviewAtPushPosition:(VXSplitViewPushPosition)position {
  return [[splitView viewsInLayout] count] > 1;
}

@end

// The page view keeps its controller alive.
@interface SplitViewPageView : NSView {
  SplitViewPageController *_controller;
}
@property(nonatomic, retain) SplitViewPageController *controller;
@end

@implementation SplitViewPageView
@synthesize controller = _controller;
- (void)dealloc {
  [_controller release];
  [super dealloc];
}
@end

@implementation SplitViewPage

- (NSString *)identifier {
  return @"split-view";
}

- (NSString *)title {
  return @"Split view";
}

- (NSString *)caption {
  return @"Three panels with autosaved widths and drawn dividers; drag a divider, push or pop "
         @"a panel at either edge, drag an edge panel past 40 points to collapse it.";
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  SplitViewPageView *page = [[[SplitViewPageView alloc] initWithFrame:frame] autorelease];
  NSRect splitFrame = NSMakeRect(0, 0, NSWidth(frame), NSHeight(frame) - 40);
  VXSplitView *split = [[[VXSplitView alloc] initWithFrame:splitFrame] autorelease];
  [split setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  [split setAnimated:YES];
  [split setAutosavedSizes:[NSMutableDictionary dictionaryWithObjectsAndKeys:@180.0, @"navigator",
                                                                             @200.0, @"inspector",
                                                                             nil]];
  [split setDividerDrawer:^(NSInteger index, NSRect rect) {
    [[NSColor colorWithCalibratedWhite:0.35 alpha:1] setFill];
    NSRectFill(rect);
  }];
  [page addSubview:split];

  SplitViewPageController *controller =
      [[[SplitViewPageController alloc] initWithSplitView:split] autorelease];
  [page setController:controller];
  [split setDelegate:controller];
  NSView *content = [controller panelNamed:@"Content"
                                     width:NSWidth(splitFrame)
                                     color:[NSColor colorWithCalibratedWhite:0.97 alpha:1]];
  [split pushSubView:content atPosition:VXSplitViewPushPositionBeginning autosaveName:nil];
  BOOL animated = [split animated];
  [split setAnimated:NO];  // the first panels are simply there
  [controller pushLeft:nil];
  [controller pushRight:nil];
  [split setAnimated:animated];

  NSArray *buttons = [NSArray arrayWithObjects:@"Push left", @"pushLeft:", @"Pop left", @"popLeft:",
                                               @"Push right", @"pushRight:", @"Pop right",
                                               @"popRight:", nil];
  for (NSUInteger i = 0; i < [buttons count]; i += 2) {
    NSButton *button =
        [[[NSButton alloc] initWithFrame:NSMakeRect(8 + 100 * (i / 2), NSHeight(frame) - 34, 92, 28)]
            autorelease];
    [button setTitle:[buttons objectAtIndex:i]];
    [button setTarget:controller];
    [button setAction:NSSelectorFromString([buttons objectAtIndex:i + 1])];
    [button setAutoresizingMask:NSViewMinYMargin];
    [page addSubview:button];
  }
  return page;
}

- (NSString *)layoutReportForView:(NSView *)pageView {
  NSMutableArray *parts = [NSMutableArray array];
  for (NSView *view in [pageView subviews]) {
    if (![view isKindOfClass:[VXSplitView class]]) {
      continue;
    }
    for (NSView *panel in [(VXSplitView *)view viewsInLayout]) {
      NSString *name = @"?";
      for (NSView *label in [panel subviews]) {
        if ([label isKindOfClass:[NSTextField class]]) {
          name = [(NSTextField *)label stringValue];
        }
      }
      NSRect frame = [panel frame];
      [parts addObject:[NSString stringWithFormat:@"%@ %g+%g", name, NSMinX(frame),
                                                  NSWidth(frame)]];
    }
  }
  return [parts componentsJoinedByString:@" "];
}

@end
