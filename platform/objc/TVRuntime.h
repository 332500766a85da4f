// Runtime helpers shared by the platform layer's hooks into GNUstep.
#ifndef TALVO_PLATFORM_RUNTIME_H
#define TALVO_PLATFORM_RUNTIME_H

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Makes `replacement` the implementation of `selector` on `cls` and returns
 * the implementation it replaces, to be called from the replacement. An
 * inherited method is first added to `cls` itself, so the hook never changes
 * the superclass. The class is initialised first (see TVRuntime.m).
 * Returns NULL when `cls` has no such method at all. */
__attribute__((visibility("hidden"))) IMP TVReplaceInstanceMethod(Class cls, SEL selector,
                                                                  IMP replacement);

#ifdef __cplusplus
}

/** The class named `name`, looked up once per place that asks. Code built for
 * the GCC runtime looks a class up by its name every time it names it
 * (`[NSNumber class]`, `[NSNumber numberWith...]`); hot paths name it through
 * this instead. */
#define TVCachedClass(name) \
  ([]() -> Class { static Class cls = objc_getClass(#name); return cls; }())
#endif

#endif
