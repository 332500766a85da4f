/*
 * Common definitions of Talvo's Core Image stand-in.
 */
#ifndef TALVO_CIBASE_H
#define TALVO_CIBASE_H

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#ifdef __cplusplus
#define CI_EXTERN extern "C" __attribute__((visibility("default")))
#else
#define CI_EXTERN extern __attribute__((visibility("default")))
#endif

#endif
