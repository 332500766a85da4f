#import <Talvo/VXGradientButtonCell.h>

#import <Talvo/NSGradient+GradientCell.h>
#import <Talvo/VXGradientCellDrawer.h>

#import "controls/VXGradientCells+Private.h"
#import "support/TalvoLook.h"
#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXGradientButtonCell

#pragma mark - Lifecycle

- (instancetype)initTextCell:(NSString *)text {
  self = [super initTextCell:text];
  if (self != nil && _drawer == nil) {
    // Cells made in code draw their icon too.
    _drawer = [[VXGradientCellDrawer alloc] init];
  }
  return self;
}

- (instancetype)initImageCell:(NSImage *)image {
  self = [super initImageCell:image];
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
  VXGradientButtonCell *copy = [super copyWithZone:zone];
  // NSCell's copy shares ivars bitwise: the copy needs its own drawer.
  copy->_drawer = [[VXGradientCellDrawer alloc] init];
  return copy;
}

- (void)dealloc {
  TalvoDestroy(_drawer);
  [super dealloc];
}

#pragma mark - Public

@synthesize mouseAbove = _mouseAbove;
@synthesize gradientType = _gradientType;

- (void)drawImage:(NSImage *)image withFrame:(NSRect)frame inView:(NSView *)controlView {
  if (_drawer == nil) return;
  if (![controlView isKindOfClass:[NSView class]]) controlView = nil;
  NSWindow *window = [controlView window];
  BOOL sheet = [window attachedSheet] != nil;
  [_drawer
      setGradient:_gradientType != 0 ? [NSGradient lightGrayGradient] : [NSGradient grayGradient]];
  [_drawer
      setOnGradient:[self showsStateBy] == NSContentsCellMask ? [NSGradient blueGradient] : nil];
  [_drawer setEnabledDrawing:[self isEnabled] && !sheet];
  [_drawer setMouseOverDrawing:_mouseAbove];
  [_drawer setHighlightedDrawing:[self isHighlighted]];
  BOOL main = NO;
  if ([window isMainWindow] && !sheet) {
    main = YES;
  } else if ([window parentWindow] != nil) {
    main = YES;
  }
  [_drawer setMainWindowDrawing:main];
  [_drawer setDrawingState:[self state]];
  if (!TalvoUsesNewerLook()) {
    [_drawer setLightShadowOpacity:_gradientType == 0 ? 0.42 : 0.5];
  }
  NSRect bounds = controlView != nil ? [controlView bounds] : NSZeroRect;
  [_drawer drawImage:image inFrame:bounds];
}

@end

@implementation VXGradientButtonCell (Private)

- (VXGradientCellDrawer *)_drawer {
  return _drawer;
}

@end
