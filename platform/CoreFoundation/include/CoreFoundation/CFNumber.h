// CFNumber and CFBoolean as NSNumber (see CFBase.h for what is not covered).
#ifndef TALVO_CFNUMBER_H
#define TALVO_CFNUMBER_H

#include <CoreFoundation/CFBase.h>

typedef const struct __CFNumber *CFNumberRef;    // NSNumber *
typedef const struct __CFBoolean *CFBooleanRef;  // NSNumber * holding a BOOL

typedef enum : CFIndex {
  kCFNumberSInt8Type = 1,
  kCFNumberSInt16Type = 2,
  kCFNumberSInt32Type = 3,
  kCFNumberSInt64Type = 4,
  kCFNumberFloat32Type = 5,
  kCFNumberFloat64Type = 6,
  kCFNumberCharType = 7,
  kCFNumberShortType = 8,
  kCFNumberIntType = 9,
  kCFNumberLongType = 10,
  kCFNumberLongLongType = 11,
  kCFNumberFloatType = 12,
  kCFNumberDoubleType = 13,
  kCFNumberCFIndexType = 14,
  kCFNumberNSIntegerType = 15,
  kCFNumberCGFloatType = 16,
  kCFNumberMaxType = 16
} CFNumberType;

// Set when the library loads (an Objective-C object cannot be made before
// the runtime has its classes), hence not declared const.
CF_EXPORT CFBooleanRef kCFBooleanTrue;
CF_EXPORT CFBooleanRef kCFBooleanFalse;
CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT Boolean CFBooleanGetValue(CFBooleanRef boolean);

CF_EXPORT CFTypeID CFNumberGetTypeID(void);
// NULL for a NULL value pointer or a type outside the enumeration.
CF_EXPORT CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void *value);
// The type the number was stored as: one of the SInt or Float types.
CF_EXPORT CFNumberType CFNumberGetType(CFNumberRef number);
CF_EXPORT CFIndex CFNumberGetByteSize(CFNumberRef number);
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef number);
// Writes the number converted to `type`; answers false when the conversion
// lost something (a fraction dropped, a value out of range, which is then
// clamped, or a NaN read as an integer, which gives 0).
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value);
CF_EXPORT CFComparisonResult CFNumberCompare(CFNumberRef a, CFNumberRef b, void *context);

#endif
