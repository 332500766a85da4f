// Pop-up button cells draw their parts through the methods AppKit documents
// as override points: the bezel through -drawBezelWithFrame:inView: (GNUstep
// 0.29 draws it inside -drawBorderAndBackgroundWithFrame:inView: and never
// asks), the title through -drawTitle:withFrame:inView: when a subclass
// overrides it, and the arrow through -drawImage:withFrame:inView: as before,
// left out for NSPopUpNoArrow in pop-up menus too (GNUstep drops it only
// from pull-downs).

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

static void (*originalBorderAndBackground)(id, SEL, NSRect, NSView *) = NULL;
static void (*originalDrawTitleWithFrame)(id, SEL, NSRect, NSView *) = NULL;
static void (*originalDrawImage)(id, SEL, NSImage *, NSRect, NSView *) = NULL;

static void TVPopUpBorderAndBackground(NSPopUpButtonCell *self, SEL _cmd, NSRect frame,
                                       NSView *view) {
  [self drawBezelWithFrame:frame inView:view];
}

// The pop-up's own bezel: what GNUstep draws as border and background.
static void TVPopUpDrawBezel(NSPopUpButtonCell *self, SEL _cmd, NSRect frame, NSView *view) {
  if (originalBorderAndBackground != NULL) {
    originalBorderAndBackground(self, @selector(drawBorderAndBackgroundWithFrame:inView:), frame,
                                view);
  }
}

static void TVPopUpDrawTitleWithFrame(NSPopUpButtonCell *self, SEL _cmd, NSRect frame,
                                      NSView *view) {
  SEL drawTitle = @selector(drawTitle:withFrame:inView:);
  if (class_getMethodImplementation([self class], drawTitle) ==
      class_getMethodImplementation([NSPopUpButtonCell class], drawTitle)) {
    originalDrawTitleWithFrame(self, _cmd, frame, view);
    return;
  }
  NSAttributedString *title = [self attributedTitle];
  if ([title length] > 0) {
    [self drawTitle:title withFrame:[self titleRectForBounds:frame] inView:view];
  }
}

static BOOL TVIsArrowImage(NSImage *image) {
  NSString *name = [image name];
  return [name isEqualToString:@"common_Nibble"] || [name isEqualToString:@"common_3DArrowDown"] ||
         [name isEqualToString:@"NSPopUpArrow"] || [name isEqualToString:@"NSPullDownArrow"];
}

static void TVPopUpDrawImage(NSPopUpButtonCell *self, SEL _cmd, NSImage *image, NSRect frame,
                             NSView *view) {
  // GNUstep hands the arrow in as the selected item's image.
  if ([self arrowPosition] == NSPopUpNoArrow && TVIsArrowImage(image)) {
    return;
  }
  originalDrawImage(self, _cmd, image, frame, view);
}

@interface NSPopUpButtonCell (TalvoPlatformDrawing)
@end

@implementation NSPopUpButtonCell (TalvoPlatformDrawing)

+ (void)load {
  Class cell = objc_getClass("NSPopUpButtonCell");
  originalBorderAndBackground = (void (*)(id, SEL, NSRect, NSView *))TVReplaceInstanceMethod(
      cell, @selector(drawBorderAndBackgroundWithFrame:inView:), (IMP)TVPopUpBorderAndBackground);
  TVReplaceInstanceMethod(cell, @selector(drawBezelWithFrame:inView:), (IMP)TVPopUpDrawBezel);
  originalDrawTitleWithFrame = (void (*)(id, SEL, NSRect, NSView *))TVReplaceInstanceMethod(
      cell, @selector(drawTitleWithFrame:inView:), (IMP)TVPopUpDrawTitleWithFrame);
  originalDrawImage = (void (*)(id, SEL, NSImage *, NSRect, NSView *))TVReplaceInstanceMethod(
      cell, @selector(drawImage:withFrame:inView:), (IMP)TVPopUpDrawImage);
}

@end
