// Internals of the bottom pop-up window shared with tests and controls.
#pragma once

#import <Talvo/VXBottomPopupWindow.h>

// Fills the pop-up's body and arrow with the window class's fill colour.
@interface _VXBottomPopupWindowFrameView : NSView
@end

@interface VXBottomPopupWindow (Private)
// Calibrated white 0.94, alpha 1, made once by +initialize.
+ (NSColor *)_fillColor;
@end
