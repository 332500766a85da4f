#import <Talvo/VXSplitView.h>
#import <Talvo/VXSplitViewPositioner.h>
#import <Talvo/VXSplitViewPositionerAtBeginning.h>
#import <Talvo/VXSplitViewPositionerAtEnd.h>

#include "core/layout/SplitViewGeometry.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

using talvo::layout::Edge;

@implementation VXSplitViewPositioner

+ (Class)positionerForPosition:(VXSplitViewPushPosition)position {
  return position == VXSplitViewPushPositionEnd ? [VXSplitViewPositionerAtEnd class]
                                                : [VXSplitViewPositionerAtBeginning class];
}

+ (NSView *)positionedViewInSplitView:(VXSplitView *)splitView {
  return nil;
}

+ (NSLayoutConstraint *)sideConstraintInSplitView:(VXSplitView *)splitView {
  return nil;
}

+ (NSLayoutConstraint *)dividerConstraintInSplitView:(VXSplitView *)splitView {
  return nil;
}

+ (void)pushView:(NSView *)view
      atPosition:(VXSplitViewPushPosition)position
     inSplitView:(VXSplitView *)splitView {
}

+ (double)initialDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  return 0.0;
}

+ (double)finalDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  return 0.0;
}

@end

@implementation VXSplitViewPositionerAtBeginning

+ (NSView *)positionedViewInSplitView:(VXSplitView *)splitView {
  NSArray *subviews = [splitView subviews];
  return [subviews count] > 0 ? [subviews objectAtIndex:0] : nil;
}

+ (NSLayoutConstraint *)sideConstraintInSplitView:(VXSplitView *)splitView {
  NSArray *constraints = [splitView viewStackConstraints];
  return [constraints count] > 0 ? [constraints objectAtIndex:0] : nil;
}

+ (NSLayoutConstraint *)dividerConstraintInSplitView:(VXSplitView *)splitView {
  NSArray *constraints = [splitView positionConstraints];
  return [constraints count] > 0 ? [constraints objectAtIndex:0] : nil;
}

+ (void)pushView:(NSView *)view
      atPosition:(VXSplitViewPushPosition)position
     inSplitView:(VXSplitView *)splitView {
  NSArray *subviews = [splitView subviews];
  [splitView addSubview:view
             positioned:NSWindowBelow
             relativeTo:[subviews count] > 0 ? [subviews objectAtIndex:0] : nil];
}

+ (double)initialDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  return talvo::layout::InitialDividerConstant(Edge::Beginning, width, NSWidth([splitView bounds]));
}

+ (double)finalDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  return talvo::layout::FinalDividerConstant(Edge::Beginning, width, NSWidth([splitView bounds]),
                                             [splitView dividerThickness]);
}

@end

@implementation VXSplitViewPositionerAtEnd

+ (NSView *)positionedViewInSplitView:(VXSplitView *)splitView {
  for (NSView *view in [[splitView subviews] reverseObjectEnumerator]) {
    if (![view isKindOfClass:[VXSplitViewDivider class]]) {
      return view;
    }
  }
  return nil;
}

+ (NSLayoutConstraint *)sideConstraintInSplitView:(VXSplitView *)splitView {
  return [[splitView viewStackConstraints] lastObject];
}

+ (NSLayoutConstraint *)dividerConstraintInSplitView:(VXSplitView *)splitView {
  return [[splitView positionConstraints] lastObject];
}

+ (void)pushView:(NSView *)view
      atPosition:(VXSplitViewPushPosition)position
     inSplitView:(VXSplitView *)splitView {
  [splitView addSubview:view positioned:NSWindowAbove relativeTo:[[splitView subviews] lastObject]];
}

+ (double)initialDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  return talvo::layout::InitialDividerConstant(Edge::End, width, NSWidth([splitView bounds]));
}

+ (double)finalDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  return talvo::layout::FinalDividerConstant(Edge::End, width, NSWidth([splitView bounds]),
                                             [splitView dividerThickness]);
}

@end
