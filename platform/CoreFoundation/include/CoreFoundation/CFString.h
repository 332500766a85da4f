// CFString basics as NSString (see CFBase.h for what is not covered).
#ifndef TALVO_CFSTRING_H
#define TALVO_CFSTRING_H

#include <CoreFoundation/CFBase.h>

typedef uint32_t CFStringEncoding;
enum {
  kCFStringEncodingMacRoman = 0,
  kCFStringEncodingWindowsLatin1 = 0x0500,
  kCFStringEncodingISOLatin1 = 0x0201,
  kCFStringEncodingASCII = 0x0600,
  kCFStringEncodingUnicode = 0x0100,
  kCFStringEncodingUTF8 = 0x08000100,
  kCFStringEncodingUTF16 = 0x0100,
  kCFStringEncodingUTF16BE = 0x10000100,
  kCFStringEncodingUTF16LE = 0x14000100,
  kCFStringEncodingInvalidId = 0xffffffffU
};

typedef CFOptionFlags CFStringCompareFlags;
enum {
  kCFCompareCaseInsensitive = 1,
  kCFCompareBackwards = 4,
  kCFCompareAnchored = 8,
  kCFCompareNonliteral = 16,
  kCFCompareNumerically = 64
};

// A constant string: an Objective-C string literal.
#define CFSTR(cString) ((CFStringRef) @"" cString)

CF_EXPORT CFTypeID CFStringGetTypeID(void);
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *cString,
                                                CFStringEncoding encoding);
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const uint8_t *bytes,
                                              CFIndex length, CFStringEncoding encoding,
                                              Boolean isExternalRepresentation);
CF_EXPORT CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string);
CF_EXPORT CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex maxLength);
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
CF_EXPORT uint16_t CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);
// Answers false (and writes an empty string when there is room) if the
// string does not fit in `size` bytes with its terminating zero or cannot be
// represented in `encoding`.
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex size,
                                     CFStringEncoding encoding);
// Always NULL: callers fall back to CFStringGetCString, as Core Foundation
// allows.
CF_EXPORT const char *CFStringGetCStringPtr(CFStringRef string, CFStringEncoding encoding);
CF_EXPORT CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
CF_EXPORT CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b, CFStringCompareFlags options);
CF_EXPORT Boolean CFStringHasPrefix(CFStringRef string, CFStringRef prefix);
CF_EXPORT Boolean CFStringHasSuffix(CFStringRef string, CFStringRef suffix);
CF_EXPORT void CFStringAppend(CFMutableStringRef string, CFStringRef appended);

#endif
