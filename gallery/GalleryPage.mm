#import "gallery/GalleryPage.h"

#import "gallery/pages/BindingsPage.h"
#import "gallery/pages/ColorsPage.h"
#import "gallery/pages/ControlsPage.h"
#import "gallery/pages/PopoverPage.h"
#import "gallery/pages/ImagesPage.h"
#import "gallery/pages/ImageLoadingPage.h"
#import "gallery/pages/SplitViewPage.h"
#import "gallery/pages/StackViewPage.h"
#import "gallery/pages/WindowsPage.h"

// Fills its bounds with one colour.
@interface GallerySwatchView : NSView {
  NSColor *_color;
}
- (instancetype)initWithFrame:(NSRect)frame color:(NSColor *)color;
@end

@implementation GallerySwatchView

- (instancetype)initWithFrame:(NSRect)frame color:(NSColor *)color {
  self = [super initWithFrame:frame];
  if (self != nil) {
    _color = [color retain];
  }
  return self;
}

- (void)dealloc {
  [_color release];
  [super dealloc];
}

- (void)drawRect:(NSRect)dirtyRect {
  [_color setFill];
  NSRectFill(dirtyRect);
}

@end

NSArray *GalleryAllPages(void) {
  return [NSArray arrayWithObjects:[[SplitViewPage new] autorelease],
                                   [[StackViewPage new] autorelease],
                                   [[ImagesPage new] autorelease],
                                   [[ImageLoadingPage new] autorelease],
                                   [[ColorsPage new] autorelease],
                                   [[PopoverPage new] autorelease],
                                   [[ControlsPage new] autorelease],
                                   [[BindingsPage new] autorelease],
                                   [[WindowsPage new] autorelease], nil];
}

NSTextField *GalleryLabel(NSString *text, NSRect frame) {
  NSTextField *label = [[[NSTextField alloc] initWithFrame:frame] autorelease];
  [label setStringValue:text];
  [label setEditable:NO];
  [label setSelectable:NO];
  [label setBezeled:NO];
  [label setDrawsBackground:NO];
  return label;
}

NSView *GallerySwatch(NSColor *color, NSRect frame) {
  return [[[GallerySwatchView alloc] initWithFrame:frame color:color] autorelease];
}
