/*
 * Directory listing by URL as Apple documents it. gnustep-base 1.28 makes
 * the listed URLs from bare names (they resolve against the current
 * directory), lists hidden files whatever the options say, answers nil for
 * an empty directory, and its URL enumerator hands out relative path
 * strings. These replacements answer absolute file URLs (directories with
 * a trailing slash), honour NSDirectoryEnumerationSkipsHiddenFiles,
 * ...SkipsSubdirectoryDescendants and ...SkipsPackageDescendants (a
 * package here is a directory named *.app, *.bundle, *.framework or
 * *.plugin), call the error handler with the URL of a directory that cannot
 * be read (enumeration stops when it answers NO) and answer nil with an
 * error for a missing directory. Listing order is the file system's.
 * The prefetched keys are accepted and not cached: resource values are
 * read when asked for. Not covered: NSDirectoryEnumerationProducesRelativePathURLs,
 * ...IncludesDirectoriesPostOrder, file reference URLs.
 */
#import <Foundation/Foundation.h>

#include <dirent.h>
#include <errno.h>
#include <sys/stat.h>

#import <Foundation/NSFileManager+TalvoPlatform.h>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

typedef BOOL (^TVEnumerationErrorHandler)(NSURL *url, NSError *error);

// An NSError for a failed system call on `path`, in Cocoa's read codes.
static NSError *ReadError(int code, NSString *path) {
  NSInteger cocoa = NSFileReadUnknownError;
  if (code == ENOENT) cocoa = NSFileReadNoSuchFileError;
  if (code == EACCES || code == EPERM) cocoa = NSFileReadNoPermissionError;
  NSError *underlying = [NSError errorWithDomain:NSPOSIXErrorDomain code:code userInfo:nil];
  NSDictionary *info = [NSDictionary
      dictionaryWithObjectsAndKeys:path, NSFilePathErrorKey, [NSURL fileURLWithPath:path],
                                   NSURLErrorKey, underlying, NSUnderlyingErrorKey, nil];
  return [NSError errorWithDomain:NSCocoaErrorDomain code:cocoa userInfo:info];
}

// Whether a directory entry is a directory (not following symbolic links).
static BOOL EntryIsDirectory(struct dirent *entry, NSString *path) {
  if (entry->d_type == DT_DIR) return YES;
  if (entry->d_type != DT_UNKNOWN) return NO;
  struct stat info;
  return lstat([path fileSystemRepresentation], &info) == 0 && S_ISDIR(info.st_mode);
}

static BOOL IsPackage(NSString *path) {
  NSString *extension = [[path pathExtension] lowercaseString];
  return [extension isEqualToString:@"app"] || [extension isEqualToString:@"bundle"] ||
         [extension isEqualToString:@"framework"] || [extension isEqualToString:@"plugin"];
}

#pragma mark - Enumerator

// One open directory of the walk.
@interface _TVDirectoryLevel : NSObject {
 @public
  DIR *_dir;
  NSString *_path;
}
@end

@implementation _TVDirectoryLevel
- (void)dealloc {
  if (_dir != NULL) closedir(_dir);
  _dir = NULL;
  [_path release];
  [super dealloc];
}
@end

// A subclass so that callers can treat it as the documented class; it uses
// none of NSDirectoryEnumerator's own state.
@interface _TVURLDirectoryEnumerator : NSDirectoryEnumerator {
  NSMutableArray *_levels;
  NSUInteger _options;
  TVEnumerationErrorHandler _handler;
  NSString *_pendingPath;  // a directory just returned, entered on the next call
  NSURL *_pendingURL;
  NSError *_rootError;
  NSURL *_rootURL;
  BOOL _finished;
}
- (instancetype)initWithPath:(NSString *)path
                     options:(NSUInteger)options
                     handler:(TVEnumerationErrorHandler)handler;
@end

@implementation _TVURLDirectoryEnumerator

#pragma mark - Lifecycle

- (instancetype)initWithPath:(NSString *)path
                     options:(NSUInteger)options
                     handler:(TVEnumerationErrorHandler)handler {
  // NSObject's -init: NSDirectoryEnumerator's own set-up is not wanted.
  IMP init = class_getMethodImplementation([NSObject class], @selector(init));
  self = ((id(*)(id, SEL))init)(self, @selector(init));
  if (self == nil) return nil;
  _levels = [[NSMutableArray alloc] init];
  _options = options;
  _handler = [handler copy];
  _rootURL = [[NSURL fileURLWithPath:path isDirectory:YES] retain];
  DIR *dir = opendir([path fileSystemRepresentation]);
  if (dir == NULL) {
    _rootError = [ReadError(errno, path) retain];
  } else {
    _TVDirectoryLevel *level = [[_TVDirectoryLevel alloc] init];
    level->_dir = dir;
    level->_path = [path copy];
    [_levels addObject:level];
    [level release];
  }
  return self;
}

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-missing-super-calls"
- (void)dealloc {
  [_rootURL release];
  [_rootError release];
  [_pendingURL release];
  [_pendingPath release];
  [_handler release];
  [_levels release];
  // NSDirectoryEnumerator's -dealloc would free state this object never
  // made: go straight to NSObject's.
  IMP dealloc = class_getMethodImplementation([NSObject class], @selector(dealloc));
  ((void (*)(id, SEL))dealloc)(self, @selector(dealloc));
}
#pragma clang diagnostic pop

#pragma mark - Private

// Reports an unreadable directory; NO when the handler ends the walk.
- (BOOL)reportError:(NSError *)error forURL:(NSURL *)url {
  if (_handler == nil) return YES;
  BOOL goOn = NO;
  @try {
    goOn = _handler(url, error);
  } @catch (NSException *exception) {
    goOn = NO;
  }
  return goOn;
}

- (void)enterPending {
  NSString *path = [_pendingPath autorelease];
  NSURL *url = [_pendingURL autorelease];
  _pendingPath = nil;
  _pendingURL = nil;
  DIR *dir = opendir([path fileSystemRepresentation]);
  if (dir == NULL) {
    if (![self reportError:ReadError(errno, path) forURL:url]) _finished = YES;
    return;
  }
  _TVDirectoryLevel *level = [[_TVDirectoryLevel alloc] init];
  level->_dir = dir;
  level->_path = [path copy];
  [_levels addObject:level];
  [level release];
}

#pragma mark - NSEnumerator

- (id)nextObject {
  if (_rootError != nil) {
    NSError *error = [_rootError autorelease];
    _rootError = nil;
    [self reportError:error forURL:_rootURL];
    _finished = YES;
  }
  if (_pendingPath != nil && !_finished) [self enterPending];
  while (!_finished && [_levels count] > 0) {
    _TVDirectoryLevel *level = [_levels lastObject];
    struct dirent *entry = readdir(level->_dir);
    if (entry == NULL) {
      [_levels removeLastObject];
      continue;
    }
    const char *name = entry->d_name;
    if (strcmp(name, ".") == 0 || strcmp(name, "..") == 0) continue;
    if ((_options & NSDirectoryEnumerationSkipsHiddenFiles) && name[0] == '.') continue;
    NSString *path = [level->_path
        stringByAppendingPathComponent:[[NSFileManager defaultManager]
                                           stringWithFileSystemRepresentation:name
                                                                       length:strlen(name)]];
    BOOL isDirectory = EntryIsDirectory(entry, path);
    NSURL *url = [NSURL fileURLWithPath:path isDirectory:isDirectory];
    BOOL descend = isDirectory &&
                   !(_options & NSDirectoryEnumerationSkipsSubdirectoryDescendants) &&
                   !((_options & NSDirectoryEnumerationSkipsPackageDescendants) && IsPackage(path));
    if (descend) {
      _pendingPath = [path copy];
      _pendingURL = [url retain];
    }
    return url;
  }
  _finished = YES;
  return nil;
}

// One object at a time: a batch fetched ahead would enter directories
// before the caller could skip them.
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)state
                                  objects:(id *)buffer
                                    count:(NSUInteger)length {
  state->mutationsPtr = &state->extra[0];
  if (length == 0) return 0;
  id next = [self nextObject];
  if (next == nil) return 0;
  buffer[0] = next;
  state->itemsPtr = buffer;
  return 1;
}

#pragma mark - NSDirectoryEnumerator

- (void)skipDescendants {
  [_pendingPath release];
  _pendingPath = nil;
  [_pendingURL release];
  _pendingURL = nil;
}

- (void)skipDescendents {
  [self skipDescendants];
}

- (NSUInteger)level {
  return [_levels count];
}

- (NSDictionary *)fileAttributes {
  return nil;
}

- (NSDictionary *)directoryAttributes {
  return nil;
}

@end

#pragma mark - File manager hooks

static NSArray *TVContentsOfDirectoryAtURL(NSFileManager *manager, SEL selector, NSURL *url,
                                           NSArray *keys, NSUInteger options, NSError **error) {
  if (error != NULL) *error = nil;
  if (![url isKindOfClass:[NSURL class]] || ![url isFileURL] || [[url path] length] == 0) {
    if (error != NULL) {
      *error = [NSError errorWithDomain:NSCocoaErrorDomain
                                   code:NSFileReadUnsupportedSchemeError
                               userInfo:nil];
    }
    return nil;
  }
  NSString *directory = [url path];
  DIR *dir = opendir([directory fileSystemRepresentation]);
  if (dir == NULL) {
    if (error != NULL) *error = ReadError(errno, directory);
    return nil;
  }
  NSMutableArray *urls = [NSMutableArray array];
  struct dirent *entry;
  while ((entry = readdir(dir)) != NULL) {
    const char *name = entry->d_name;
    if (strcmp(name, ".") == 0 || strcmp(name, "..") == 0) continue;
    if ((options & NSDirectoryEnumerationSkipsHiddenFiles) && name[0] == '.') continue;
    NSString *path = [directory
        stringByAppendingPathComponent:[manager stringWithFileSystemRepresentation:name
                                                                            length:strlen(name)]];
    [urls addObject:[NSURL fileURLWithPath:path isDirectory:EntryIsDirectory(entry, path)]];
  }
  closedir(dir);
  return urls;
}

static NSDirectoryEnumerator *TVEnumeratorAtURL(NSFileManager *manager, SEL selector, NSURL *url,
                                                NSArray *keys, NSUInteger options,
                                                TVEnumerationErrorHandler handler) {
  if (![url isKindOfClass:[NSURL class]] || ![url isFileURL] || [[url path] length] == 0) {
    return nil;
  }
  return [[[_TVURLDirectoryEnumerator alloc] initWithPath:[url path]
                                                  options:options
                                                  handler:handler] autorelease];
}

@interface _TVFileManagerURLListing : NSObject
@end

@implementation _TVFileManagerURLListing

+ (void)load {
  // By name: messaging the class here would run its +initialize before
  // any autorelease pool exists.
  Class manager = objc_getClass("NSFileManager");
  TVReplaceInstanceMethod(
      manager, @selector(contentsOfDirectoryAtURL:includingPropertiesForKeys:options:error:),
      (IMP)TVContentsOfDirectoryAtURL);
  TVReplaceInstanceMethod(
      manager, @selector(enumeratorAtURL:includingPropertiesForKeys:options:errorHandler:),
      (IMP)TVEnumeratorAtURL);
}

@end

@implementation NSDirectoryEnumerator (TalvoPlatform)

- (void)skipDescendants {
  [self skipDescendents];
}

@end
