// +[NSLayoutConstraint constraintsWithVisualFormat:options:metrics:views:]:
// the C++ parser's descriptions turned into constraints between real views.

#import <AppKit/AppKit.h>

#include <map>
#include <set>
#include <string>

#include "platform/AppKit/layout/VisualFormat.hpp"
#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

namespace {

std::string UTF8(NSString *string) {
  const char *bytes = [string UTF8String];
  return bytes != NULL ? std::string(bytes) : std::string();
}

// "|" stands for the superview of the view it is connected to.
id ResolveItem(const std::string &name, const std::string &partner, NSDictionary *views) {
  if (name != talvo::layout::kSuperviewItem) {
    return [views objectForKey:[NSString stringWithUTF8String:name.c_str()]];
  }
  id view = [views objectForKey:[NSString stringWithUTF8String:partner.c_str()]];
  return [view respondsToSelector:@selector(superview)] ? [view superview] : nil;
}

}  // namespace

static NSArray *TVConstraintsWithVisualFormat(id cls, SEL selector, NSString *format,
                                              NSLayoutFormatOptions options,
                                              NSDictionary *metrics, NSDictionary *views) {
  if (![format isKindOfClass:[NSString class]]) {
    NSLog(@"Unable to parse constraint format: the format is not a string");
    return [NSArray array];
  }
  // Metrics: names to NSNumbers; views: names to views. Anything else is
  // refused whole rather than half-read (AppKit raises).
  if (metrics != nil && ![metrics isKindOfClass:[NSDictionary class]]) {
    NSLog(@"Unable to parse constraint format '%@': metrics must be a dictionary", format);
    return [NSArray array];
  }
  if (views != nil && ![views isKindOfClass:[NSDictionary class]]) {
    NSLog(@"Unable to parse constraint format '%@': views must be a dictionary", format);
    return [NSArray array];
  }
  std::map<std::string, double> metricValues;
  for (id name in metrics) {
    id value = [metrics objectForKey:name];
    if (![name isKindOfClass:[NSString class]] || ![value isKindOfClass:[NSNumber class]]) {
      NSLog(@"Unable to parse constraint format '%@': metric %@ is not a name and a number",
            format, name);
      return [NSArray array];
    }
    metricValues[UTF8(name)] = [value doubleValue];
  }
  std::set<std::string> viewNames;
  for (id name in views) {
    if (![name isKindOfClass:[NSString class]] ||
        ![[views objectForKey:name] isKindOfClass:[NSView class]]) {
      NSLog(@"Unable to parse constraint format '%@': view %@ is not a name and a view", format,
            name);
      return [NSArray array];
    }
    viewNames.insert(UTF8(name));
  }
  talvo::layout::VisualFormatResult parsed =
      talvo::layout::ParseVisualFormat(UTF8(format), options, metricValues, viewNames);
  if (!parsed.ok()) {
    NSLog(@"Unable to parse constraint format: %s", parsed.error.c_str());
    return [NSArray array];
  }

  NSMutableArray *constraints = [NSMutableArray arrayWithCapacity:parsed.constraints.size()];
  for (const talvo::layout::ConstraintDescription &description : parsed.constraints) {
    id first = ResolveItem(description.firstItem, description.secondItem, views);
    id second = description.secondItem.empty()
                    ? nil
                    : ResolveItem(description.secondItem, description.firstItem, views);
    if (first == nil || (!description.secondItem.empty() && second == nil)) {
      NSLog(@"Unable to interpret '|' in constraint format '%@': the view has no superview",
            format);
      return [NSArray array];
    }
    NSLayoutConstraint *constraint = [NSLayoutConstraint
        constraintWithItem:first
                 attribute:(NSLayoutAttribute)description.firstAttribute
                 relatedBy:(NSLayoutRelation)description.relation
                    toItem:second
                 attribute:(NSLayoutAttribute)description.secondAttribute
                multiplier:description.multiplier
                  constant:description.constant];
    [constraint setPriority:description.priority];
    [constraints addObject:constraint];
  }
  return constraints;
}

@interface _TVVisualFormatHook : NSObject
@end

@implementation _TVVisualFormatHook

+ (void)load {
  TVReplaceInstanceMethod(object_getClass([NSLayoutConstraint class]),
                          @selector(constraintsWithVisualFormat:options:metrics:views:),
                          (IMP)TVConstraintsWithVisualFormat);
}

@end
