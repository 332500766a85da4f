// The three filters Talvo resamples with, as lazy recipes.

#import <CoreImage/CoreImage.h>

#import "platform/CoreImage/TVCIImageRecipe.h"

#include <cmath>
#include <initializer_list>

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

NSString *const kCIOutputImageKey = @"outputImage";
NSString *const kCIInputImageKey = @"inputImage";
NSString *const kCIInputScaleKey = @"inputScale";
NSString *const kCIInputAspectRatioKey = @"inputAspectRatio";
NSString *const kCIInputTransformKey = @"inputTransform";

namespace {

NSString *const kAffineClamp = @"CIAffineClamp";
NSString *const kLanczosScale = @"CILanczosScaleTransform";
NSString *const kCrop = @"CICrop";
NSString *const kInputRectangle = @"inputRectangle";

NSArray *InputKeysFor(NSString *name) {
  if ([name isEqualToString:kAffineClamp]) return @[ kCIInputImageKey, kCIInputTransformKey ];
  if ([name isEqualToString:kLanczosScale]) {
    return @[ kCIInputImageKey, kCIInputScaleKey, kCIInputAspectRatioKey ];
  }
  if ([name isEqualToString:kCrop]) return @[ kCIInputImageKey, kInputRectangle ];
  return nil;
}

// Whether `value` is the identity transform as an NSAffineTransform or an
// NSValue of a CGAffineTransform.
bool IsIdentityTransform(id value) {
  if ([value isKindOfClass:[NSAffineTransform class]]) {
    NSAffineTransformStruct t = [(NSAffineTransform *)value transformStruct];
    return t.m11 == 1 && t.m12 == 0 && t.m21 == 0 && t.m22 == 1 && t.tX == 0 && t.tY == 0;
  }
  if ([value isKindOfClass:[NSValue class]] &&
      strcmp([(NSValue *)value objCType], @encode(CGAffineTransform)) == 0) {
    CGAffineTransform t;
    [(NSValue *)value getValue:&t];
    return CGAffineTransformIsIdentity(t);
  }
  return false;
}

// A number as a double; NaN for anything else.
double NumberValue(id value) {
  return [value isKindOfClass:[NSNumber class]] ? [(NSNumber *)value doubleValue] : NAN;
}

}  // namespace

@implementation CIFilter

#pragma mark - Lifecycle

+ (CIFilter *)filterWithName:(NSString *)name {
  if (![name isKindOfClass:[NSString class]] || InputKeysFor(name) == nil) return nil;
  return [[[self alloc] _initWithName:name] autorelease];
}

- (instancetype)init {
  [self release];
  return nil;
}

- (instancetype)_initWithName:(NSString *)name {
  self = [super init];
  if (self) {
    _name = [name copy];
    _inputs = [[NSMutableDictionary alloc] init];
    [self setDefaults];
  }
  return self;
}

- (void)dealloc {
  NSMutableDictionary *inputs = _inputs;
  _inputs = nil;
  [inputs release];
  NSString *name = _name;
  _name = nil;
  [name release];
  [super dealloc];
}

#pragma mark - Public

- (NSString *)name {
  return _name;
}

- (NSArray *)inputKeys {
  return InputKeysFor(_name);
}

- (NSArray *)outputKeys {
  return @[ kCIOutputImageKey ];
}

- (void)setDefaults {
  id image = [[[_inputs objectForKey:kCIInputImageKey] retain] autorelease];
  [_inputs removeAllObjects];
  if (image) [_inputs setObject:image forKey:kCIInputImageKey];
  if ([_name isEqualToString:kAffineClamp]) {
    [_inputs setObject:[NSAffineTransform transform] forKey:kCIInputTransformKey];
  } else if ([_name isEqualToString:kLanczosScale]) {
    [_inputs setObject:@1.0 forKey:kCIInputScaleKey];
    [_inputs setObject:@1.0 forKey:kCIInputAspectRatioKey];
  } else if ([_name isEqualToString:kCrop]) {
    [_inputs setObject:[CIVector vectorWithCGRect:CGRectInfinite] forKey:kInputRectangle];
  }
}

- (void)setValue:(id)value forKey:(NSString *)key {
  if (![key isKindOfClass:[NSString class]] || ![[self inputKeys] containsObject:key]) return;
  if (value) {
    [_inputs setObject:value forKey:key];
  } else {
    [_inputs removeObjectForKey:key];
  }
}

- (id)valueForKey:(NSString *)key {
  if (![key isKindOfClass:[NSString class]]) return nil;
  if ([key isEqualToString:kCIOutputImageKey]) return [self outputImage];
  if ([key isEqualToString:@"name"]) return _name;
  return [_inputs objectForKey:key];
}

- (CIImage *)outputImage {
  CIImage *image = [_inputs objectForKey:kCIInputImageKey];
  if (![image isKindOfClass:[CIImage class]]) return nil;
  if ([_name isEqualToString:kAffineClamp]) {
    id transform = [_inputs objectForKey:kCIInputTransformKey];
    if (transform && !IsIdentityTransform(transform)) return nil;
    return [image imageByClampingToExtent];
  }
  if ([_name isEqualToString:kLanczosScale]) {
    id scaleValue = [_inputs objectForKey:kCIInputScaleKey];
    id aspectValue = [_inputs objectForKey:kCIInputAspectRatioKey];
    double scale = scaleValue ? NumberValue(scaleValue) : 1;
    double aspect = aspectValue ? NumberValue(aspectValue) : 1;
    return [image _imageScaledByX:CGFloat(scale * aspect) y:CGFloat(scale)];
  }
  if ([_name isEqualToString:kCrop]) {
    id rectangle = [_inputs objectForKey:kInputRectangle];
    if (rectangle == nil) return image;
    if (![rectangle isKindOfClass:[CIVector class]] || [(CIVector *)rectangle count] < 4)
      return nil;
    CGRect rect = [(CIVector *)rectangle CGRectValue];
    for (CGFloat v : {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}) {
      if (std::isnan(v)) return nil;
    }
    return [image imageByCroppingToRect:rect];
  }
  return nil;
}

#pragma mark - NSObject

- (NSString *)description {
  return [NSString stringWithFormat:@"<CIFilter %@ %@>", _name, _inputs];
}

#pragma mark - NSCopying

- (id)copyWithZone:(NSZone *)zone {
  CIFilter *copy = [[CIFilter allocWithZone:zone] _initWithName:_name];
  [copy->_inputs setDictionary:_inputs];
  return copy;
}

@end
