#import "TVRuntime.h"

#include <objc/message.h>

// An autorelease pool made without a compiled message: hooks run from +load,
// possibly before this file's selectors are registered with the runtime,
// and before any pool exists.
static id PushPool(void) {
  id poolClass = (id)objc_getClass("NSAutoreleasePool");
  SEL make = sel_registerName("new");
  IMP imp = poolClass != nil ? objc_msg_lookup(poolClass, make) : NULL;
  return imp != NULL ? ((id(*)(id, SEL))imp)(poolClass, make) : nil;
}

static void PopPool(id pool) {
  if (pool == nil) return;
  SEL drain = sel_registerName("drain");
  IMP imp = objc_msg_lookup(pool, drain);
  if (imp != NULL) ((void (*)(id, SEL))imp)(pool, drain);
}

IMP TVReplaceInstanceMethod(Class cls, SEL selector, IMP replacement) {
  Method method = class_getInstanceMethod(cls, selector);
  if (method == NULL) {
    return NULL;
  }
  // GCC's runtime writes a new implementation into the dispatch table of
  // the class that lists the method. Until the class has its own table (an
  // instance table is made at the first instance message, not by +initialize)
  // that table is the runtime's shared placeholder, so the write would reach
  // every class without one: a stack block's -copyWithZone: ran an NSImage
  // hook that way. Asking whether the class responds installs its table
  // (and runs +initialize, which may autorelease).
  id pool = PushPool();
  class_respondsToSelector(cls, selector);
  PopPool(pool);
  IMP original = method_getImplementation(method);
  if (!class_addMethod(cls, selector, replacement, method_getTypeEncoding(method))) {
    original = method_setImplementation(method, replacement);
  }
  return original;
}
