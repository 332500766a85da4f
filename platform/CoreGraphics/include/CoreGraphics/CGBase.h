/*
 * Common definitions of Talvo's Core Graphics stand-in for GNUstep.
 *
 * These headers are for Objective-C and Objective-C++ files only: the
 * geometry types are GNUstep's own NSPoint/NSSize/NSRect and CGFloat is
 * Foundation's.
 *
 * Core Foundation types come from Talvo's Core Foundation stand-in, which is
 * toll-free with Foundation: a CFDataRef is an NSData *, a CFStringRef an
 * NSString *, and CFRetain/CFRelease are -retain/-release.
 */
#ifndef TALVO_CGBASE_H
#define TALVO_CGBASE_H

#import <Foundation/Foundation.h>
#include <CoreFoundation/CoreFoundation.h>

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define CG_EXTERN extern "C" __attribute__((visibility("default")))
#else
#define CG_EXTERN extern __attribute__((visibility("default")))
#endif

#endif
