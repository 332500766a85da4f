// Internals of the custom window family shared with tests.
#pragma once

#import <Talvo/VXCustomWindow.h>

// A plain frame view that hands its drawing to its window's -drawRect:
// (nothing on GNUstep sends -drawRect: to a window), on a cleared
// background: the window's shape is what the window draws.
@interface _VXWindowDrawingFrameView : NSView
@end
