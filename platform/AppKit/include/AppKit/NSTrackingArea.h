/*
 * NSTrackingArea with AppKit's option values. GNUstep 0.29's header numbers
 * the activity and later options one bit too low (ActiveAlways is 0x40
 * there, 0x80 in AppKit), so code and archives that use AppKit's values
 * would mean other options. This header stands in for GNUstep's (same
 * guard, same instance variables); GNUstep's own code passes the options
 * through without reading them, except its initialiser's AssumeInside test,
 * which only sets a flag of its private rectangle that Talvo never reads.
 * See NSView+TalvoTracking.h for what the areas do.
 */
#ifndef _GNUstep_H_NSTrackingArea
#define _GNUstep_H_NSTrackingArea

#import <Foundation/NSCoder.h>
#import <Foundation/NSGeometry.h>
#import <Foundation/NSObject.h>

enum {
  NSTrackingMouseEnteredAndExited = 0x01,
  NSTrackingMouseMoved = 0x02,
  NSTrackingCursorUpdate = 0x04,
  NSTrackingActiveWhenFirstResponder = 0x10,
  NSTrackingActiveInKeyWindow = 0x20,
  NSTrackingActiveInActiveApp = 0x40,
  NSTrackingActiveAlways = 0x80,
  NSTrackingAssumeInside = 0x100,
  NSTrackingInVisibleRect = 0x200,
  NSTrackingEnabledDuringMouseDrag = 0x400
};
typedef NSUInteger NSTrackingAreaOptions;

@class NSDictionary;
@class GSTrackingRect;

@interface NSTrackingArea : NSObject <NSCoding, NSCopying> {
  NSDictionary *_userInfo;
  GSTrackingRect *_trackingRect;
  NSTrackingAreaOptions _options;
}

- (id)initWithRect:(NSRect)rect
           options:(NSTrackingAreaOptions)options
             owner:(id)owner
          userInfo:(NSDictionary *)userInfo;

- (NSTrackingAreaOptions)options;
- (id)owner;
- (NSRect)rect;
- (NSDictionary *)userInfo;

@end

#endif
