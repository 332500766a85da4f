#import <Talvo/VXStackView.h>

#import "layout/VXConstraintSet.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// The name every cross-axis format gives the view it pins.
static NSString *const VXStackCurrentViewKey = @"currentView";

@implementation VXStackView

@synthesize vertical = _vertical;
@synthesize margin = _margin;
@synthesize viewStackConstraints = _viewStackConstraints;

#pragma mark - Lifecycle

// The set is built by updateConstraints, so the update pass must reach a
// stack view even before anything has asked for an update.
+ (BOOL)requiresConstraintBasedLayout {
  return YES;
}

- (void)dealloc {
  NSArray *constraints = _viewStackConstraints;
  _viewStackConstraints = nil;
  [constraints release];
  [super dealloc];
}

#pragma mark - Public

- (void)setViewStackConstraints:(NSArray<NSLayoutConstraint *> *)constraints {
  if (constraints == _viewStackConstraints) {
    return;
  }
  VXReplaceConstraintSet(self, &_viewStackConstraints, constraints);
}

- (void)updateConstraints {
  [super updateConstraints];
  [self _updateViewStackConstraints];
}

- (void)didAddSubview:(NSView *)subview {
  [subview setTranslatesAutoresizingMaskIntoConstraints:NO];
  [self setViewStackConstraints:nil];
  [super didAddSubview:subview];
}

- (void)willRemoveSubview:(NSView *)subview {
  // Drop the set while the leaving view is still a subview, so that its
  // constraints leave with the rest.
  [self setViewStackConstraints:nil];
  [super willRemoveSubview:subview];
}

#pragma mark - Private

- (void)_updateViewStackConstraints {
  if (_viewStackConstraints != nil) {
    return;
  }
  BOOL vertical = _vertical;
  double margin = _margin;
  NSLayoutAttribute start = vertical ? NSLayoutAttributeTop : NSLayoutAttributeLeft;
  NSLayoutAttribute end = vertical ? NSLayoutAttributeBottom : NSLayoutAttributeRight;
  NSString *crossFormat = vertical ? @"H:|-0-[currentView]-0-|" : @"V:|-0-[currentView]-0-|";

  NSMutableArray *constraints = [NSMutableArray array];
  NSMutableDictionary *views = [NSMutableDictionary dictionary];
  NSView *previous = nil;
  NSUInteger count = 0;
  for (NSView *subview in [self subviews]) {
    if ([subview isHidden]) {
      continue;
    }
    [views setObject:subview forKey:VXStackCurrentViewKey];
    if (previous != nil) {
      // The previous view is the first item: +margin makes the views overlap.
      [constraints addObject:[NSLayoutConstraint constraintWithItem:previous
                                                          attribute:end
                                                          relatedBy:NSLayoutRelationEqual
                                                             toItem:subview
                                                          attribute:start
                                                         multiplier:1
                                                           constant:margin]];
    } else {
      [constraints addObject:[NSLayoutConstraint constraintWithItem:subview
                                                          attribute:start
                                                          relatedBy:NSLayoutRelationEqual
                                                             toItem:self
                                                          attribute:start
                                                         multiplier:1
                                                           constant:0]];
    }
    [constraints addObjectsFromArray:[NSLayoutConstraint constraintsWithVisualFormat:crossFormat
                                                                             options:0
                                                                             metrics:nil
                                                                               views:views]];
    previous = subview;
    count++;
  }
  if (count > 0) {
    [constraints addObject:[NSLayoutConstraint constraintWithItem:previous
                                                        attribute:end
                                                        relatedBy:NSLayoutRelationEqual
                                                           toItem:self
                                                        attribute:end
                                                       multiplier:1
                                                         constant:0]];
  }
  [self setViewStackConstraints:[NSArray arrayWithArray:constraints]];
}

@end
