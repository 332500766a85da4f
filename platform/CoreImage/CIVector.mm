// Vectors of CGFloat values for filter parameters.

#import <CoreImage/CoreImage.h>

#include <cstdlib>
#include <cstring>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

@implementation CIVector

#pragma mark - Lifecycle

+ (instancetype)vectorWithValues:(const CGFloat *)values count:(size_t)count {
  return [[[self alloc] initWithValues:values count:count] autorelease];
}

+ (instancetype)vectorWithX:(CGFloat)x {
  return [self vectorWithValues:&x count:1];
}

+ (instancetype)vectorWithX:(CGFloat)x Y:(CGFloat)y {
  CGFloat values[] = {x, y};
  return [self vectorWithValues:values count:2];
}

+ (instancetype)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z {
  CGFloat values[] = {x, y, z};
  return [self vectorWithValues:values count:3];
}

+ (instancetype)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w {
  CGFloat values[] = {x, y, z, w};
  return [self vectorWithValues:values count:4];
}

+ (instancetype)vectorWithCGPoint:(CGPoint)point {
  return [self vectorWithX:point.x Y:point.y];
}

+ (instancetype)vectorWithCGRect:(CGRect)rect {
  return [self vectorWithX:rect.origin.x Y:rect.origin.y Z:rect.size.width W:rect.size.height];
}

- (instancetype)init {
  return [self initWithValues:NULL count:0];
}

- (instancetype)initWithValues:(const CGFloat *)values count:(size_t)count {
  self = [super init];
  if (self) {
    // Absurd counts are cut down rather than risk a failed allocation.
    _count = count > 1024 ? 1024 : count;
    _values = static_cast<CGFloat *>(calloc(_count ? _count : 1, sizeof(CGFloat)));
    if (!_values) {
      [self release];
      return nil;
    }
    if (values && _count) memcpy(_values, values, _count * sizeof(CGFloat));
  }
  return self;
}

- (instancetype)initWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w {
  CGFloat values[] = {x, y, z, w};
  return [self initWithValues:values count:4];
}

- (void)dealloc {
  free(_values);
  [super dealloc];
}

#pragma mark - Public

- (size_t)count {
  return _count;
}

- (CGFloat)valueAtIndex:(size_t)index {
  return index < _count ? _values[index] : 0;
}

- (CGFloat)X {
  return [self valueAtIndex:0];
}

- (CGFloat)Y {
  return [self valueAtIndex:1];
}

- (CGFloat)Z {
  return [self valueAtIndex:2];
}

- (CGFloat)W {
  return [self valueAtIndex:3];
}

- (CGPoint)CGPointValue {
  return CGPointMake([self X], [self Y]);
}

- (CGRect)CGRectValue {
  return CGRectMake([self X], [self Y], [self Z], [self W]);
}

#pragma mark - NSObject

- (BOOL)isEqual:(id)other {
  if (other == self) return YES;
  if (![other isKindOfClass:[CIVector class]] || [other count] != _count) return NO;
  for (size_t i = 0; i < _count; ++i) {
    if ([other valueAtIndex:i] != _values[i]) return NO;
  }
  return YES;
}

- (NSUInteger)hash {
  NSUInteger hash = _count;
  for (size_t i = 0; i < _count; ++i) {
    double value = _values[i] == 0 ? 0 : double(_values[i]);  // -0 equals 0
    uint64_t bits;
    memcpy(&bits, &value, sizeof bits);
    hash = hash * 31 + NSUInteger(bits ^ (bits >> 32));
  }
  return hash;
}

- (NSString *)description {
  NSMutableString *text = [NSMutableString stringWithString:@"["];
  for (size_t i = 0; i < _count; ++i) [text appendFormat:i ? @" %g" : @"%g", double(_values[i])];
  [text appendString:@"]"];
  return text;
}

#pragma mark - NSCopying

- (id)copyWithZone:(NSZone *)zone {
  return [self retain];  // immutable
}

@end
