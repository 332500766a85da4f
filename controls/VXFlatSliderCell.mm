#import <Talvo/VXFlatSliderCell.h>

#include <cmath>

#import "controls/VXFlatSliderCell+Private.h"
#include "core/controls/ControlGeometry.hpp"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

namespace tc = talvo::controls;

// Loaded once, for the life of the process.
static NSImage *_trackLeftImage = nil;
static NSImage *_trackFillImage = nil;
static NSImage *_trackLeftImageOff = nil;
static NSImage *_trackFillImageOff = nil;
static NSImage *_trackRightImageOff = nil;
static NSImage *_knobHoverImage = nil;
static NSImage *_knobNormalImage = nil;

static NSString *const kArtworkNames[] = {@"trackCapLeft", @"trackFill",        @"trackCapLeftOff",
                                          @"trackFillOff", @"trackCapRightOff", @"knobHover",
                                          @"knobNormal"};

// The statics above, in the order of kArtworkNames.
static NSImage **const kArtworkSlots[] = {
    &_trackLeftImage,     &_trackFillImage, &_trackLeftImageOff, &_trackFillImageOff,
    &_trackRightImageOff, &_knobHoverImage, &_knobNormalImage};
static const size_t kArtworkCount = sizeof(kArtworkSlots) / sizeof(kArtworkSlots[0]);

static NSImage *NewBundleImage(NSString *name) {
  NSString *path = [[NSBundle bundleForClass:[VXFlatSliderCell class]] pathForImageResource:name];
  if (path == nil) return nil;
  NSImage *image = nil;
  @try {
    image = [[NSImage alloc] initWithContentsOfFile:path];
  } @catch (NSException *exception) {
    image = nil;
  }
  return image;
}

static void SetArtwork(NSDictionary *artwork, BOOL fromBundle) {
  for (size_t i = 0; i < kArtworkCount; ++i) {
    NSImage *image = nil;
    if (fromBundle) {
      image = NewBundleImage(kArtworkNames[i]);
    } else {
      id candidate = [artwork objectForKey:kArtworkNames[i]];
      image = [candidate isKindOfClass:[NSImage class]] ? [candidate retain] : nil;
    }
    NSImage *old = *kArtworkSlots[i];
    *kArtworkSlots[i] = image;
    [old release];
  }
}

// Stands in for a missing cap. GNUstep's three-part drawing takes the
// caps' sizes by messaging them, and a message to nil answers no size on
// this runtime (a struct comes back in registers the nil receiver never
// sets): the fill then stops short by whatever size was asked before, the
// other cap's width, leaving a gap at the split. An empty image measures 0.
static NSImage *NoCap(void) {
  static NSImage *none = [[NSImage alloc] initWithSize:NSZeroSize];
  return none;
}

static BOOL Drawable(NSImage *image) {
  NSSize size = [image size];
  return image != nil && size.width > 0 && size.height > 0;
}

@implementation VXFlatSliderCell

#pragma mark - Lifecycle

+ (void)initialize {
  if (self == [VXFlatSliderCell class]) {
    SetArtwork(nil, YES);
  }
}

#pragma mark - Public

- (void)drawWithFrame:(NSRect)cellFrame inView:(NSView *)controlView {
  BOOL flipped = [controlView isFlipped];
  [self drawBarInside:cellFrame flipped:flipped];
  NSRect knob = [self knobRectFlipped:flipped];
  knob.origin.y = cellFrame.origin.y;
  knob.size.height = cellFrame.size.height;
  [self drawKnob:knob];
}

- (void)drawBarInside:(NSRect)rect flipped:(BOOL)flipped {
  if (!Drawable(_trackFillImage) || !Drawable(_trackFillImageOff)) return;
  [NSGraphicsContext saveGraphicsState];
  tc::Rect track =
      tc::SliderTrackRect({rect.origin.x, rect.origin.y, rect.size.width, rect.size.height},
                          [_trackFillImage size].height);
  if ([self isEnabled]) {
    double split = tc::SliderSplit(track.width, [_knobHoverImage size].width, [self doubleValue],
                                   [self maxValue]);
    NSDrawThreePartImage(NSMakeRect(track.x, track.y, split, track.height),
                         _trackLeftImage ?: NoCap(), _trackFillImage, NoCap(), NO,
                         NSCompositeSourceOver, 1.0, flipped);
    NSDrawThreePartImage(NSMakeRect(track.x + split, track.y, track.width - split, track.height),
                         NoCap(), _trackFillImageOff, _trackRightImageOff ?: NoCap(), NO,
                         NSCompositeSourceOver, 1.0, flipped);
  } else {
    NSDrawThreePartImage(NSMakeRect(track.x, track.y, track.width, track.height),
                         _trackLeftImageOff ?: NoCap(), _trackFillImageOff,
                         _trackRightImageOff ?: NoCap(), NO, NSCompositeSourceOver, 0.8, flipped);
  }
  [NSGraphicsContext restoreGraphicsState];
}

- (void)drawKnob:(NSRect)knobRect {
  NSImage *image = isPressed ? _knobHoverImage : _knobNormalImage;
  if (!Drawable(image)) return;
  NSSize size = [image size];
  // Only a change: GNUstep asks the control to redraw on every set.
  if ([self knobThickness] != size.width) {
    [self setKnobThickness:size.width];
  }
  tc::Point origin = tc::SliderKnobOrigin(
      {knobRect.origin.x, knobRect.origin.y, knobRect.size.width, knobRect.size.height},
      {size.width, size.height});
  [NSGraphicsContext saveGraphicsState];
  [image drawAtPoint:NSMakePoint(origin.x, origin.y)
            fromRect:NSZeroRect
           operation:NSCompositeSourceOver
            fraction:1.0];
  [NSGraphicsContext restoreGraphicsState];
}

- (BOOL)startTrackingAt:(NSPoint)startPoint inView:(NSView *)controlView {
  isPressed = YES;
  return [super startTrackingAt:startPoint inView:controlView];
}

- (void)stopTracking:(NSPoint)lastPoint
                  at:(NSPoint)stopPoint
              inView:(NSView *)controlView
           mouseIsUp:(BOOL)flag {
  isPressed = NO;
  [super stopTracking:lastPoint at:stopPoint inView:controlView mouseIsUp:flag];
}

@end

@implementation VXFlatSliderCell (Private)

+ (void)_setArtworkForTesting:(NSDictionary *)artwork {
  SetArtwork(artwork, artwork == nil);
}

+ (NSImage *)_artworkNamed:(NSString *)name {
  for (size_t i = 0; i < kArtworkCount; ++i) {
    if ([kArtworkNames[i] isEqualToString:name]) return *kArtworkSlots[i];
  }
  return nil;
}

- (BOOL)_isPressed {
  return isPressed;
}

@end
