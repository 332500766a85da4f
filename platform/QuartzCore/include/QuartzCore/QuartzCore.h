/*
 * <QuartzCore/QuartzCore.h> for Talvo on GNUstep: Talvo's stand-in for
 * Apple's Core Animation. It times and evaluates animations and draws
 * layer trees into a CGContext (-renderInContext:); layers hold geometry,
 * opacity and contents, and their presentation layers show in-flight
 * animations. A layer-backed view shows its layer in its window through
 * the AppKit side (NSView+TalvoLayerDrawing.h); there is no separate
 * compositor.
 *
 * One clock drives every animation: a repeating timer on the main run loop,
 * about 60 frames a second, in the default, modal-panel and event-tracking
 * modes, running only while animations exist.
 *
 * Not provided at all: CAAnimationGroup, CATransition, CASpringAnimation,
 * CATransform3D and the layer transform properties, CAShapeLayer,
 * CATextLayer, CAGradientLayer and the other layer subclasses,
 * CADisplayLink, CAMetalLayer, CARenderer, CAValueFunction, layer styles,
 * constraints and layout managers, archiving of layers and animations.
 */
#ifndef TALVO_QUARTZCORE_H
#define TALVO_QUARTZCORE_H

#import <QuartzCore/CABase.h>
#import <QuartzCore/CAMediaTiming.h>
#import <QuartzCore/CAMediaTimingFunction.h>
#import <QuartzCore/CAAnimation.h>
#import <QuartzCore/CATransaction.h>
#import <QuartzCore/CALayer.h>
#import <QuartzCore/CALayer+TalvoRendering.h>

#endif
