// Talvo's gallery. With a display it opens one window whose main layout is a
// VXSplitView: the list of pages on the leading side, the selected page in
// the centre. With --headless DIR it renders every page to DIR/<page>@1x.png
// and (in a second pass of itself at -GSScaleFactor 2) <page>@2x.png, prints
// each path with the page's caption, and exits 0 only if every page rendered.

#import <AppKit/AppKit.h>

#import "gallery/GalleryPage.h"

static const NSSize GalleryPageSize = {720, 440};

#pragma mark - Headless

// Whether every pixel of `rep` is the same: a page that drew nothing.
static BOOL IsBlank(NSBitmapImageRep *rep) {
  NSInteger width = [rep pixelsWide], height = [rep pixelsHigh];
  NSInteger bytesPerPixel = [rep bitsPerPixel] / 8;
  unsigned char *data = [rep bitmapData];
  if (data == NULL || width == 0 || height == 0) {
    return YES;
  }
  for (NSInteger y = 0; y < height; y++) {
    unsigned char *row = data + y * [rep bytesPerRow];
    for (NSInteger x = 0; x < width; x++) {
      if (memcmp(row + x * bytesPerPixel, data, (size_t)bytesPerPixel) != 0) {
        return NO;
      }
    }
  }
  return YES;
}

static void PumpEvents(NSTimeInterval seconds) {
  NSDate *limit = [NSDate dateWithTimeIntervalSinceNow:seconds];
  while ([limit timeIntervalSinceNow] > 0) {
    NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.02]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil) {
      [NSApp sendEvent:event];
    }
  }
}

// A window's bounds as the window list gives them (top-left origin).
static BOOL WindowBounds(NSWindow *window, CGRect *bounds) {
  NSArray *numbers = [NSArray arrayWithObject:[NSNumber numberWithInteger:[window windowNumber]]];
  NSArray *list = [(NSArray *)CGWindowListCreateDescriptionFromArray((CFArrayRef)numbers) autorelease];
  NSDictionary *description = [list count] > 0 ? [list objectAtIndex:0] : nil;
  id rect = [description objectForKey:(NSString *)kCGWindowBounds];
  return rect != nil && CGRectMakeWithDictionaryRepresentation((CFDictionaryRef)rect, bounds);
}

// The page's picture with the child windows it opened (a popup) laid over
// it where they stand, taken from their own back buffers.
static NSBitmapImageRep *WithChildWindows(NSBitmapImageRep *rep, NSWindow *window) {
  CGRect page;
  CGImageRef base = [rep CGImage];
  if ([[window childWindows] count] == 0 || base == NULL || !WindowBounds(window, &page) ||
      page.size.width <= 0) {
    return rep;
  }
  size_t width = CGImageGetWidth(base), height = CGImageGetHeight(base);
  double perUnit = width / page.size.width;
  CGColorSpaceRef space = CGColorSpaceCreateDeviceRGB();
  CGContextRef c = CGBitmapContextCreate(NULL, width, height, 8, 0, space,
                                         kCGImageAlphaPremultipliedFirst | kCGBitmapByteOrder32Little);
  CGColorSpaceRelease(space);
  if (c == NULL) return rep;
  CGContextDrawImage(c, CGRectMake(0, 0, width, height), base);
  for (NSWindow *child in [window childWindows]) {
    CGRect bounds;
    if (![child isVisible] || !WindowBounds(child, &bounds)) continue;
    NSArray *numbers = [NSArray arrayWithObject:[NSNumber numberWithInteger:[child windowNumber]]];
    CGImageRef picture = CGWindowListCreateImageFromArray(bounds, (CFArrayRef)numbers,
                                                          kCGWindowImageBoundsIgnoreFraming);
    if (picture == NULL) continue;
    // Top-left window-list units to the bitmap's bottom-left pixels.
    double x = (bounds.origin.x - page.origin.x) * perUnit;
    double top = (bounds.origin.y - page.origin.y) * perUnit;
    double h = CGImageGetHeight(picture);
    CGContextDrawImage(c, CGRectMake(x, height - top - h, CGImageGetWidth(picture), h), picture);
    CGImageRelease(picture);
  }
  CGImageRef composed = CGBitmapContextCreateImage(c);
  CGContextRelease(c);
  if (composed == NULL) return rep;
  NSBitmapImageRep *result = [[[NSBitmapImageRep alloc] initWithCGImage:composed] autorelease];
  CGImageRelease(composed);
  return result != nil ? result : rep;
}

static BOOL RenderPage(id<GalleryPage> page, NSString *directory, int scale) {
  BOOL rendered = NO;
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  @try {
    NSRect contentRect = NSMakeRect(40, 40, GalleryPageSize.width, GalleryPageSize.height);
    NSWindow *window = [[NSWindow alloc] initWithContentRect:contentRect
                                                   styleMask:NSBorderlessWindowMask
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    [window setReleasedWhenClosed:NO];
    NSRect bounds = NSMakeRect(0, 0, GalleryPageSize.width, GalleryPageSize.height);
    NSView *view = [page makeViewWithFrame:bounds];
    [window setContentView:view];
    [window orderFront:nil];
    [window display];
    PumpEvents(0.3);
    [window display];
    [view lockFocus];
    NSBitmapImageRep *rep =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    rep = WithChildWindows(rep, window);
    NSString *path = [directory stringByAppendingPathComponent:
                                    [NSString stringWithFormat:@"%@@%dx.png", [page identifier], scale]];
    if (rep == nil || IsBlank(rep)) {
      fprintf(stderr, "gallery: page %s rendered blank\n", [[page identifier] UTF8String]);
    } else {
      NSData *png = [rep representationUsingType:NSPNGFileType properties:[NSDictionary dictionary]];
      rendered = [png writeToFile:path atomically:YES];
      printf("%s (%ldx%ld px)\n  %s: %s\n", [path UTF8String], (long)[rep pixelsWide],
             (long)[rep pixelsHigh], [[page title] UTF8String], [[page caption] UTF8String]);
      if ([page respondsToSelector:@selector(layoutReportForView:)]) {
        printf("  layout: %s\n", [[page layoutReportForView:view] UTF8String]);
      }
    }
    [window close];
    [window release];
  } @catch (NSException *exception) {
    fprintf(stderr, "gallery: page %s raised %s: %s\n", [[page identifier] UTF8String],
            [[exception name] UTF8String], [[exception reason] UTF8String]);
    rendered = NO;
  }
  [pool drain];
  return rendered;
}

static int RunHeadless(NSString *directory, int scale) {
  [[NSFileManager defaultManager] createDirectoryAtPath:directory
                            withIntermediateDirectories:YES
                                             attributes:nil
                                                  error:NULL];
  BOOL allRendered = YES;
  for (id<GalleryPage> page in GalleryAllPages()) {
    allRendered = RenderPage(page, directory, scale) && allRendered;
  }
  fflush(stdout);
  if (scale == 1) {
    // The same pages on a backing twice as dense, in a process of its own:
    // GNUstep reads its scale factor once, at start-up.
    NSTask *task = [[[NSTask alloc] init] autorelease];
    [task setLaunchPath:[[NSBundle mainBundle] executablePath]];
    [task setArguments:[NSArray arrayWithObjects:@"--headless", directory, @"--scale-2",
                                                 @"-GSScaleFactor", @"2", @"-GSSuppressAppIcon",
                                                 @"YES", nil]];
    [task launch];
    [task waitUntilExit];
    allRendered = allRendered && [task terminationStatus] == 0;
  }
  return allRendered ? 0 : 1;
}

#pragma mark - Interactive

@interface GalleryController : NSObject {
  NSArray *_pages;
  NSView *_host;  // not retained: the window holds it
}
- (instancetype)initWithPages:(NSArray *)pages host:(NSView *)host;
- (void)show:(id)sender;
@end

@implementation GalleryController

- (instancetype)initWithPages:(NSArray *)pages host:(NSView *)host {
  self = [super init];
  if (self != nil) {
    _pages = [pages retain];
    _host = host;
  }
  return self;
}

- (void)dealloc {
  [_pages release];
  [super dealloc];
}

- (void)show:(id)sender {
  id<GalleryPage> page = [_pages objectAtIndex:(NSUInteger)[sender tag]];
  for (NSView *old in [[[_host subviews] copy] autorelease]) {
    [old removeFromSuperview];
  }
  // The page is made at the size the host is laid out at: a split view's
  // panels are placed from its leading edge, so one made wider than it will
  // be would push its trailing panel out of sight.
  [[_host window] layoutIfNeeded];
  NSView *view = [page makeViewWithFrame:[_host bounds]];
  [view setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  [_host addSubview:view];
  [[_host window] setTitle:[NSString stringWithFormat:@"Talvo gallery: %@", [page title]]];
}

@end

static int RunInteractive(void) {
  NSArray *pages = GalleryAllPages();
  NSWindow *window = [[NSWindow alloc]
      initWithContentRect:NSMakeRect(80, 80, 200 + GalleryPageSize.width, GalleryPageSize.height)
                styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                  backing:NSBackingStoreBuffered
                    defer:NO];
  NSRect bounds = [[window contentView] bounds];
  VXSplitView *split = [[[VXSplitView alloc] initWithFrame:bounds] autorelease];
  [split setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  [[window contentView] addSubview:split];

  NSView *host = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, GalleryPageSize.width,
                                                           NSHeight(bounds))] autorelease];
  VXStackView *list = [[[VXStackView alloc] initWithFrame:NSMakeRect(0, 0, 199, NSHeight(bounds))]
      autorelease];
  [list setVertical:YES];
  [list setMargin:-4];
  GalleryController *controller = [[GalleryController alloc] initWithPages:pages host:host];
  NSUInteger index = 0;
  for (id<GalleryPage> page in pages) {
    NSButton *button = [[[NSButton alloc] initWithFrame:NSMakeRect(0, 0, 199, 28)] autorelease];
    [button setTitle:[page title]];
    [button setTag:(NSInteger)index++];
    [button setTarget:controller];
    [button setAction:@selector(show:)];
    [list addSubview:button];
    [list addConstraint:[NSLayoutConstraint constraintWithItem:button
                                                     attribute:NSLayoutAttributeHeight
                                                     relatedBy:NSLayoutRelationEqual
                                                        toItem:nil
                                                     attribute:NSLayoutAttributeNotAnAttribute
                                                    multiplier:1
                                                      constant:28]];
  }
  // The list hangs from the top; the rest of its height stays empty.
  [list addSubview:[[[NSView alloc] initWithFrame:NSZeroRect] autorelease]];

  [split pushSubView:host atPosition:VXSplitViewPushPositionBeginning autosaveName:nil];
  [split pushSubView:list atPosition:VXSplitViewPushPositionBeginning autosaveName:@"pages"];
  [split setAnimated:YES];
  [controller show:[[list subviews] objectAtIndex:0]];
  [window setTitle:@"Talvo gallery"];
  [window makeKeyAndOrderFront:nil];
  [NSApp run];
  [controller release];
  return 0;
}

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
  [NSApplication sharedApplication];
  NSString *directory = nil;
  int scale = 1;
  for (int i = 1; i < argc; i++) {
    if (strcmp(argv[i], "--headless") == 0 && i + 1 < argc) {
      directory = [NSString stringWithUTF8String:argv[++i]];
    } else if (strcmp(argv[i], "--scale-2") == 0) {
      scale = 2;
    }
  }
  int status = directory != nil ? RunHeadless(directory, scale) : RunInteractive();
  [pool drain];
  return status;
}
