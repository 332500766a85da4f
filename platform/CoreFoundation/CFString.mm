// CFString basics on NSString.
#include <CoreFoundation/CoreFoundation.h>

#include <cstring>
#import "platform/objc/TVRuntime.h"

namespace {

NSString *AsString(CFTypeRef string) {
  id object = (id)string;
  return [object isKindOfClass:TVCachedClass(NSString)] ? object : nil;
}

// Foundation's encoding for a Core Foundation one; 0 when there is none.
const NSStringEncoding kNoEncoding = (NSStringEncoding)0;

NSStringEncoding FoundationEncoding(CFStringEncoding encoding) {
  switch (encoding) {
    case kCFStringEncodingUTF8: return NSUTF8StringEncoding;
    case kCFStringEncodingASCII: return NSASCIIStringEncoding;
    case kCFStringEncodingISOLatin1: return NSISOLatin1StringEncoding;
    case kCFStringEncodingWindowsLatin1: return NSWindowsCP1252StringEncoding;
    case kCFStringEncodingMacRoman: return NSMacOSRomanStringEncoding;
    case kCFStringEncodingUTF16: return NSUnicodeStringEncoding;
    case kCFStringEncodingUTF16BE: return NSUTF16BigEndianStringEncoding;
    case kCFStringEncodingUTF16LE: return NSUTF16LittleEndianStringEncoding;
    default: return kNoEncoding;
  }
}

}  // namespace

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *cString, CFStringEncoding encoding) {
  NSStringEncoding foundation = FoundationEncoding(encoding);
  if (!cString || !foundation) return NULL;
  return (CFStringRef)[[NSString alloc] initWithCString:cString encoding:foundation];
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const uint8_t *bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean) {
  NSStringEncoding foundation = FoundationEncoding(encoding);
  if (!foundation || length < 0 || (length > 0 && !bytes)) return NULL;
  return (CFStringRef)[[NSString alloc] initWithBytes:bytes length:(NSUInteger)length encoding:foundation];
}

CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef string) {
  NSString *source = AsString(string);
  return source ? (CFStringRef)[source copy] : NULL;
}

CFMutableStringRef CFStringCreateMutable(CFAllocatorRef, CFIndex) {
  return (CFMutableStringRef)[[NSMutableString alloc] init];
}

CFIndex CFStringGetLength(CFStringRef string) { return (CFIndex)[AsString(string) length]; }

uint16_t CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
  NSString *source = AsString(string);
  if (index < 0 || (NSUInteger)index >= [source length]) return 0;
  return [source characterAtIndex:(NSUInteger)index];
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex size, CFStringEncoding encoding) {
  NSString *source = AsString(string);
  NSStringEncoding foundation = FoundationEncoding(encoding);
  if (!buffer || size <= 0) return false;
  buffer[0] = '\0';
  if (!source || !foundation) return false;
  NSData *bytes = [source dataUsingEncoding:foundation allowLossyConversion:NO];
  if (!bytes || [bytes length] + 1 > (NSUInteger)size) return false;
  std::memcpy(buffer, [bytes bytes], [bytes length]);
  buffer[[bytes length]] = '\0';
  return true;
}

const char *CFStringGetCStringPtr(CFStringRef, CFStringEncoding) { return NULL; }

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
  if (length < 0) return 0;
  switch (encoding) {
    case kCFStringEncodingUTF8: return length * 3;
    case kCFStringEncodingUTF16:
    case kCFStringEncodingUTF16BE:
    case kCFStringEncodingUTF16LE: return length * 2;
    default: return length;
  }
}

CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b, CFStringCompareFlags options) {
  NSString *left = AsString(a), *right = AsString(b);
  if (!left || !right) return left ? kCFCompareGreaterThan : (right ? kCFCompareLessThan : kCFCompareEqualTo);
  NSStringCompareOptions foundation = 0;
  if (options & kCFCompareCaseInsensitive) foundation |= NSCaseInsensitiveSearch;
  if (options & kCFCompareNumerically) foundation |= NSNumericSearch;
  // GNUstep ignores NSNumericSearch when NSCaseInsensitiveSearch comes with
  // it ("Image10" < "image9"): fold the case first instead.
  if ((options & kCFCompareCaseInsensitive) && (options & kCFCompareNumerically)) {
    left = [left lowercaseString];
    right = [right lowercaseString];
    foundation &= ~(NSStringCompareOptions)NSCaseInsensitiveSearch;
  }
  return (CFComparisonResult)[left compare:right options:foundation];
}

Boolean CFStringHasPrefix(CFStringRef string, CFStringRef prefix) {
  NSString *source = AsString(string), *start = AsString(prefix);
  return source && start && [source hasPrefix:start];
}

Boolean CFStringHasSuffix(CFStringRef string, CFStringRef suffix) {
  NSString *source = AsString(string), *end = AsString(suffix);
  return source && end && [source hasSuffix:end];
}

void CFStringAppend(CFMutableStringRef string, CFStringRef appended) {
  id target = (id)string;
  NSString *tail = AsString(appended);
  if (tail && [target isKindOfClass:TVCachedClass(NSMutableString)]) [target appendString:tail];
}
