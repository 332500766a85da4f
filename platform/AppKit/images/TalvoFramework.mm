// Makes the library a GNUstep framework bundle: gnustep-base looks for a
// class named NSFramework_<Name>, finds the framework directory from the
// path of the library that holds it (Talvo.framework/Versions/A/libTalvo.so),
// and maps the classes it lists to that bundle, so that
// +[NSBundle bundleForClass:] of any Talvo class answers the framework and
// its resources are found in Versions/A/Resources. Without the class every
// library class maps to the main bundle.

#import <Foundation/Foundation.h>

#include <dlfcn.h>
#include <objc/runtime.h>

#include <cstdlib>
#include <cstring>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@interface NSFramework_Talvo : NSObject
@end

@implementation NSFramework_Talvo

+ (NSString *)frameworkVersion {
  return @"A";
}

// Every class defined in this library, found by the object file that holds
// it, so that the list never lags behind the sources. NULL-terminated, made
// once and kept for the life of the process.
+ (NSString *const *)frameworkClasses {
  static NSString **names = NULL;
  if (names != NULL) {
    return names;
  }
  Dl_info own;
  if (dladdr((void *)[NSFramework_Talvo class], &own) == 0 || own.dli_fbase == NULL) {
    static NSString *none[] = {NULL};
    return none;
  }
  int count = objc_getClassList(NULL, 0);
  Class *classes = (Class *)calloc((size_t)count + 1, sizeof(Class));
  count = objc_getClassList(classes, count);
  names = (NSString **)calloc((size_t)count + 1, sizeof(NSString *));
  int kept = 0;
  for (int i = 0; i < count; i++) {
    Dl_info info;
    if (classes[i] == [NSFramework_Talvo class] || dladdr((void *)classes[i], &info) == 0 ||
        info.dli_fbase != own.dli_fbase) {
      continue;
    }
    names[kept++] = [[NSString alloc] initWithUTF8String:class_getName(classes[i])];
  }
  names[kept] = NULL;
  free(classes);
  return names;
}

@end
