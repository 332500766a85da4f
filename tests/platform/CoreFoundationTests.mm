// The Core Foundation stand-in: toll-free objects, the Create rule, and the
// lossy-conversion answers of CFNumberGetValue.
#import <Foundation/Foundation.h>
#include <CoreFoundation/CoreFoundation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

TEST(CoreFoundationTest, CreatedObjectsAreFoundationObjectsOwnedByTheCaller) {
  const void *keys[] = {CFSTR("width"), CFSTR("height")};
  int w = 640, h = 480;
  CFNumberRef width = CFNumberCreate(NULL, kCFNumberIntType, &w);
  CFNumberRef height = CFNumberCreate(NULL, kCFNumberIntType, &h);
  const void *values[] = {width, height};
  CFDictionaryRef dictionary = CFDictionaryCreate(NULL, keys, values, 2, &kCFTypeDictionaryKeyCallBacks,
                                                  &kCFTypeDictionaryValueCallBacks);
  CFRelease(width);
  CFRelease(height);
  ASSERT_NE(dictionary, nullptr);
  NSDictionary *bridged = (NSDictionary *)dictionary;
  EXPECT_EQ([[bridged objectForKey:@"width"] intValue], 640);
  EXPECT_EQ(CFGetTypeID(dictionary), CFDictionaryGetTypeID());
  EXPECT_EQ(CFGetRetainCount(dictionary), 1);
  // The values outlive the caller's references: the dictionary holds them.
  CFNumberRef stored = (CFNumberRef)CFDictionaryGetValue(dictionary, CFSTR("height"));
  float asFloat = 0;
  EXPECT_TRUE(CFNumberGetValue(stored, kCFNumberFloatType, &asFloat));
  EXPECT_EQ(asFloat, 480.0f);
  EXPECT_EQ(CFDictionaryGetValue(dictionary, CFSTR("depth")), nullptr);
  CFRelease(dictionary);

  // NULL keys or values refuse the whole dictionary instead of storing them.
  const void *holes[] = {CFSTR("a"), NULL};
  EXPECT_EQ(CFDictionaryCreate(NULL, holes, holes, 2, NULL, NULL), nullptr);
}

TEST(CoreFoundationTest, MutableCollectionsAndWrongTypesAnswerEmpty) {
  CFMutableArrayRef array = CFArrayCreateMutable(NULL, 0, &kCFTypeArrayCallBacks);
  CFArrayAppendValue(array, CFSTR("b"));
  CFArrayInsertValueAtIndex(array, 0, CFSTR("a"));
  CFArrayInsertValueAtIndex(array, 9, CFSTR("out of range"));
  CFArrayAppendValue(array, NULL);
  ASSERT_EQ(CFArrayGetCount(array), 2);
  EXPECT_TRUE([(NSString *)CFArrayGetValueAtIndex(array, 0) isEqualToString:@"a"]);
  EXPECT_EQ(CFArrayGetValueAtIndex(array, 2), nullptr);
  EXPECT_EQ(CFArrayGetValueAtIndex(array, -1), nullptr);
  EXPECT_TRUE(CFArrayContainsValue(array, CFRangeMake(1, 1), CFSTR("b")));
  EXPECT_FALSE(CFArrayContainsValue(array, CFRangeMake(1, 5), CFSTR("b")));

  // A CF call on an object of another type is a no-op, not a raise.
  EXPECT_EQ(CFDictionaryGetCount((CFDictionaryRef)array), 0);
  EXPECT_EQ(CFDataGetLength((CFDataRef)array), 0);
  CFDictionarySetValue((CFMutableDictionaryRef)array, CFSTR("k"), CFSTR("v"));
  EXPECT_EQ(CFGetTypeID(array), CFArrayGetTypeID());
  CFRelease(array);

  CFMutableDictionaryRef dictionary = CFDictionaryCreateMutable(NULL, 0, NULL, NULL);
  CFDictionaryAddValue(dictionary, CFSTR("k"), CFSTR("first"));
  CFDictionaryAddValue(dictionary, CFSTR("k"), CFSTR("second"));  // add keeps the first
  EXPECT_TRUE([(NSString *)CFDictionaryGetValue(dictionary, CFSTR("k")) isEqualToString:@"first"]);
  CFDictionarySetValue(dictionary, CFSTR("k"), CFSTR("third"));    // set replaces
  EXPECT_TRUE([(NSString *)CFDictionaryGetValue(dictionary, CFSTR("k")) isEqualToString:@"third"]);
  const void *key = NULL, *value = NULL;
  CFDictionaryGetKeysAndValues(dictionary, &key, &value);
  EXPECT_TRUE([(NSString *)key isEqualToString:@"k"]);
  CFRelease(dictionary);
}

TEST(CoreFoundationTest, NumberConversionsReportLoss) {
  double fraction = 2.5;
  CFNumberRef number = CFNumberCreate(NULL, kCFNumberDoubleType, &fraction);
  int asInt = -1;
  EXPECT_FALSE(CFNumberGetValue(number, kCFNumberIntType, &asInt));
  EXPECT_EQ(asInt, 2);  // truncated toward zero
  float asFloat = 0;
  EXPECT_TRUE(CFNumberGetValue(number, kCFNumberFloatType, &asFloat));
  EXPECT_EQ(asFloat, 2.5f);
  EXPECT_TRUE(CFNumberIsFloatType(number));
  EXPECT_EQ(CFNumberGetType(number), kCFNumberFloat64Type);
  CFRelease(number);

  int big = 300;
  number = CFNumberCreate(NULL, kCFNumberSInt32Type, &big);
  int8_t small = 0;
  EXPECT_FALSE(CFNumberGetValue(number, kCFNumberSInt8Type, &small));
  EXPECT_EQ(small, 127);  // clamped
  int64_t wide = 0;
  EXPECT_TRUE(CFNumberGetValue(number, kCFNumberSInt64Type, &wide));
  EXPECT_EQ(wide, 300);
  EXPECT_FALSE(CFNumberIsFloatType(number));
  CFRelease(number);

  double nan = std::nan("");
  number = CFNumberCreate(NULL, kCFNumberFloat64Type, &nan);
  int32_t fromNaN = 7;
  EXPECT_FALSE(CFNumberGetValue(number, kCFNumberSInt32Type, &fromNaN));
  EXPECT_EQ(fromNaN, 0);
  CFRelease(number);

  int64_t huge = std::numeric_limits<int64_t>::max();
  number = CFNumberCreate(NULL, kCFNumberSInt64Type, &huge);
  double asDouble = 0;
  EXPECT_FALSE(CFNumberGetValue(number, kCFNumberDoubleType, &asDouble));  // 2^63-1 has no double
  CFRelease(number);

  EXPECT_EQ(CFNumberCreate(NULL, kCFNumberIntType, NULL), nullptr);
  EXPECT_EQ(CFNumberCreate(NULL, (CFNumberType)99, &big), nullptr);
  EXPECT_FALSE(CFNumberGetValue(NULL, kCFNumberIntType, &asInt));
}

TEST(CoreFoundationTest, BooleansAreTheirOwnType) {
  EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
  EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
  EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
  EXPECT_EQ(CFGetTypeID((CFTypeRef)[NSNumber numberWithBool:NO]), CFBooleanGetTypeID());
  EXPECT_EQ(CFGetTypeID((CFTypeRef)[NSNumber numberWithChar:1]), CFNumberGetTypeID());
  EXPECT_EQ(CFGetTypeID(NULL), (CFTypeID)_kCFRuntimeNotATypeID);
  EXPECT_EQ(CFGetTypeID((CFTypeRef)[NSDate date]), (CFTypeID)_kCFRuntimeNotATypeID);
}

TEST(CoreFoundationTest, DataStringsAndURLs) {
  const uint8_t bytes[] = {1, 2, 3, 4};
  CFDataRef data = CFDataCreate(NULL, bytes, 4);
  ASSERT_EQ(CFDataGetLength(data), 4);
  EXPECT_EQ(CFDataGetBytePtr(data)[3], 4);
  uint8_t middle[2] = {0, 0};
  CFDataGetBytes(data, CFRangeMake(1, 2), middle);
  EXPECT_EQ(middle[0], 2);
  EXPECT_EQ(middle[1], 3);
  CFDataGetBytes(data, CFRangeMake(3, 2), middle);  // past the end: untouched
  EXPECT_EQ(middle[0], 2);
  CFRelease(data);
  EXPECT_EQ(CFDataCreate(NULL, NULL, 3), nullptr);

  // Bytes handed over without a copy are freed with the data unless the
  // deallocator is kCFAllocatorNull.
  uint8_t *owned = (uint8_t *)malloc(8);
  CFRelease(CFDataCreateWithBytesNoCopy(NULL, owned, 8, NULL));
  static uint8_t kept[4] = {9, 9, 9, 9};
  CFRelease(CFDataCreateWithBytesNoCopy(NULL, kept, 4, kCFAllocatorNull));
  EXPECT_EQ(kept[0], 9);

  CFStringRef string = CFStringCreateWithCString(NULL, "gr\xc3\xbc\xc3\x9f", kCFStringEncodingUTF8);
  EXPECT_EQ(CFStringGetLength(string), 4);
  char small[4];
  EXPECT_FALSE(CFStringGetCString(string, small, sizeof small, kCFStringEncodingUTF8));  // needs 7
  EXPECT_STREQ(small, "");
  char ascii[16];
  EXPECT_FALSE(CFStringGetCString(string, ascii, sizeof ascii, kCFStringEncodingASCII));
  char latin1[16];
  EXPECT_TRUE(CFStringGetCString(string, latin1, sizeof latin1, kCFStringEncodingISOLatin1));
  EXPECT_EQ((unsigned char)latin1[2], 0xfc);
  EXPECT_EQ(CFStringCompare(CFSTR("Image10"), CFSTR("image9"), kCFCompareCaseInsensitive | kCFCompareNumerically),
            kCFCompareGreaterThan);
  CFRelease(string);

  CFURLRef url = CFURLCreateWithFileSystemPath(NULL, CFSTR("/tmp/icons/App@2x.png"), kCFURLPOSIXPathStyle, false);
  ASSERT_NE(url, nullptr);
  EXPECT_TRUE([(NSURL *)url isFileURL]);
  CFStringRef extension = CFURLCopyPathExtension(url);
  EXPECT_TRUE([(NSString *)extension isEqualToString:@"png"]);
  CFRelease(extension);
  uint8_t path[64];
  EXPECT_TRUE(CFURLGetFileSystemRepresentation(url, true, path, sizeof path));
  EXPECT_STREQ((const char *)path, "/tmp/icons/App@2x.png");
  EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, true, path, 5));
  CFRelease(url);
  EXPECT_EQ(CFURLCreateWithFileSystemPath(NULL, CFSTR("C:\\x"), kCFURLWindowsPathStyle, false), nullptr);
}
