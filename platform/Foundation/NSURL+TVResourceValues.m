/*
 * Resource values of file URLs. gnustep-base 1.28 answers NO for
 * NSURLIsDirectoryKey and has no type identifier. This hook answers, for a
 * file URL of an existing item (symbolic links not followed, as on macOS):
 * NSURLIsDirectoryKey, NSURLIsRegularFileKey, NSURLIsSymbolicLinkKey,
 * NSURLIsHiddenKey (a name starting with a dot), NSURLNameKey,
 * NSURLFileSizeKey (regular files) and NSURLTypeIdentifierKey (see
 * TVTypeIdentifiers.h). A missing item gives NO and an error in
 * NSCocoaErrorDomain; other keys and other URLs go to GNUstep.
 */
#import <Foundation/Foundation.h>
#import <Foundation/NSURL+TalvoPlatform.h>

#include <errno.h>
#include <sys/stat.h>

#import "platform/Foundation/TVTypeIdentifiers.h"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

const CFStringRef kCFURLTypeIdentifierKey = (CFStringRef) @"NSURLTypeIdentifierKey";

typedef BOOL (*TVGetResourceValueIMP)(id, SEL, id *, NSString *, NSError **);
static TVGetResourceValueIMP gOriginal = NULL;

static BOOL IsAnsweredKey(NSString *key) {
  return [key isEqualToString:NSURLIsDirectoryKey] || [key isEqualToString:NSURLIsRegularFileKey] ||
         [key isEqualToString:NSURLIsSymbolicLinkKey] || [key isEqualToString:NSURLIsHiddenKey] ||
         [key isEqualToString:NSURLNameKey] || [key isEqualToString:NSURLFileSizeKey] ||
         [key isEqualToString:NSURLTypeIdentifierKey] ||
         [key isEqualToString:(NSString *)kCFURLTypeIdentifierKey];
}

static BOOL TVGetResourceValue(NSURL *url, SEL selector, id *value, NSString *key,
                               NSError **error) {
  if (![key isKindOfClass:[NSString class]] || ![url isFileURL] || !IsAnsweredKey(key)) {
    if (gOriginal == NULL) return NO;
    BOOL answered = NO;
    @try {
      answered = gOriginal(url, selector, value, key, error);
    } @catch (NSException *exception) {
      answered = NO;
    }
    return answered;
  }
  if (value == NULL) return NO;
  *value = nil;
  NSString *path = [url path];
  struct stat info;
  if ([path length] == 0 || lstat([path fileSystemRepresentation], &info) != 0) {
    if (error != NULL) {
      int code = errno;
      NSError *underlying = [NSError errorWithDomain:NSPOSIXErrorDomain code:code userInfo:nil];
      *error = [NSError
          errorWithDomain:NSCocoaErrorDomain
                     code:code == ENOENT ? NSFileReadNoSuchFileError : NSFileReadUnknownError
                 userInfo:[NSDictionary dictionaryWithObjectsAndKeys:url, NSURLErrorKey, underlying,
                                                                     NSUnderlyingErrorKey, nil]];
    }
    return NO;
  }
  BOOL directory = S_ISDIR(info.st_mode);
  NSString *name = [path lastPathComponent];
  if ([key isEqualToString:NSURLIsDirectoryKey]) {
    *value = [NSNumber numberWithBool:directory];
  } else if ([key isEqualToString:NSURLIsRegularFileKey]) {
    *value = [NSNumber numberWithBool:S_ISREG(info.st_mode)];
  } else if ([key isEqualToString:NSURLIsSymbolicLinkKey]) {
    *value = [NSNumber numberWithBool:S_ISLNK(info.st_mode)];
  } else if ([key isEqualToString:NSURLIsHiddenKey]) {
    *value = [NSNumber numberWithBool:[name hasPrefix:@"."]];
  } else if ([key isEqualToString:NSURLNameKey]) {
    *value = name;
  } else if ([key isEqualToString:NSURLFileSizeKey]) {
    // macOS gives no size for directories.
    if (S_ISREG(info.st_mode)) *value = [NSNumber numberWithUnsignedLongLong:info.st_size];
  } else {
    *value = TVTypeIdentifierForPath(path, directory);
  }
  return YES;
}

@interface _TVURLResourceValues : NSObject
@end

@implementation _TVURLResourceValues

+ (void)load {
  // By name: messaging the class here would run its +initialize before
  // any autorelease pool exists.
  gOriginal = (TVGetResourceValueIMP)TVReplaceInstanceMethod(
      objc_getClass("NSURL"), @selector(getResourceValue:forKey:error:), (IMP)TVGetResourceValue);
}

@end
