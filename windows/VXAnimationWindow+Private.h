// The borderless, screen-sized window that shows a picture of another
// window while the zoom and pop effects move and scale it.
#pragma once

#import <AppKit/AppKit.h>

@interface _VXAnimationWindow : NSWindow {
  double _animationResizeTime;
  NSView *_imageView;
}

// Covers `window`'s screen (zero-size on no screen), floats one level above
// it, transparent and shadowless, with a layer-backed image view filling
// its content view. Answers nil for a nil window.
- (instancetype)initForWindow:(NSWindow *)window;

// 0.2 s after initForWindow:. -animationResizeTime: answers it for any rect.
@property(atomic, assign) double animationResizeTime;
@property(atomic, retain) NSView *imageView;
// The contents of the image view's layer (an NSImage).
@property(nonatomic, retain) id image;

@end

// The image view: a layer-backed view whose layer shows the picture; the
// platform composites it at the view's alpha.
@interface _VXAnimationImageView : NSView
@end
