// The window-server stand-in: first cut, answering nothing.

#import <CoreGraphics/CoreGraphics.h>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

const CFStringRef kCGWindowNumber = (CFStringRef)@"kCGWindowNumber";
const CFStringRef kCGWindowStoreType = (CFStringRef)@"kCGWindowStoreType";
const CFStringRef kCGWindowLayer = (CFStringRef)@"kCGWindowLayer";
const CFStringRef kCGWindowBounds = (CFStringRef)@"kCGWindowBounds";
const CFStringRef kCGWindowSharingState = (CFStringRef)@"kCGWindowSharingState";
const CFStringRef kCGWindowAlpha = (CFStringRef)@"kCGWindowAlpha";
const CFStringRef kCGWindowOwnerPID = (CFStringRef)@"kCGWindowOwnerPID";
const CFStringRef kCGWindowMemoryUsage = (CFStringRef)@"kCGWindowMemoryUsage";
const CFStringRef kCGWindowOwnerName = (CFStringRef)@"kCGWindowOwnerName";
const CFStringRef kCGWindowName = (CFStringRef)@"kCGWindowName";
const CFStringRef kCGWindowIsOnscreen = (CFStringRef)@"kCGWindowIsOnscreen";

CFArrayRef CGWindowListCreate(CGWindowListOption option, CGWindowID relativeToWindow) { return NULL; }
CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow) { return NULL; }
CFArrayRef CGWindowListCreateDescriptionFromArray(CFArrayRef windowArray) { return NULL; }
CGImageRef CGWindowListCreateImageFromArray(CGRect screenBounds, CFArrayRef windowArray,
                                            CGWindowImageOption imageOption) { return NULL; }
CGImageRef CGWindowListCreateImage(CGRect screenBounds, CGWindowListOption listOption,
                                   CGWindowID windowID, CGWindowImageOption imageOption) { return NULL; }
CFDictionaryRef CGRectCreateDictionaryRepresentation(CGRect rect) { return NULL; }
bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGRect *rect) { return false; }
CFDictionaryRef CGPointCreateDictionaryRepresentation(CGPoint point) { return NULL; }
bool CGPointMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGPoint *point) { return false; }
CFDictionaryRef CGSizeCreateDictionaryRepresentation(CGSize size) { return NULL; }
bool CGSizeMakeWithDictionaryRepresentation(CFDictionaryRef dict, CGSize *size) { return false; }
