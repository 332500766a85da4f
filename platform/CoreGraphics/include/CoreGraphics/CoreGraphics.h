/*
 * <CoreGraphics/CoreGraphics.h> for Talvo on GNUstep: Talvo's stand-in for
 * Apple's Core Graphics, drawing with cairo through GNUstep's own graphics
 * state. Each header says what it does not cover. Not provided at all:
 * CGPattern, CGFont and text drawing, CGPDF*, CGLayer, CGDisplay. The
 * window-server API (CGWindow.h) covers this process's windows only.
 */
#ifndef TALVO_COREGRAPHICS_H
#define TALVO_COREGRAPHICS_H

#include <CoreGraphics/CGBase.h>
#include <CoreGraphics/CGGeometry.h>
#include <CoreGraphics/CGAffineTransform.h>
#include <CoreGraphics/CGColorSpace.h>
#include <CoreGraphics/CGColor.h>
#include <CoreGraphics/CGDataProvider.h>
#include <CoreGraphics/CGImage.h>
#include <CoreGraphics/CGPath.h>
#include <CoreGraphics/CGFunction.h>
#include <CoreGraphics/CGGradient.h>
#include <CoreGraphics/CGShading.h>
#include <CoreGraphics/CGContext.h>
#include <CoreGraphics/CGBitmapContext.h>
#include <CoreGraphics/CGWindow.h>

#endif
