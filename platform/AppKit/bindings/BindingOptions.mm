// Binding options as AppKit reads them. On macOS an option whose value is
// NSNull is not set, and -infoForBinding: reports every binding option in
// its NSOptionsKey dictionary, NSNull for the unset ones. GNUstep 0.29 takes
// an NSNull option at its word (an NSNull "transformer" is sent
// -transformedValue: and raises halfway through -bind:..., leaving the
// half-made binding behind), and reports only the options it was given, or
// no NSOptionsKey entry at all.
//
// Every binding GNUstep makes, whichever class's -bind:toObject:withKeyPath:
// options: makes it (NSObject's, NSControl's, NSView's, the controllers'),
// goes through one initialiser of its private GSKeyValueBinding: the options
// are cleaned there, NSNull values and non-dictionaries dropped. Reporting
// is added to -[NSObject infoForBinding:], which no GNUstep class overrides.
// And a model value that becomes nil arrives in KVO's change as NSNull,
// which GNUstep passes to the bound object as it is: it becomes nil again
// (or the null placeholder), as in AppKit.
//
// Not covered: the options a particular binding supports
// (-optionDescriptionsForBinding:): every option AppKit defines is reported
// for every binding.

#import <AppKit/AppKit.h>

#include <unordered_set>

#import "platform/objc/TVRuntime.h"

#if __has_feature(objc_arc)
#error "This file is manual reference counting only."
#endif

typedef id (*TVInitBindingIMP)(id, SEL, NSString *, NSString *, id, NSString *, NSDictionary *, id);
typedef NSDictionary *(*TVInfoForBindingIMP)(id, SEL, NSString *);
typedef void (*TVObserveIMP)(id, SEL, NSString *, id, NSDictionary *, void *);

static TVInitBindingIMP originalInitBinding = NULL;
static TVInfoForBindingIMP originalInfoForBinding = NULL;
static TVObserveIMP originalObserve = NULL;

// The binding options AppKit defines that GNUstep 0.29 declares too.
static NSArray *TVBindingOptionNames(void) {
  static NSArray *names = nil;
  if (names == nil) {
    names = [[NSArray alloc] initWithObjects:
        NSAllowsEditingMultipleValuesSelectionBindingOption, NSAllowsNullArgumentBindingOption,
        NSConditionallySetsEditableBindingOption, NSConditionallySetsEnabledBindingOption,
        NSConditionallySetsHiddenBindingOption, NSContinuouslyUpdatesValueBindingOption,
        NSCreatesSortDescriptorBindingOption, NSDeletesObjectsOnRemoveBindingsOption,
        NSDisplayNameBindingOption, NSDisplayPatternBindingOption,
        NSHandlesContentAsCompoundValueBindingOption, NSInsertsNullPlaceholderBindingOption,
        NSInvokesSeparatelyWithArrayObjectsBindingOption, NSMultipleValuesPlaceholderBindingOption,
        NSNoSelectionPlaceholderBindingOption, NSNotApplicablePlaceholderBindingOption,
        NSNullPlaceholderBindingOption, NSPredicateFormatBindingOption,
        NSRaisesForNotApplicableKeysBindingOption, NSSelectorNameBindingOption,
        NSSelectsAllWhenSettingContentBindingOption, NSValidatesImmediatelyBindingOption,
        NSValueTransformerNameBindingOption, NSValueTransformerBindingOption, nil];
  }
  return names;
}

// The options with the unset ones left out; nil when none is set or when
// `options` is not a dictionary.
static NSDictionary *TVSetOptions(id options) {
  if (![options isKindOfClass:[NSDictionary class]]) {
    return nil;
  }
  NSMutableDictionary *set = [NSMutableDictionary dictionaryWithCapacity:[options count]];
  NSNull *null = [NSNull null];
  for (id name in options) {
    id value = [options objectForKey:name];
    if (value != null) {
      [set setObject:value forKey:name];
    }
  }
  return [set count] != 0 ? set : nil;
}

// GNUstep keeps each bound object in a table that does not retain it, and
// forgets it only when a view or menu item deallocates, or on unbind of
// everything: a plain object that was ever bound and then deallocated
// stays behind, and a later lookup messages it. Bound objects are recorded
// here and taken out of GNUstep's table as they deallocate.
@interface NSObject (TalvoGSKeyValueBinding)
+ (void)unbindAllForObject:(id)object;
@end

static std::unordered_set<id> *boundObjects = new std::unordered_set<id>();
static void (*originalObjectDealloc)(id, SEL) = NULL;

static void TVForgetBindingsOnDealloc(id object, SEL selector) {
  if (boundObjects->erase(object) != 0) {
    Class bindingClass = objc_lookUpClass("GSKeyValueBinding");
    [(id)bindingClass unbindAllForObject:object];
  }
  originalObjectDealloc(object, selector);
}

static void TVRecordBoundObject(id object) {
  if (object == nil) {
    return;
  }
  if (originalObjectDealloc == NULL) {
    originalObjectDealloc = (void (*)(id, SEL))TVReplaceInstanceMethod(
        [NSObject class], @selector(dealloc), (IMP)TVForgetBindingsOnDealloc);
  }
  boundObjects->insert(object);
}

static id TVInitBinding(id binding, SEL selector, NSString *name, NSString *bindingName,
                        id destination, NSString *keyPath, NSDictionary *options, id source) {
  binding = originalInitBinding(binding, selector, name, bindingName, destination, keyPath,
                                TVSetOptions(options), source);
  if (binding != nil) {
    TVRecordBoundObject(source);
  }
  return binding;
}

// KVO reports a nil new value as NSNull; a binding passes nil on (or the
// null placeholder), never the NSNull itself.
static void TVBindingObserve(id binding, SEL selector, NSString *keyPath, id object,
                             NSDictionary *change, void *context) {
  if ([change isKindOfClass:[NSDictionary class]] &&
      [change objectForKey:NSKeyValueChangeNewKey] == [NSNull null]) {
    NSMutableDictionary *withNil = [[change mutableCopy] autorelease];
    [withNil removeObjectForKey:NSKeyValueChangeNewKey];
    change = withNil;
  }
  originalObserve(binding, selector, keyPath, object, change, context);
}

static NSDictionary *TVInfoForBinding(id object, SEL selector, NSString *binding) {
  NSDictionary *info = originalInfoForBinding(object, selector, binding);
  if (![info isKindOfClass:[NSDictionary class]]) {
    return info;
  }
  NSMutableDictionary *options = [NSMutableDictionary dictionary];
  NSNull *null = [NSNull null];
  for (NSString *name in TVBindingOptionNames()) {
    [options setObject:null forKey:name];
  }
  NSDictionary *given = TVSetOptions([info objectForKey:NSOptionsKey]);
  if (given != nil) {
    [options addEntriesFromDictionary:given];
  }
  NSMutableDictionary *reported = [[info mutableCopy] autorelease];
  [reported setObject:options forKey:NSOptionsKey];
  return [NSDictionary dictionaryWithDictionary:reported];
}

@interface _TVBindingOptionsHook : NSObject
@end

@implementation _TVBindingOptionsHook

+ (void)load {
  Class bindingClass = objc_lookUpClass("GSKeyValueBinding");
  SEL initSelector =
      @selector(initWithBinding:withName:toObject:withKeyPath:options:fromObject:);
  if (bindingClass != Nil) {
    originalInitBinding =
        (TVInitBindingIMP)TVReplaceInstanceMethod(bindingClass, initSelector, (IMP)TVInitBinding);
  }
  if (bindingClass != Nil) {
    originalObserve = (TVObserveIMP)TVReplaceInstanceMethod(
        bindingClass, @selector(observeValueForKeyPath:ofObject:change:context:),
        (IMP)TVBindingObserve);
  }
  if (originalInitBinding == NULL || originalObserve == NULL) {
    NSLog(@"Talvo: GSKeyValueBinding has changed; NSNull binding options and nil values are not "
          @"cleaned");
  }
  originalInfoForBinding = (TVInfoForBindingIMP)TVReplaceInstanceMethod(
      [NSObject class], @selector(infoForBinding:), (IMP)TVInfoForBinding);
}

@end
