/*
 * Common definitions of Talvo's Core Graphics stand-in for GNUstep.
 *
 * These headers are for Objective-C and Objective-C++ files only: the
 * geometry types are GNUstep's own NSPoint/NSSize/NSRect and CGFloat is
 * Foundation's.
 *
 * There is no Core Foundation on GNUstep. CFTypeRef, CFDataRef and
 * CFStringRef are declared here as opaque pointers that are toll-free with
 * Foundation: a CFDataRef is an NSData *, a CFStringRef an NSString *, and
 * they are retained and released as such (CFRetain/CFRelease are
 * -retain/-release).
 */
#ifndef TALVO_CGBASE_H
#define TALVO_CGBASE_H

#import <Foundation/Foundation.h>

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define CG_EXTERN extern "C" __attribute__((visibility("default")))
#else
#define CG_EXTERN extern __attribute__((visibility("default")))
#endif

typedef const void *CFTypeRef;
typedef const struct __CFData *CFDataRef;        // NSData *
typedef const struct __CFString *CFStringRef;    // NSString *
typedef const struct __CFArray *CFArrayRef;      // NSArray *
typedef long CFIndex;

// Retain and release for the toll-free CF types above (NULL is ignored).
CG_EXTERN CFTypeRef CFRetain(CFTypeRef object);
CG_EXTERN void CFRelease(CFTypeRef object);

#endif
