/*
 * The Core Foundation name of the type identifier resource key, which
 * GNUstep lacks. On macOS it is toll-free with NSURLTypeIdentifierKey and
 * has the same text; file URLs answer it (NSURL+TVResourceValues.m) with
 * identifiers such as "public.png" and "public.folder".
 */
#include <CoreFoundation/CoreFoundation.h>

CF_EXPORT const CFStringRef kCFURLTypeIdentifierKey;
