#import "TVRuntime.h"

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
  // hook that way. Asking whether the class responds installs its table.
  class_respondsToSelector(cls, selector);
  IMP original = method_getImplementation(method);
  if (!class_addMethod(cls, selector, replacement, method_getTypeEncoding(method))) {
    original = method_setImplementation(method, replacement);
  }
  return original;
}
