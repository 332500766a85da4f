#import <Talvo/VXSplitView.h>

#import "layout/VXConstraintSet.h"
#import "layout/VXSplitView+Private.h"
#import "support/TalvoMRC.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// Position constraints sit below the required chain, so that a position the
// chain cannot honour gives way instead of breaking the layout.
static const NSLayoutPriority VXSplitViewPositionPriority = 490;

@implementation VXSplitView

@synthesize animated = _animated;
@synthesize autosavedSizes = _autosavedSizes;
@synthesize delegate = _delegate;
@synthesize backgroundColor = _backgroundColor;
@synthesize viewStackConstraints = _viewStackConstraints;
@synthesize positionConstraints = _positionConstraints;
@synthesize dividerViews = _dividerViews;
@synthesize viewsInLayout = _viewsInLayout;

#pragma mark - Lifecycle

+ (BOOL)requiresConstraintBasedLayout {
  return YES;
}

- (instancetype)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self == nil) {
    return nil;
  }
  _viewsSavednameMapping = [[NSMapTable alloc] initWithKeyOptions:NSPointerFunctionsStrongMemory
                                                      valueOptions:NSPointerFunctionsStrongMemory
                                                          capacity:0];
  _autosavedSizes = [NSMutableDictionary new];
  _dividerViews = [NSMutableArray new];
  _viewsInLayout = [NSMutableArray new];
  return self;
}

- (void)dealloc {
  // The superclass removes the subviews, which calls back into
  // willRemoveSubview:; every ivar is nil by then.
  [_viewsSavednameMapping removeAllObjects];
  TalvoDestroy(_viewsInLayout);
  TalvoDestroy(_dividerViews);
  TalvoDestroy(_positionConstraints);
  TalvoDestroy(_viewStackConstraints);
  TalvoDestroy(_backgroundColor);
  TalvoDestroy(_dividerDrawer);
  TalvoDestroy(_autosavedSizes);
  TalvoDestroy(_viewsSavednameMapping);
  TalvoDestroy(_draggingConstraint);
  [super dealloc];
}

#pragma mark - Public

// Written out: the runtime's synthesized copy setter leaves a block literal
// on the stack it was made on.
- (VXSplitViewDividerDrawer)dividerDrawer {
  return [[_dividerDrawer retain] autorelease];
}

- (void)setDividerDrawer:(VXSplitViewDividerDrawer)drawer {
  if (drawer == _dividerDrawer) {
    return;
  }
  VXSplitViewDividerDrawer old = _dividerDrawer;
  _dividerDrawer = [drawer copy];
  [old release];
}

- (double)dividerThickness {
  return 1.0;
}

- (NSRect)rectForDividerAtIndex:(NSInteger)index {
  NSArray *views = _viewsInLayout;
  double x = 0;
  if (index >= 0 && (NSUInteger)index < [views count]) {
    NSRect frame = [[views objectAtIndex:(NSUInteger)index] frame];
    x = NSMinX(frame) + NSWidth(frame);
  }
  NSRect bounds = [self bounds];
  return NSMakeRect(x, NSMinY(bounds), [self dividerThickness], NSHeight(bounds));
}

- (void)setNeedsDisplayForDivider:(NSInteger)index {
  [self setNeedsDisplayInRect:[self rectForDividerAtIndex:index]];
}

- (void)drawRect:(NSRect)dirtyRect {
  NSColor *background = [self backgroundColor];
  if (background == nil) {
    return;
  }
  [NSGraphicsContext saveGraphicsState];
  [background setFill];
  NSRectFill(dirtyRect);
  [NSGraphicsContext restoreGraphicsState];
}

- (void)setViewStackConstraints:(NSArray *)constraints {
  if (constraints == _viewStackConstraints) {
    return;
  }
  VXReplaceConstraintSet(self, &_viewStackConstraints, constraints);
  [self setNeedsDisplay:YES];
}

- (void)setPositionConstraints:(NSArray *)constraints {
  if (constraints == _positionConstraints) {
    return;
  }
  VXReplaceConstraintSet(self, &_positionConstraints, constraints);
}

- (NSArray *)constraintsForPositions {
  NSArray *views = _viewsInLayout;
  NSUInteger count = [views count];
  if (count < 2) {
    return nil;
  }
  NSMutableArray *constraints = [NSMutableArray arrayWithCapacity:count - 1];
  for (NSUInteger k = 1; k < count; k++) {
    NSRect previous = [[views objectAtIndex:k - 1] frame];
    NSLayoutConstraint *position =
        [self _positionConstraintForView:[views objectAtIndex:k]
                                constant:NSMinX(previous) + NSWidth(previous) +
                                         [self dividerThickness]];
    if (position != nil) {
      [constraints addObject:position];
    }
  }
  return constraints;
}

// "H:|-0-[viewAboveDivider]" at the position priority: the view's leading
// edge at `constant` from the split view's.
- (NSLayoutConstraint *)_positionConstraintForView:(NSView *)view constant:(double)constant {
  NSLayoutConstraint *position = [[NSLayoutConstraint
      constraintsWithVisualFormat:@"H:|-0-[viewAboveDivider]"
                          options:0
                          metrics:nil
                            views:[NSDictionary dictionaryWithObject:view
                                                              forKey:@"viewAboveDivider"]]
      lastObject];
  [position setPriority:VXSplitViewPositionPriority];
  [position setConstant:constant];
  return position;
}

#pragma mark - Layout

- (void)updateConstraints {
  [super updateConstraints];
  [self _updateViewStackConstraints];
  [self _updatePositionConstraints];
}

- (void)didAddSubview:(NSView *)subview {
  [subview setTranslatesAutoresizingMaskIntoConstraints:NO];
  [super didAddSubview:subview];
  if (![subview isKindOfClass:[VXSplitViewDivider class]]) {
    [self invalidateViewStack];
  }
}

- (void)willRemoveSubview:(NSView *)subview {
  [super willRemoveSubview:subview];
  if (![subview isKindOfClass:[VXSplitViewDivider class]]) {
    [self invalidateViewStack];
  }
}

#pragma mark - Private

- (void)_updateDividerViews {
  for (VXSplitViewDivider *divider in [[_dividerViews copy] autorelease]) {
    [divider removeFromSuperview];
  }
  [_dividerViews removeAllObjects];
  [self setViewsInLayout:[[[self subviews] copy] autorelease]];

  NSArray *views = _viewsInLayout;
  NSUInteger count = [views count];
  for (NSUInteger i = 0; count >= 2 && i + 1 < count; i++) {
    // Where the chain will put it: the layout starts from where things are.
    NSRect after = [[views objectAtIndex:i] frame];
    VXSplitViewDivider *divider = [[VXSplitViewDivider alloc]
        initWithFrame:NSMakeRect(NSMaxX(after), 0, [self dividerThickness], NSHeight([self bounds]))];
    [divider setSplitView:self];
    [divider setIndex:(NSInteger)i];
    [divider setTranslatesAutoresizingMaskIntoConstraints:NO];
    [_dividerViews addObject:divider];
    [self addSubview:divider positioned:NSWindowAbove relativeTo:[views objectAtIndex:i + 1]];
    [divider release];
  }
}

- (void)_updateViewStackConstraints {
  if (_viewStackConstraints != nil) {
    return;
  }
  [self _updateDividerViews];

  NSMutableArray *constraints = [NSMutableArray array];
  NSMutableDictionary *views = [NSMutableDictionary dictionary];
  NSView *previous = nil;
  NSUInteger index = 0;
  for (NSView *current in _viewsInLayout) {
    [views setObject:current forKey:@"currentView"];
    if (previous != nil) {
      [views setObject:[_dividerViews objectAtIndex:index - 1] forKey:@"dividerView"];
      [views setObject:previous forKey:@"previousView"];
      NSDictionary *metrics =
          [NSDictionary dictionaryWithObject:[NSNumber numberWithDouble:[self dividerThickness]]
                                      forKey:@"tickness"];
      [constraints addObjectsFromArray:
                       [NSLayoutConstraint
                           constraintsWithVisualFormat:
                               @"H:[previousView]-0-[dividerView(tickness)]-0-[currentView]"
                                               options:0
                                               metrics:metrics
                                                 views:views]];
      [constraints addObjectsFromArray:[NSLayoutConstraint
                                           constraintsWithVisualFormat:@"V:|-0-[dividerView]-0-|"
                                                               options:0
                                                               metrics:nil
                                                                 views:views]];
    } else {
      [constraints addObjectsFromArray:[NSLayoutConstraint
                                           constraintsWithVisualFormat:@"H:|[currentView]"
                                                               options:0
                                                               metrics:nil
                                                                 views:views]];
    }
    [constraints addObjectsFromArray:[NSLayoutConstraint
                                         constraintsWithVisualFormat:@"V:|-0-[currentView]-0-|"
                                                             options:0
                                                             metrics:nil
                                                               views:views]];
    previous = current;
    index++;
  }
  if ([[self subviews] count] > 0 && [views objectForKey:@"currentView"] != nil) {
    [constraints addObjectsFromArray:[NSLayoutConstraint
                                         constraintsWithVisualFormat:@"H:[currentView]|"
                                                             options:0
                                                             metrics:nil
                                                               views:views]];
  }
  [self setViewStackConstraints:constraints];
}

- (void)_updatePositionConstraints {
  if (_positionConstraints != nil) {
    return;
  }
  NSArray *positions = [self constraintsForPositions];
  if (positions != nil) {
    [self setPositionConstraints:positions];
  }
}

- (void)_forceUpdateConstraints {
  [self setViewStackConstraints:nil];
  [self setPositionConstraints:nil];
  [self _updateViewStackConstraints];
  [self _updatePositionConstraints];
}

// A subview that is not a divider came or went: the chain is stale.
- (void)invalidateViewStack {
  [self setViewStackConstraints:nil];
  [[self window] invalidateCursorRectsForView:self];
}

@end

@implementation VXSplitViewDivider

@synthesize splitView = _splitView;
@synthesize index = _index;

- (BOOL)allowsVibrancy {
  return YES;
}

- (void)drawRect:(NSRect)dirtyRect {
  NSRect bounds = [self bounds];
  VXSplitView *splitView = _splitView;
  double thickness = splitView != nil ? [splitView dividerThickness] : 0;
  VXSplitViewDividerDrawer drawer = [splitView dividerDrawer];
  if (drawer != nil) {
    drawer(_index, NSMakeRect(NSMinX(bounds), NSMinY(bounds), thickness, NSHeight(bounds)));
    return;
  }
  [NSGraphicsContext saveGraphicsState];
  [[NSColor colorWithCalibratedWhite:0.0 alpha:0.36f] setFill];
  NSRectFill(NSMakeRect(NSMinX(bounds), NSMinY(bounds), 1.0, NSHeight(bounds)));
  [[NSColor colorWithCalibratedWhite:1.0 alpha:0.1f] setFill];
  NSRectFill(NSMakeRect(NSMinX(bounds) + 1.0, NSMinY(bounds), 1.0, NSHeight(bounds)));
  [NSGraphicsContext restoreGraphicsState];
}

@end
