#import "TVRuntime.h"

IMP TVReplaceInstanceMethod(Class cls, SEL selector, IMP replacement) {
  Method method = class_getInstanceMethod(cls, selector);
  if (method == NULL) {
    return NULL;
  }
  IMP original = method_getImplementation(method);
  if (!class_addMethod(cls, selector, replacement, method_getTypeEncoding(method))) {
    original = method_setImplementation(method, replacement);
  }
  return original;
}
