/*
 * Data providers: a block of bytes images are made from. Not covered:
 * sequential and direct-access callbacks, URL and file providers.
 */
#ifndef TALVO_CGDATAPROVIDER_H
#define TALVO_CGDATAPROVIDER_H

#include <CoreGraphics/CGBase.h>

typedef struct CGDataProvider *CGDataProviderRef;

typedef void (*CGDataProviderReleaseDataCallback)(void *info, const void *data, size_t size);

// Uses `data` in place; `releaseData` (if any) runs when the provider dies.
CG_EXTERN CGDataProviderRef CGDataProviderCreateWithData(void *info, const void *data,
                                                         size_t size,
                                                         CGDataProviderReleaseDataCallback
                                                             releaseData);
// Retains the NSData.
CG_EXTERN CGDataProviderRef CGDataProviderCreateWithCFData(CFDataRef data);
CG_EXTERN CGDataProviderRef CGDataProviderRetain(CGDataProviderRef provider);
CG_EXTERN void CGDataProviderRelease(CGDataProviderRef provider);
// A new NSData (+1, release with CFRelease or -release) holding a copy of
// the bytes.
CG_EXTERN CFDataRef CGDataProviderCopyData(CGDataProviderRef provider);

#endif
