// CFNumber and CFBoolean on NSNumber, with Core Foundation's lossy-conversion
// answers.
#include <CoreFoundation/CoreFoundation.h>

#include <cmath>
#include <cstring>
#include <limits>
#import "platform/objc/TVRuntime.h"

CFBooleanRef kCFBooleanTrue = NULL;
CFBooleanRef kCFBooleanFalse = NULL;

// The booleans are made in +load, once the runtime has loaded Foundation's
// classes; NSNumber hands out shared boolean instances.
@interface TVCFBooleans : NSObject
@end

@implementation TVCFBooleans
+ (void)load {
  kCFBooleanTrue = (CFBooleanRef)[[NSNumber alloc] initWithBool:YES];
  kCFBooleanFalse = (CFBooleanRef)[[NSNumber alloc] initWithBool:NO];
}
@end

namespace {

NSNumber *AsNumber(CFTypeRef number) {
  id object = (id)number;
  return [object isKindOfClass:TVCachedClass(NSNumber)] ? object : nil;
}

bool IsFloatEncoding(const char *type) { return type && (type[0] == 'f' || type[0] == 'd'); }

// The value as the widest type of its kind.
struct Source {
  enum Kind { kSigned, kUnsigned, kFloat } kind;
  long long i;
  unsigned long long u;
  double d;
};

Source Read(NSNumber *number) {
  const char *type = [number objCType];
  Source source{Source::kSigned, 0, 0, 0};
  if (IsFloatEncoding(type)) {
    source.kind = Source::kFloat;
    source.d = [number doubleValue];
  } else if (type && (type[0] == 'Q' || type[0] == 'L') && [number unsignedLongLongValue] > (unsigned long long)LLONG_MAX) {
    source.kind = Source::kUnsigned;
    source.u = [number unsignedLongLongValue];
  } else {
    source.i = [number longLongValue];
  }
  return source;
}

// Converts to an integer in [lo, hi]; false when something was lost.
bool ToInteger(const Source &source, long long lo, long long hi, long long *out) {
  switch (source.kind) {
    case Source::kUnsigned:
      *out = hi;
      return false;
    case Source::kSigned:
      if (source.i < lo) { *out = lo; return false; }
      if (source.i > hi) { *out = hi; return false; }
      *out = source.i;
      return true;
    case Source::kFloat: {
      double d = source.d;
      if (std::isnan(d)) { *out = 0; return false; }
      if (d <= (double)lo) { *out = lo; return d == (double)lo; }
      if (d >= (double)hi) { *out = hi; return d == (double)hi && hi < LLONG_MAX; }
      double whole = std::trunc(d);
      *out = (long long)whole;
      return whole == d;
    }
  }
  return false;
}

bool ToDouble(const Source &source, double *out) {
  switch (source.kind) {
    case Source::kFloat: *out = source.d; return true;
    case Source::kSigned:
      *out = (double)source.i;
      return source.i == LLONG_MIN || (std::fabs(*out) < 9223372036854775808.0 && (long long)*out == source.i);
    case Source::kUnsigned:
      *out = (double)source.u;
      return *out < 18446744073709551616.0 && (unsigned long long)*out == source.u;
  }
  return false;
}

template <typename T>
Boolean StoreInteger(const Source &source, void *value) {
  long long converted = 0;
  bool exact = ToInteger(source, (long long)std::numeric_limits<T>::min(),
                         (long long)std::numeric_limits<T>::max(), &converted);
  T narrowed = (T)converted;
  std::memcpy(value, &narrowed, sizeof narrowed);
  return exact;
}

}  // namespace

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
  NSNumber *number = AsNumber(boolean);
  return number && [number boolValue];
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType type, const void *value) {
  if (!value) return NULL;
  NSNumber *number = nil;
  switch (type) {
    case kCFNumberSInt8Type:
    case kCFNumberCharType: number = [[NSNumber alloc] initWithLongLong:*(const int8_t *)value]; break;
    case kCFNumberSInt16Type:
    case kCFNumberShortType: number = [[NSNumber alloc] initWithLongLong:*(const int16_t *)value]; break;
    case kCFNumberSInt32Type:
    case kCFNumberIntType: number = [[NSNumber alloc] initWithLongLong:*(const int32_t *)value]; break;
    case kCFNumberSInt64Type:
    case kCFNumberLongLongType: number = [[NSNumber alloc] initWithLongLong:*(const int64_t *)value]; break;
    case kCFNumberLongType: number = [[NSNumber alloc] initWithLongLong:*(const long *)value]; break;
    case kCFNumberCFIndexType: number = [[NSNumber alloc] initWithLongLong:*(const CFIndex *)value]; break;
    case kCFNumberNSIntegerType: number = [[NSNumber alloc] initWithLongLong:*(const NSInteger *)value]; break;
    case kCFNumberFloat32Type:
    case kCFNumberFloatType: number = [[NSNumber alloc] initWithFloat:*(const float *)value]; break;
    case kCFNumberFloat64Type:
    case kCFNumberDoubleType: number = [[NSNumber alloc] initWithDouble:*(const double *)value]; break;
    case kCFNumberCGFloatType: number = [[NSNumber alloc] initWithDouble:*(const CGFloat *)value]; break;
  }
  return (CFNumberRef)number;
}

CFNumberType CFNumberGetType(CFNumberRef number) {
  NSNumber *object = AsNumber(number);
  if (!object) return (CFNumberType)0;
  const char *type = [object objCType];
  if (type && type[0] == 'f') return kCFNumberFloat32Type;
  if (type && type[0] == 'd') return kCFNumberFloat64Type;
  if (type && strchr("cCsSi", type[0])) return kCFNumberSInt32Type;
  return kCFNumberSInt64Type;
}

CFIndex CFNumberGetByteSize(CFNumberRef number) {
  switch (CFNumberGetType(number)) {
    case kCFNumberSInt32Type:
    case kCFNumberFloat32Type: return 4;
    case kCFNumberSInt64Type:
    case kCFNumberFloat64Type: return 8;
    default: return 0;
  }
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
  NSNumber *object = AsNumber(number);
  return object && IsFloatEncoding([object objCType]);
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value) {
  NSNumber *object = AsNumber(number);
  if (!object || !value) return false;
  Source source = Read(object);
  switch (type) {
    case kCFNumberSInt8Type:
    case kCFNumberCharType: return StoreInteger<int8_t>(source, value);
    case kCFNumberSInt16Type:
    case kCFNumberShortType: return StoreInteger<int16_t>(source, value);
    case kCFNumberSInt32Type:
    case kCFNumberIntType: return StoreInteger<int32_t>(source, value);
    case kCFNumberSInt64Type:
    case kCFNumberLongLongType: return StoreInteger<int64_t>(source, value);
    case kCFNumberLongType: return StoreInteger<long>(source, value);
    case kCFNumberCFIndexType: return StoreInteger<CFIndex>(source, value);
    case kCFNumberNSIntegerType: return StoreInteger<NSInteger>(source, value);
    case kCFNumberFloat32Type:
    case kCFNumberFloatType: {
      double wide = 0;
      bool exact = ToDouble(source, &wide);
      float narrow = (float)wide;
      std::memcpy(value, &narrow, sizeof narrow);
      return exact && ((double)narrow == wide || std::isnan(wide));
    }
    case kCFNumberFloat64Type:
    case kCFNumberDoubleType:
    case kCFNumberCGFloatType: {
      double wide = 0;
      bool exact = ToDouble(source, &wide);
      std::memcpy(value, &wide, sizeof wide);
      return exact;
    }
  }
  return false;
}

CFComparisonResult CFNumberCompare(CFNumberRef a, CFNumberRef b, void *) {
  NSNumber *left = AsNumber(a), *right = AsNumber(b);
  if (!left || !right) return left ? kCFCompareGreaterThan : (right ? kCFCompareLessThan : kCFCompareEqualTo);
  return (CFComparisonResult)[left compare:right];
}
