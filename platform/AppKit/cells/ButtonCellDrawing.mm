// Button cells draw the way AppKit documents it: -drawInteriorWithFrame:inView:
// asks -imageRectForBounds: and -titleRectForBounds: for the two rects and
// hands them to -drawImage:withFrame:inView: and -drawTitle:withFrame:inView:,
// so a subclass that overrides any one of the four changes just that part.
// GNUstep 0.29 lays the two rects out inline and never asks; the default
// rects below reproduce its layout, so its own buttons draw as before.
//
// Controls also highlight their cell through -highlight:withFrame:inView:
// while they track the mouse (GNUstep calls -setHighlighted: directly).

#import <AppKit/AppKit.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

// What a button cell shows in its current state.
struct TVButtonContent {
  NSImage *image;
  NSAttributedString *title;
};

struct TVButtonRects {
  NSRect image;
  NSRect title;
};

// The padding GNUstep keeps between a bordered button's edge and its content,
// and between an image and its title.
const CGFloat kContentInset = 3;
const CGFloat kImageTitleGap = 2;

}  // namespace

static TVButtonContent TVButtonCellContent(NSButtonCell *cell) {
  NSInteger state = [cell state];
  NSInteger mask = NSNoCellMask;
  if ([cell isHighlighted]) {
    // A pressed button shows the face of the state it is about to take.
    mask = [cell highlightsBy] & ~(state != NSOffState ? [cell showsStateBy] : 0);
  } else if (state != NSOffState) {
    mask = [cell showsStateBy];
  }
  TVButtonContent content = {[cell image], [cell attributedTitle]};
  if (mask & NSContentsCellMask) {
    if ([cell alternateImage] != nil) {
      content.image = [cell alternateImage];
    }
    NSAttributedString *alternate = [cell attributedAlternateTitle];
    if ([alternate length] > 0) {
      content.title = alternate;
    }
  }
  return content;
}

// The image position that applies: a missing image or title drops out of the
// layout (NSNoImage: title only; NSImageOnly: image only, or nothing).
static NSCellImagePosition TVButtonCellPosition(NSButtonCell *cell, TVButtonContent content) {
  NSCellImagePosition position = [cell imagePosition];
  if (content.image == nil) {
    position = NSNoImage;
  }
  if (content.title == nil) {
    position = NSImageOnly;
  }
  return position;
}

static NSView *TVCellControlView(NSCell *cell) {
  return [cell controlView];
}

// Splits the interior of `bounds` between image and title, the way GNUstep
// places them (image centred in its rect by the image drawing).
static TVButtonRects TVButtonCellLayout(NSButtonCell *cell, NSRect bounds) {
  TVButtonRects rects = {NSZeroRect, NSZeroRect};
  NSRect interior = [cell drawingRectForBounds:bounds];
  TVButtonContent content = TVButtonCellContent(cell);
  NSCellImagePosition position = TVButtonCellPosition(cell, content);
  BOOL hasImage = position != NSNoImage;
  BOOL hasTitle = position != NSImageOnly;
  NSSize imageSize = hasImage && content.image != nil ? [content.image size] : NSZeroSize;
  NSSize titleSize = hasTitle && content.title != nil ? [content.title size] : NSZeroSize;
  // "Above" and "below" are visual: in a flipped view they swap in y.
  if ([TVCellControlView(cell) isFlipped]) {
    if (position == NSImageAbove) {
      position = NSImageBelow;
    } else if (position == NSImageBelow) {
      position = NSImageAbove;
    }
  }
  BOOL framed = [cell isBordered] || [cell isBezeled];
  CGFloat inset = framed ? kContentInset : 0;
  // The title keeps a margin on both sides when it has the room.
  auto padTitle = [&](NSRect title, CGFloat fullWidth) {
    if (titleSize.width + 2 * kContentInset <= fullWidth) {
      title = NSInsetRect(title, kContentInset, 0);
    }
    return title;
  };
  switch (position) {
    case NSNoImage:
      rects.title = NSMakeRect(NSMinX(interior), NSMinY(interior), NSWidth(interior),
                               NSHeight(interior));
      rects.title = padTitle(rects.title, NSWidth(interior));
      break;
    case NSImageOnly:
      rects.image = interior;
      break;
    case NSImageLeft: {
      rects.image = NSMakeRect(NSMinX(interior) + inset, NSMinY(interior), imageSize.width,
                               NSHeight(interior));
      CGFloat titleX = NSMaxX(rects.image) + kImageTitleGap;
      rects.title = NSMakeRect(titleX, NSMinY(interior), NSMaxX(interior) - titleX,
                               NSHeight(interior));
      if (titleSize.width + kContentInset <= NSWidth(rects.title)) {
        rects.title.size.width -= kContentInset;
      }
      break;
    }
    case NSImageRight: {
      rects.image = NSMakeRect(NSMaxX(interior) - imageSize.width - inset, NSMinY(interior),
                               imageSize.width, NSHeight(interior));
      rects.title = NSMakeRect(NSMinX(interior), NSMinY(interior),
                               NSMinX(rects.image) - kImageTitleGap - NSMinX(interior),
                               NSHeight(interior));
      if (titleSize.width + kContentInset <= NSWidth(rects.title)) {
        rects.title.origin.x += kContentInset;
        rects.title.size.width -= kContentInset;
      }
      break;
    }
    case NSImageAbove: {
      // Title at the low-y edge, the image takes what is left above it.
      rects.title = NSMakeRect(NSMinX(interior), NSMinY(interior) + inset, NSWidth(interior),
                               titleSize.height);
      CGFloat imageY = NSMaxY(rects.title) + kImageTitleGap;
      rects.image = NSMakeRect(NSMinX(interior), imageY, NSWidth(interior),
                               NSMaxY(interior) - imageY - inset);
      rects.title = padTitle(rects.title, NSWidth(interior));
      break;
    }
    case NSImageBelow: {
      rects.title = NSMakeRect(NSMinX(interior), NSMaxY(interior) - titleSize.height - inset,
                               NSWidth(interior), titleSize.height);
      CGFloat imageTop = NSMinY(rects.title) - kImageTitleGap;
      rects.image = NSMakeRect(NSMinX(interior), NSMinY(interior) + inset, NSWidth(interior),
                               imageTop - NSMinY(interior) - inset);
      rects.title = padTitle(rects.title, NSWidth(interior));
      break;
    }
    case NSImageOverlaps:
    default:
      rects.image = interior;
      rects.title = padTitle(interior, NSWidth(interior));
      break;
  }
  return rects;
}

#pragma mark - Drawing

static NSRect TVButtonCellImageRect(NSButtonCell *self, SEL _cmd, NSRect bounds) {
  return TVButtonCellLayout(self, bounds).image;
}

static NSRect TVButtonCellTitleRect(NSButtonCell *self, SEL _cmd, NSRect bounds) {
  return TVButtonCellLayout(self, bounds).title;
}

static void TVButtonCellDrawInterior(NSButtonCell *self, SEL _cmd, NSRect frame, NSView *view) {
  if ([self isTransparent]) {
    return;
  }
  // The rect methods below read the control view (flipped or not).
  static Ivar controlViewIvar = class_getInstanceVariable([NSActionCell class], "_control_view");
  if (controlViewIvar != NULL && view != nil) {
    object_setIvar(self, controlViewIvar, view);
  }
  TVButtonContent content = TVButtonCellContent(self);
  NSCellImagePosition position = TVButtonCellPosition(self, content);
  BOOL drawsImage = content.image != nil && position != NSNoImage;
  BOOL drawsTitle = content.title != nil && position != NSImageOnly;
  if (!drawsImage && !drawsTitle) {
    return;
  }
  // Laying out measures the title: do it once unless a subclass has its own
  // rects.
  Class cls = [self class];
  BOOL ownImageRect = class_getMethodImplementation(cls, @selector(imageRectForBounds:)) !=
                      (IMP)TVButtonCellImageRect;
  BOOL ownTitleRect = class_getMethodImplementation(cls, @selector(titleRectForBounds:)) !=
                      (IMP)TVButtonCellTitleRect;
  TVButtonRects rects = {NSZeroRect, NSZeroRect};
  if (!(ownImageRect && ownTitleRect)) {
    rects = TVButtonCellLayout(self, frame);
  }
  if (drawsImage) {
    NSRect imageRect = ownImageRect ? [self imageRectForBounds:frame] : rects.image;
    [self drawImage:content.image withFrame:imageRect inView:view];
  }
  if (drawsTitle) {
    NSRect titleRect = ownTitleRect ? [self titleRectForBounds:frame] : rects.title;
    [self drawTitle:content.title withFrame:titleRect inView:view];
  }
}

#pragma mark - Highlighting while tracking

// The control whose -mouseDown: is running (innermost), and whether its
// cell's -highlight:withFrame:inView: is running.
static NSControl *trackingControl = nil;
static BOOL insideHighlight = NO;
static void (*originalMouseDown)(id, SEL, NSEvent *) = NULL;
static void (*originalSetHighlighted)(id, SEL, BOOL) = NULL;

static void TVControlMouseDown(NSControl *self, SEL _cmd, NSEvent *event) {
  NSControl *outer = trackingControl;
  trackingControl = self;
  originalMouseDown(self, _cmd, event);
  trackingControl = outer;
}

static void TVCellSetHighlighted(NSCell *self, SEL _cmd, BOOL flag) {
  NSControl *control = trackingControl;
  if (control != nil && !insideHighlight && [control cell] == self) {
    // AppKit's controls highlight through the cell's drawing hook, which
    // subclasses override to change how a pressed cell looks.
    insideHighlight = YES;
    [self highlight:flag withFrame:[control bounds] inView:control];
    insideHighlight = NO;
    return;
  }
  originalSetHighlighted(self, _cmd, flag);
}

#pragma mark - Installation

@interface NSButtonCell (TalvoPlatformDrawing)
@end

@implementation NSButtonCell (TalvoPlatformDrawing)

+ (void)load {
  TVReplaceInstanceMethod(objc_getClass("NSButtonCell"), @selector(drawInteriorWithFrame:inView:),
                          (IMP)TVButtonCellDrawInterior);
  TVReplaceInstanceMethod(objc_getClass("NSButtonCell"), @selector(imageRectForBounds:),
                          (IMP)TVButtonCellImageRect);
  TVReplaceInstanceMethod(objc_getClass("NSButtonCell"), @selector(titleRectForBounds:),
                          (IMP)TVButtonCellTitleRect);
  originalMouseDown = (void (*)(id, SEL, NSEvent *))TVReplaceInstanceMethod(
      objc_getClass("NSControl"), @selector(mouseDown:), (IMP)TVControlMouseDown);
  originalSetHighlighted = (void (*)(id, SEL, BOOL))TVReplaceInstanceMethod(
      objc_getClass("NSCell"), @selector(setHighlighted:), (IMP)TVCellSetHighlighted);
}

@end
