#import "gallery/pages/WindowsPage.h"

#include <vector>

// Runs the effects on a demo window made on first use.
@interface WindowsPageDemo : NSObject {
  NSWindow *_window;
}
@end

@implementation WindowsPageDemo

- (void)dealloc {
  [_window orderOut:nil];
  [_window release];
  [super dealloc];
}

- (NSWindow *)window {
  if (_window == nil) {
    _window = [[NSWindow alloc] initWithContentRect:NSMakeRect(300, 260, 320, 200)
                                          styleMask:NSTitledWindowMask | NSClosableWindowMask
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    [_window setReleasedWhenClosed:NO];
    [_window setTitle:@"Effects"];
    [_window setContentView:GallerySwatch([NSColor colorWithCalibratedRed:0.3
                                                                    green:0.5
                                                                     blue:0.8
                                                                    alpha:1],
                                          NSMakeRect(0, 0, 320, 200))];
  }
  return _window;
}

- (void)zoomIn:(id)sender {
  NSRect from = [[sender window] convertRectToScreen:[sender convertRect:[sender bounds]
                                                                  toView:nil]];
  [[self window] makeKeyAndOrderFrontWithZoomEffectFromRect:from];
}

- (void)zoomOut:(id)sender {
  NSRect to = [[sender window] convertRectToScreen:[sender convertRect:[sender bounds] toView:nil]];
  [[self window] orderOutWithZoomEffectToRect:to];
}

// The gallery's own "reduceMotion" default: the workspace reads it, and the
// effects then end at once.
- (void)reduceMotion:(id)sender {
  [[NSUserDefaults standardUserDefaults] setBool:[sender state] == NSOnState forKey:@"reduceMotion"];
}

- (void)pop:(id)sender {
  [[self window] makeKeyAndOrderFrontWithPopEffect];
}

- (void)bounce:(id)sender {
  NSWindow *window = [self window];
  [window orderFront:nil];
  NSRect frame = [window frame];
  frame.origin.x += 40;
  [window setWithBounceAnimationFrame:frame duration:0.4 curve:NSAnimationEaseInOut];
}

static void GatherPoints(void *info, const CGPathElement *element) {
  if (element->type != kCGPathElementCloseSubpath) {
    static_cast<std::vector<NSPoint> *>(info)->push_back(
        NSMakePoint(element->points[0].x, element->points[0].y));
  }
}

- (void)shake:(id)sender {
  NSWindow *window = [self window];
  [window orderFront:nil];
  NSRect frame = [window frame];
  CAKeyframeAnimation *shake = [CAKeyframeAnimation shakeAnimationInFrame:frame
                                                               withVigour:0.04
                                                         andNumberOfShake:3];
  std::vector<NSPoint> points;
  CGPathApply([shake path], &points, GatherPoints);
  points.push_back(frame.origin);
  for (const NSPoint &point : points) {
    [window setWithAnimationFrame:NSMakeRect(point.x, point.y, NSWidth(frame), NSHeight(frame))
                         duration:0.05
                            curve:NSAnimationLinear];
  }
}

@end

// The page's view keeps the demo alive for its buttons.
@interface WindowsPageView : NSView {
  WindowsPageDemo *_demo;
}
@property(nonatomic, retain) WindowsPageDemo *demo;
@end

@implementation WindowsPageView
@synthesize demo = _demo;
- (void)dealloc {
  [_demo release];
  [super dealloc];
}
- (void)drawRect:(NSRect)dirtyRect {
  [[NSColor colorWithCalibratedWhite:0.82 alpha:1] set];
  NSRectFill(dirtyRect);
}
@end

// Outlines of the rects a zoom-in and a bounce pass through, and the shake
// path drawn out over time.
@interface WindowsPageFilmstrip : NSView
@end

@implementation WindowsPageFilmstrip

- (void)drawRect:(NSRect)dirtyRect {
  [[NSColor whiteColor] set];
  NSRectFill([self bounds]);
  NSWindow *probe = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 10, 10)
                                                styleMask:NSTitledWindowMask
                                                  backing:NSBackingStoreBuffered
                                                    defer:YES];
  // Zoom-in: a 120 x 75 window (shown with its shadow's reach) grows out of
  // a 12 x 8 rect, in five steps.
  NSRect frame = NSMakeRect(70, 60, 120, 75);
  NSRect start = [probe shadowedFrame:NSMakeRect(14, 14, 12, 8) fromScaledFrame:frame flipped:YES];
  NSRect end = [probe shadowedFrame:frame flipped:YES];
  for (int step = 0; step <= 4; ++step) {
    double t = step / 4.0;
    NSRect r = NSMakeRect(start.origin.x + t * (end.origin.x - start.origin.x),
                          start.origin.y + t * (end.origin.y - start.origin.y),
                          start.size.width + t * (end.size.width - start.size.width),
                          start.size.height + t * (end.size.height - start.size.height));
    double alpha = t < 0.5 ? t / 0.5 : 1.0;
    [[NSColor colorWithCalibratedRed:0.2 green:0.4 blue:0.9 alpha:0.25 + 0.75 * alpha] set];
    NSFrameRectWithWidth(NSInsetRect(r, 0.5, 0.5), 1);
  }
  [[NSColor colorWithCalibratedRed:0.2 green:0.4 blue:0.9 alpha:0.3] set];
  NSRectFill(frame);
  [probe release];

  // Bounce: the target, and the 8 % overshoot it passes through half-way.
  NSRect target = NSMakeRect(300, 50, 110, 70);
  NSRect overshoot = NSInsetRect(target, -0.04 * NSWidth(target), -0.04 * NSHeight(target));
  [[NSColor colorWithCalibratedRed:0.9 green:0.5 blue:0.1 alpha:1] set];
  NSFrameRectWithWidth(overshoot, 1);
  [[NSColor colorWithCalibratedRed:0.9 green:0.5 blue:0.1 alpha:0.5] set];
  NSRectFill(target);

  // Shake: x of each point of the path, time running upward.
  CAKeyframeAnimation *shake = [CAKeyframeAnimation shakeAnimationInFrame:NSMakeRect(500, 30, 400, 10)
                                                               withVigour:0.1
                                                         andNumberOfShake:3];
  std::vector<NSPoint> points;
  CGPathApply([shake path], &points, GatherPoints);
  points.push_back(points.front());
  NSBezierPath *path = [NSBezierPath bezierPath];
  for (size_t i = 0; i < points.size(); ++i) {
    NSPoint p = NSMakePoint(points[i].x, 30 + 16 * i);
    if (i == 0) {
      [path moveToPoint:p];
    } else {
      [path lineToPoint:p];
    }
    [[NSColor blackColor] set];
    NSRectFill(NSMakeRect(p.x - 2, p.y - 2, 4, 4));
  }
  [[NSColor colorWithCalibratedRed:0.8 green:0.1 blue:0.2 alpha:1] set];
  [path setLineWidth:1.5];
  [path stroke];
}

@end

static NSImageView *WindowsPageImage(NSImage *image, NSRect frame) {
  NSImageView *view = [[[NSImageView alloc] initWithFrame:frame] autorelease];
  [view setImageScaling:NSImageScaleProportionallyDown];
  [view setImage:image];
  return view;
}

// A window as the window server shows it: ordered in for the picture and
// out again.
static NSImage *WindowsPageCapture(NSWindow *window, BOOL withShadow) {
  [window orderFront:nil];
  [window display];
  NSImage *picture = [window screenshotByCapturingShadow:withShadow];
  [window orderOut:nil];
  return picture;
}

@implementation WindowsPage

- (NSString *)identifier {
  return @"windows";
}

- (NSString *)title {
  return @"Windows";
}

- (NSString *)caption {
  return @"The pop-up, vibrant-dark and barless frames; a window pictured with and without its "
         @"shadow; the rects of a zoom-in and a bounce, and the shake path.";
}

- (NSView *)makeViewWithFrame:(NSRect)frame {
  WindowsPageView *page = [[[WindowsPageView alloc] initWithFrame:frame] autorelease];
  WindowsPageDemo *demo = [[[WindowsPageDemo alloc] init] autorelease];
  [page setDemo:demo];
  double top = NSHeight(frame);

  // The three frames.
  VXBottomPopupWindow *popup =
      [[VXBottomPopupWindow alloc] initWithContentRect:NSMakeRect(0, 0, 180, 90)
                                             styleMask:NSBorderlessWindowMask
                                               backing:NSBackingStoreBuffered
                                                 defer:NO];
  [popup setContentView:GalleryLabel(@"  Bottom pop-up", NSMakeRect(0, 0, 10, 10))];
  VXVisualEffectWindow *dark =
      [[VXVisualEffectWindow alloc] initWithContentRect:NSMakeRect(0, 0, 180, 90)
                                              styleMask:NSBorderlessWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO];
  NSTextField *darkLabel = GalleryLabel(@"  Vibrant dark", NSMakeRect(0, 0, 10, 10));
  [darkLabel setTextColor:[NSColor whiteColor]];
  [dark setContentView:darkLabel];
  VXBarlessCustomWindow *barless =
      [[VXBarlessCustomWindow alloc] initWithContentRect:NSMakeRect(0, 0, 180, 90)
                                               styleMask:NSBorderlessWindowMask
                                                 backing:NSBackingStoreBuffered
                                                   defer:NO];
  [barless setContentView:GallerySwatch([NSColor colorWithCalibratedRed:0.35
                                                                 green:0.65
                                                                  blue:0.4
                                                                 alpha:1],
                                        NSZeroRect)];
  [barless setContentTopMargin:20];
  NSArray *windows = [NSArray arrayWithObjects:popup, dark, barless, nil];
  NSArray *names = [NSArray arrayWithObjects:@"VXBottomPopupWindow", @"VXVisualEffectWindow",
                                             @"Barless, top margin 20", nil];
  for (NSUInteger i = 0; i < [windows count]; ++i) {
    NSWindow *window = [windows objectAtIndex:i];
    [window setReleasedWhenClosed:NO];
    [window setFrameOrigin:NSMakePoint(20 + 200 * i, 20)];
    NSRect slot = NSMakeRect(20 + 200 * i, top - 120, 180, 90);
    [page addSubview:WindowsPageImage(WindowsPageCapture(window, NO), slot)];
    [page addSubview:GalleryLabel([names objectAtIndex:i],
                                  NSMakeRect(NSMinX(slot), NSMinY(slot) - 20, 190, 18))];
    [window release];
  }

  // A window pictured by the window server, with and without its shadow.
  NSWindow *subject = [[NSWindow alloc] initWithContentRect:NSMakeRect(60, 300, 160, 90)
                                                  styleMask:NSTitledWindowMask
                                                    backing:NSBackingStoreBuffered
                                                      defer:NO];
  [subject setReleasedWhenClosed:NO];
  [subject setContentView:GallerySwatch([NSColor orangeColor], NSZeroRect)];
  NSImage *withShadow = WindowsPageCapture(subject, YES);
  NSImage *without = WindowsPageCapture(subject, NO);
  [subject release];
  NSRect shadowSlot = NSMakeRect(610, top - 140, 100, 120);
  NSRect plainSlot = NSMakeRect(610, top - 260, 100, 90);
  [page addSubview:WindowsPageImage(withShadow, shadowSlot)];
  [page addSubview:WindowsPageImage(without, plainSlot)];
  [page addSubview:GalleryLabel(withShadow != nil ? @"with shadow" : @"(no picture)",
                                NSMakeRect(615, top - 158, 100, 18))];
  [page addSubview:GalleryLabel(without != nil ? @"frame only" : @"(no picture)",
                                NSMakeRect(615, top - 278, 100, 18))];

  // Zoom, bounce and shake.
  WindowsPageFilmstrip *strip =
      [[[WindowsPageFilmstrip alloc] initWithFrame:NSMakeRect(20, 60, 580, 210)] autorelease];
  [page addSubview:strip];
  [page addSubview:GalleryLabel(@"zoom-in steps          bounce overshoot          shake path",
                                NSMakeRect(20, 40, 580, 18))];

  // Buttons for the interactive gallery.
  NSArray *titles = [NSArray arrayWithObjects:@"Zoom in", @"Zoom out", @"Pop", @"Bounce",
                                              @"Shake", nil];
  SEL actions[] = {@selector(zoomIn:), @selector(zoomOut:), @selector(pop:), @selector(bounce:),
                   @selector(shake:)};
  for (NSUInteger i = 0; i < [titles count]; ++i) {
    NSButton *button = [[[NSButton alloc] initWithFrame:NSMakeRect(20 + 96 * i, 8, 90, 26)]
        autorelease];
    [button setTitle:[titles objectAtIndex:i]];
    [button setBezelStyle:NSRoundedBezelStyle];
    [button setTarget:demo];
    [button setAction:actions[i]];
    [page addSubview:button];
  }
  NSButton *reduce =
      [[[NSButton alloc] initWithFrame:NSMakeRect(20 + 96 * [titles count], 8, 130, 26)] autorelease];
  [reduce setButtonType:NSSwitchButton];
  [reduce setTitle:@"Reduce motion"];
  [reduce setState:[[NSWorkspace sharedWorkspace] accessibilityDisplayShouldReduceMotion]
                       ? NSOnState
                       : NSOffState];
  [reduce setTarget:demo];
  [reduce setAction:@selector(reduceMotion:)];
  [page addSubview:reduce];
  return page;
}

@end
