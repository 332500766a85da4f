/*
 * Apple's defaults for NSValueTransformer's overridable methods. GNUstep's
 * base class raises in +allowsReverseTransformation, +transformedValueClass
 * and -transformedValue:, so a subclass that relies on the documented
 * defaults (reversible, NSObject, the value itself) would raise.
 */
#import <Foundation/Foundation.h>

#import "platform/objc/TVRuntime.h"

static BOOL TVAllowsReverseTransformation(id cls, SEL selector) { return YES; }

static Class TVTransformedValueClass(id cls, SEL selector) { return [NSObject class]; }

static id TVTransformedValue(id transformer, SEL selector, id value) { return value; }

@interface _TVValueTransformerDefaults : NSObject
@end

@implementation _TVValueTransformerDefaults

+ (void)load {
  Class transformer = [NSValueTransformer class];
  Class metaclass = object_getClass(transformer);
  TVReplaceInstanceMethod(metaclass, @selector(allowsReverseTransformation),
                          (IMP)TVAllowsReverseTransformation);
  TVReplaceInstanceMethod(metaclass, @selector(transformedValueClass),
                          (IMP)TVTransformedValueClass);
  TVReplaceInstanceMethod(transformer, @selector(transformedValue:), (IMP)TVTransformedValue);
}

@end
