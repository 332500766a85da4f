#import <Talvo/VXBarlessCustomWindow.h>

#import "support/TalvoLook.h"
#import "support/TalvoMRC.h"
#import "windows/TVWindowGeometry+Private.h"
#import "windows/TVWindowPlatform+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

static NSString *const kContentTopMarginKey = @"contentTopMargin";

// NSWindowStyleMaskFullSizeContentView.
static const NSUInteger kFullSizeContentViewMask = 1 << 15;

@implementation VXBarlessCustomWindow

#pragma mark - Lifecycle

+ (Class)frameViewClass {
  return [NSView class];
}

+ (NSView *)frameViewForRect:(NSRect)rect {
  return [[[[self frameViewClass] alloc] initWithFrame:rect] autorelease];
}

+ (id)defaultAnimationForKey:(NSString *)key {
  if ([key isEqual:kContentTopMarginKey]) {
    return [CABasicAnimation animation];
  }
  return [super defaultAnimationForKey:key];
}

- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSUInteger)styleMask
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
  self = [super initWithContentRect:contentRect styleMask:styleMask backing:backing defer:defer];
  if (self == nil) {
    return nil;
  }
  TVAddStyleMask(self, kFullSizeContentViewMask);
  TVHideTitle(self);
  [self setBackgroundColor:[NSColor clearColor]];
  [self setOpaque:NO];
  _contentTopMargin = 0.0;
  [self _initFrameView];
  return self;
}

- (void)dealloc {
  if (!TalvoUsesNewerLook()) {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
  }
  TalvoDestroy(_topConstraint);
  TalvoDestroy(_frameView);
  [super dealloc];
}

#pragma mark - Public

- (void)_initFrameView {
  if (_frameView != nil) {
    return;
  }
  NSRect frame = [self frame];
  NSView *frameView =
      [[self class] frameViewForRect:NSMakeRect(0, 0, frame.size.width, frame.size.height)];
  _frameView = [frameView retain];
}

- (void)setContentView:(NSView *)view {
  // The window's own content view handed back (the frame view) would be
  // added inside itself.
  if (view != nil && view != _frameView) {
    [self _initFrameView];
    [view setTranslatesAutoresizingMaskIntoConstraints:NO];
    [_frameView addSubview:view];
    [_frameView addConstraints:[NSLayoutConstraint
                                   constraintsWithVisualFormat:@"H:|-0-[view]-0-|"
                                                       options:0
                                                       metrics:nil
                                                         views:[NSDictionary
                                                                   dictionaryWithObject:view
                                                                                 forKey:@"view"]]];
    [_frameView addConstraints:[NSLayoutConstraint
                                   constraintsWithVisualFormat:@"V:[view]-0-|"
                                                       options:0
                                                       metrics:nil
                                                         views:[NSDictionary
                                                                   dictionaryWithObject:view
                                                                                 forKey:@"view"]]];
    NSLayoutConstraint *top = [NSLayoutConstraint constraintWithItem:view
                                                           attribute:NSLayoutAttributeTop
                                                           relatedBy:NSLayoutRelationEqual
                                                              toItem:_frameView
                                                           attribute:NSLayoutAttributeTop
                                                          multiplier:1.0
                                                            constant:0.0];
    // The old constraint stays on the frame view, as it always has.
    [_topConstraint release];
    _topConstraint = [top retain];
    [_frameView addConstraint:_topConstraint];
    [_topConstraint setConstant:_contentTopMargin];
  }
  [super setContentView:_frameView];
}

- (NSView *)actualContentView {
  NSArray *subviews = [_frameView subviews];
  return [subviews count] > 0 ? [subviews objectAtIndex:0] : nil;
}

- (double)contentTopMargin {
  return _contentTopMargin;
}

- (void)setContentTopMargin:(double)margin {
  // A margin that is not a number would poison the frame view's layout.
  if (!isfinite(margin) || margin == _contentTopMargin) {
    return;
  }
  _contentTopMargin = margin;
  [_topConstraint setConstant:margin];
}

- (NSRect)frameRectForContentRect:(NSRect)contentRect {
  // The margin is in points; GNUstep at 2x keeps frame sizes in device
  // pixels (and the origin as given), so the size is scaled the same way.
  double scale = TVFrameUnitsPerPoint(self);
  contentRect.size.width *= scale;
  contentRect.size.height = (contentRect.size.height + _contentTopMargin) * scale;
  return contentRect;
}

@end
