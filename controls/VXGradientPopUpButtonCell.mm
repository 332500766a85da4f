#import <Talvo/VXGradientPopUpButtonCell.h>

#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/VXGradientCellDrawer.h>

#import "controls/VXGradientCells+Private.h"
#import "support/TalvoLook.h"
#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXGradientPopUpButtonCell

#pragma mark - Lifecycle

- (instancetype)initTextCell:(NSString *)text pullsDown:(BOOL)pullDown {
  self = [super initTextCell:text pullsDown:pullDown];
  if (self != nil && _drawer == nil) {
    _drawer = [[VXGradientCellDrawer alloc] init];
  }
  return self;
}

- (instancetype)initWithCoder:(NSCoder *)coder {
  self = [super initWithCoder:coder];
  if (self != nil) {
    TalvoDestroy(_drawer);
    _drawer = [[VXGradientCellDrawer alloc] init];
  }
  return self;
}

- (id)copyWithZone:(NSZone *)zone {
  VXGradientPopUpButtonCell *copy = [super copyWithZone:zone];
  copy->_drawer = [[VXGradientCellDrawer alloc] init];
  return copy;
}

- (void)dealloc {
  TalvoDestroy(_drawer);
  [super dealloc];
}

#pragma mark - Public

- (void)drawImageWithFrame:(NSRect)cellFrame inView:(NSView *)controlView {
  if (_drawer == nil) return;
  if (![controlView isKindOfClass:[NSView class]]) controlView = nil;
  NSWindow *window = [controlView window];
  BOOL sheet = [window attachedSheet] != nil;
  [_drawer setGradient:[NSGradient grayGradient]];
  [_drawer setEnabledDrawing:[self isEnabled] && !sheet];
  [_drawer setHighlightedDrawing:[self isHighlighted]];
  [_drawer setMainWindowDrawing:[window isMainWindow] && !sheet];
  [_drawer setDrawingState:[self state]];
  if (!TalvoUsesNewerLook()) {
    [_drawer setInnerShadowRadius:2.0];
  }
  NSRect bounds = controlView != nil ? [controlView bounds] : NSZeroRect;
  [_drawer drawImage:[self image] inFrame:bounds];

  NSImage *arrows = [[self class] _newArrowsImage];
  [_drawer drawImage:arrows
             inFrame:NSMakeRect(NSMaxX(bounds) - 8.0, bounds.origin.y, 8.0, bounds.size.height)];
  [arrows release];
}

- (void)drawImage:(NSImage *)image withFrame:(NSRect)frame inView:(NSView *)controlView {
}

- (void)drawBezelWithFrame:(NSRect)frame inView:(NSView *)controlView {
}

- (void)drawBorderAndBackgroundWithFrame:(NSRect)cellFrame inView:(NSView *)controlView {
}

@end

@implementation VXGradientPopUpButtonCell (Private)

- (VXGradientCellDrawer *)_drawer {
  return _drawer;
}

+ (NSImage *)_newArrowsImage {
  NSString *path =
      [[NSBundle bundleForClass:[VXGradientPopUpButtonCell class]] pathForImageResource:@"arrows"];
  if (path == nil) return nil;
  NSImage *image = nil;
  @try {
    image = [[NSImage alloc] initWithContentsOfFile:path];
  } @catch (NSException *exception) {
    image = nil;
  }
  return image;
}

@end
