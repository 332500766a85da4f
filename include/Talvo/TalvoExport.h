// Export macro for Talvo's public C symbols (constants, functions).
#ifndef TALVO_EXPORT_H
#define TALVO_EXPORT_H

#ifdef __cplusplus
#define TALVO_EXTERN extern "C" __attribute__((visibility("default")))
#else
#define TALVO_EXTERN extern __attribute__((visibility("default")))
#endif

/** Marks an initialiser or method that must not be used (GNUstep defines
 * NS_UNAVAILABLE as nothing). */
#define TALVO_UNAVAILABLE __attribute__((unavailable))

#endif
