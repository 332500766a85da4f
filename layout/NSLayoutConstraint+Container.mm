#import <Talvo/NSLayoutConstraint+Container.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// AppKit raises for anything outside Left … FirstBaseline; answer nil instead.
static BOOL VXIsEdgeOrDimensionAttribute(NSLayoutAttribute attribute) {
  return attribute >= NSLayoutAttributeLeft && attribute <= NSLayoutAttributeFirstBaseline;
}

@implementation NSLayoutConstraint (container)

#pragma mark - Public

+ (NSLayoutConstraint *)constraintWithItem:(id)item
                               inContainer:(id)container
                                 attribute:(NSLayoutAttribute)attribute
                                  constant:(double)constant {
  if (item == nil || container == nil || !VXIsEdgeOrDimensionAttribute(attribute)) {
    return nil;
  }
  return [self constraintWithItem:item
                        attribute:attribute
                        relatedBy:NSLayoutRelationEqual
                           toItem:container
                        attribute:attribute
                       multiplier:1
                         constant:constant];
}

+ (NSArray<NSLayoutConstraint *> *)constraintsWithItem:(id)item
                                           inContainer:(id)container
                                            edgeInsets:(NSEdgeInsets)insets {
  if (item == nil || container == nil) {
    return [NSArray array];
  }
  // Bottom and right insets count inward, against the growth of the edge.
  NSLayoutConstraint *top = [self constraintWithItem:item
                                         inContainer:container
                                           attribute:NSLayoutAttributeTop
                                            constant:insets.top];
  NSLayoutConstraint *bottom = [self constraintWithItem:item
                                            inContainer:container
                                              attribute:NSLayoutAttributeBottom
                                               constant:-insets.bottom];
  NSLayoutConstraint *left = [self constraintWithItem:item
                                          inContainer:container
                                            attribute:NSLayoutAttributeLeft
                                             constant:insets.left];
  NSLayoutConstraint *right = [self constraintWithItem:item
                                           inContainer:container
                                             attribute:NSLayoutAttributeRight
                                              constant:-insets.right];
  if (top == nil || bottom == nil || left == nil || right == nil) {
    return [NSArray array];
  }
  return [NSArray arrayWithObjects:top, bottom, left, right, nil];
}

+ (NSArray<NSLayoutConstraint *> *)constraintsWithItem:(id)item fittedInContainer:(id)container {
  return [self constraintsWithItem:item
                       inContainer:container
                        edgeInsets:NSEdgeInsetsMake(0, 0, 0, 0)];
}

@end
