#import <Talvo/VXSplitView.h>
#import <Talvo/VXSplitViewPositioner.h>
#import <Talvo/VXSplitViewPositionerAtBeginning.h>
#import <Talvo/VXSplitViewPositionerAtEnd.h>

#include "core/layout/SplitViewGeometry.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

using talvo::layout::Edge;

// Every answer reads the split view: anything else gets nil, zero or nothing.
static BOOL IsSplitView(id splitView) {
  return [splitView isKindOfClass:[VXSplitView class]];
}

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
  if (!IsSplitView(splitView)) {
    return nil;
  }
  NSArray *subviews = [splitView subviews];
  return [subviews count] > 0 ? [subviews objectAtIndex:0] : nil;
}

+ (NSLayoutConstraint *)sideConstraintInSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return nil;
  }
  NSArray *constraints = [splitView viewStackConstraints];
  return [constraints count] > 0 ? [constraints objectAtIndex:0] : nil;
}

+ (NSLayoutConstraint *)dividerConstraintInSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return nil;
  }
  NSArray *constraints = [splitView positionConstraints];
  return [constraints count] > 0 ? [constraints objectAtIndex:0] : nil;
}

+ (void)pushView:(NSView *)view
      atPosition:(VXSplitViewPushPosition)position
     inSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return;
  }
  NSArray *subviews = [splitView subviews];
  [splitView addSubview:view
             positioned:NSWindowBelow
             relativeTo:[subviews count] > 0 ? [subviews objectAtIndex:0] : nil];
}

+ (double)initialDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return 0.0;
  }
  return talvo::layout::InitialDividerConstant(Edge::Beginning, width, NSWidth([splitView bounds]));
}

+ (double)finalDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return 0.0;
  }
  return talvo::layout::FinalDividerConstant(Edge::Beginning, width, NSWidth([splitView bounds]),
                                             [splitView dividerThickness]);
}

@end

@implementation VXSplitViewPositionerAtEnd

+ (NSView *)positionedViewInSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return nil;
  }
  for (NSView *view in [[splitView subviews] reverseObjectEnumerator]) {
    if (![view isKindOfClass:[VXSplitViewDivider class]]) {
      return view;
    }
  }
  return nil;
}

+ (NSLayoutConstraint *)sideConstraintInSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return nil;
  }
  return [[splitView viewStackConstraints] lastObject];
}

+ (NSLayoutConstraint *)dividerConstraintInSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return nil;
  }
  return [[splitView positionConstraints] lastObject];
}

+ (void)pushView:(NSView *)view
      atPosition:(VXSplitViewPushPosition)position
     inSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return;
  }
  [splitView addSubview:view positioned:NSWindowAbove relativeTo:[[splitView subviews] lastObject]];
}

+ (double)initialDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return 0.0;
  }
  return talvo::layout::InitialDividerConstant(Edge::End, width, NSWidth([splitView bounds]));
}

+ (double)finalDividerConstantForWidth:(double)width inSplitView:(VXSplitView *)splitView {
  if (!IsSplitView(splitView)) {
    return 0.0;
  }
  return talvo::layout::FinalDividerConstant(Edge::End, width, NSWidth([splitView bounds]),
                                             [splitView dividerThickness]);
}

@end
