// Pushing and popping edge panels, sliding when animated, with their widths
// remembered under autosave names.

#import <QuartzCore/QuartzCore.h>
#import <Talvo/VXSplitView.h>
#import <Talvo/VXSplitViewPositioner.h>

#import "layout/VXSplitView+Private.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

NSString *const VXSplitViewWillPushSubviewNotification = @"VXSplitViewWillPushSubviewNotification";
NSString *const VXSplitViewDidPushSubviewNotification = @"VXSplitViewDidPushSubviewNotification";
NSString *const VXSplitViewWillCollapseSubviewNotification =
    @"VXSplitViewWillCollapseSubviewNotification";
NSString *const VXSplitViewDidCollapseSubviewNotification =
    @"VXSplitViewDidCollapseSubviewNotification";
NSString *const VXSplitViewPushPositionKey = @"VXSplitViewPushPositionKey";

static const NSTimeInterval VXSplitViewSlideDuration = 0.25;

@implementation VXSplitView (PushPop)

#pragma mark - Public

- (void)pushSubView:(NSView *)view
         atPosition:(VXSplitViewPushPosition)position
       autosaveName:(NSString *)autosaveName {
  if (view == nil) {
    return;
  }
  NSNumber *saved = autosaveName != nil ? [[self autosavedSizes] objectForKey:autosaveName] : nil;
  double width = saved != nil ? [saved doubleValue] : NSWidth([view bounds]);
  [self postNotification:VXSplitViewWillPushSubviewNotification position:position];

  NSRect frame = [view frame];
  frame.size.width = width;
  [view setFrame:frame];
  if ([_viewsInLayout count] == 0) {
    [self _updateDividerViews];
  }
  Class positioner = [VXSplitViewPositioner positionerForPosition:position];
  [positioner pushView:view atPosition:position inSplitView:self];
  if (autosaveName != nil) {
    [_viewsSavednameMapping setObject:autosaveName forKey:view];
  }

  if (_isInAnimation) {
    // The running slide owns the installed constraints: place this view by
    // the next update pass and leave them alone.
    [self _postPushNotificationOnPosition:position];
    return;
  }
  // Both sets are renewed at once, so that the panel comes in at its width
  // and the next drag moves the divider the user grabs.
  [self _forceUpdateConstraints];
  NSLayoutConstraint *side = [positioner sideConstraintInSplitView:self];
  NSLayoutConstraint *divider = [positioner dividerConstraintInSplitView:self];
  if (![self animated]) {
    [side setConstant:0];
    [divider setConstant:[positioner finalDividerConstantForWidth:width inSplitView:self]];
    [self _postPushNotificationOnPosition:position];
    return;
  }

  _isInAnimation = YES;
  [side setConstant:-width];
  [divider setConstant:[positioner initialDividerConstantForWidth:width inSplitView:self]];
  [NSAnimationContext beginGrouping];
  NSAnimationContext *context = [NSAnimationContext currentContext];
  [context setDuration:VXSplitViewSlideDuration];
  [context setTimingFunction:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionEaseOut]];
  [self retain];  // until the slide has ended
  [context setCompletionHandler:^{
    self->_isInAnimation = NO;
    [self _postPushNotificationOnPosition:position];
    [self release];
  }];
  [[side animator] setConstant:0];
  [[divider animator] setConstant:[positioner finalDividerConstantForWidth:width inSplitView:self]];
  [NSAnimationContext endGrouping];
}

- (void)popSubViewAtPosition:(VXSplitViewPushPosition)position {
  if ([[self subviews] count] < 2) {
    return;
  }
  [self postNotification:VXSplitViewWillCollapseSubviewNotification position:position];
  Class positioner = [VXSplitViewPositioner positionerForPosition:position];
  NSView *view = [positioner positionedViewInSplitView:self];
  double width = view != nil ? NSWidth([view bounds]) : 0;
  [self _updateAutosavedsizesForView:view];
  NSLayoutConstraint *side = [positioner sideConstraintInSplitView:self];
  NSLayoutConstraint *divider = [positioner dividerConstraintInSplitView:self];

  if (![self animated] || _isInAnimation) {
    [self removePoppedView:view position:position];
    return;
  }
  _isInAnimation = YES;
  [NSAnimationContext beginGrouping];
  NSAnimationContext *context = [NSAnimationContext currentContext];
  [context setDuration:VXSplitViewSlideDuration];
  [context setTimingFunction:[CAMediaTimingFunction functionWithName:kCAMediaTimingFunctionEaseIn]];
  [self retain];
  [view retain];  // both live until the slide has ended
  [context setCompletionHandler:^{
    [self removePoppedView:view position:position];
    self->_isInAnimation = NO;
    [view release];
    [self release];
  }];
  [[side animator] setConstant:-width];
  [[divider animator] setConstant:[positioner initialDividerConstantForWidth:width
                                                                 inSplitView:self]];
  [NSAnimationContext endGrouping];
}

#pragma mark - Private

- (void)_postPushNotificationOnPosition:(VXSplitViewPushPosition)position {
  [self postNotification:VXSplitViewDidPushSubviewNotification position:position];
}

- (void)_postPopNotificationForPosition:(VXSplitViewPushPosition)position {
  [self postNotification:VXSplitViewDidCollapseSubviewNotification position:position];
}

- (void)_updateAutosavedsizesForView:(NSView *)view {
  if (view == nil) {
    return;
  }
  NSString *name = [_viewsSavednameMapping objectForKey:view];
  if (name == nil) {
    return;
  }
  [[self autosavedSizes] setObject:[NSNumber numberWithDouble:NSWidth([view frame])] forKey:name];
}

- (void)postNotification:(NSString *)name position:(VXSplitViewPushPosition)position {
  NSDictionary *info = [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:position]
                                                   forKey:VXSplitViewPushPositionKey];
  [[NSNotificationCenter defaultCenter] postNotificationName:name object:self userInfo:info];
}

// Takes the popped panel away. The stored positions no longer match the
// views: they are rebuilt from the current frames by the next update pass,
// so the remaining dividers stay where they are and the next drag moves the
// divider the user grabs.
- (void)removePoppedView:(NSView *)view position:(VXSplitViewPushPosition)position {
  [view removeFromSuperview];
  if (view != nil) {
    [_viewsSavednameMapping removeObjectForKey:view];
  }
  [self setPositionConstraints:nil];
  [self _postPopNotificationForPosition:position];
}

@end
