#import <Talvo/VXObservationCenter.h>

#include <dispatch/dispatch.h>
#include <objc/runtime.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <unordered_map>
#include <vector>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

// How entries follow their objects out of existence.
//
// Neither runtime Talvo builds on gives a portable way to be told that an
// arbitrary object died (GNUstep has no associated objects, and its
// weak-key NSMapTable keeps entries for keys that are gone). So the center
// watches deallocation itself: the first registration replaces
// -[NSObject dealloc] with a check against a side table keyed by object
// address, listing the centers that observe each object. A dying object
// found there is dropped from each of those centers before NSObject frees
// it; every other object pays one relaxed atomic load while no object is
// observed at all, and a hash lookup under a lock while some are.
//
// The check runs when the dealloc chain reaches NSObject, after the
// object's own -dealloc (GNUstep's KVO has cleared the object's
// registrations by then). An object whose class frees itself without
// calling [super dealloc] is not seen; the registries are keyed by address,
// so even then no lookup ever messages it.

@interface VXObservationCenter (DeathWatch)
- (void)tv_observedObjectDidDeallocate:(void *)object;
@end

namespace {

struct ObservedObjectTable {
  std::mutex lock;
  std::unordered_map<const void *, std::vector<VXObservationCenter *>> centers;
  std::atomic<size_t> count{0};
};

ObservedObjectTable &Table() {
  static ObservedObjectTable *table = new ObservedObjectTable;  // lives for the process
  return *table;
}

typedef void (*DeallocIMP)(id, SEL);
DeallocIMP originalDealloc = NULL;

void WatchingDealloc(id self, SEL _cmd) {
  ObservedObjectTable &table = Table();
  if (table.count.load(std::memory_order_relaxed) != 0) {
    std::vector<VXObservationCenter *> centers;
    {
      std::lock_guard<std::mutex> guard(table.lock);
      auto found = table.centers.find((const void *)self);
      if (found != table.centers.end()) {
        centers.swap(found->second);
        table.centers.erase(found);
        table.count.store(table.centers.size(), std::memory_order_relaxed);
      }
    }
    // Outside the lock: dropping handlers releases what they captured,
    // which may end other observed objects.
    for (VXObservationCenter *center : centers) {
      [center tv_observedObjectDidDeallocate:(void *)self];
    }
  }
  originalDealloc(self, _cmd);
}

void InstallDeallocWatch() {
  static dispatch_once_t once;
  dispatch_once(&once, ^{
    Method dealloc = class_getInstanceMethod([NSObject class], @selector(dealloc));
    originalDealloc = (DeallocIMP)method_setImplementation(dealloc, (IMP)WatchingDealloc);
  });
}

void AddWatch(const void *object, VXObservationCenter *center) {
  ObservedObjectTable &table = Table();
  std::lock_guard<std::mutex> guard(table.lock);
  std::vector<VXObservationCenter *> &centers = table.centers[object];
  if (std::find(centers.begin(), centers.end(), center) == centers.end()) {
    centers.push_back(center);
  }
  table.count.store(table.centers.size(), std::memory_order_relaxed);
}

void RemoveWatch(const void *object, VXObservationCenter *center) {
  ObservedObjectTable &table = Table();
  std::lock_guard<std::mutex> guard(table.lock);
  auto found = table.centers.find(object);
  if (found == table.centers.end()) {
    return;
  }
  std::vector<VXObservationCenter *> &centers = found->second;
  centers.erase(std::remove(centers.begin(), centers.end(), center), centers.end());
  if (centers.empty()) {
    table.centers.erase(found);
  }
  table.count.store(table.centers.size(), std::memory_order_relaxed);
}

}  // namespace

@implementation VXObservationCenter

#pragma mark - Lifecycle

+ (instancetype)sharedObservationCenter {
  static VXObservationCenter *sharedCenter = nil;
  static dispatch_once_t once;
  dispatch_once(&once, ^{
    sharedCenter = [[VXObservationCenter alloc] init];
  });
  return sharedCenter;
}

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    // Keys: the observed objects by address, neither retained nor ever
    // messaged (a dying object must not be asked for isEqual: or hash).
    // Values: strong dictionaries key path → handler.
    _observedObjects = [[NSMapTable alloc]
        initWithKeyOptions:NSPointerFunctionsOpaqueMemory | NSPointerFunctionsOpaquePersonality
              valueOptions:NSPointerFunctionsStrongMemory | NSPointerFunctionsObjectPersonality
                  capacity:0];
  }
  return self;
}

- (void)dealloc {
  // A center that goes away while still registered would leave KVO calling
  // a freed object and the dealloc watch holding a freed center; take back
  // every registration that is left.
  NSMapTable *observedObjects = _observedObjects;
  _observedObjects = nil;
  NSMapEnumerator each = NSEnumerateMapTable(observedObjects);
  void *object = NULL;
  void *handlers = NULL;
  while (NSNextMapEnumeratorPair(&each, &object, &handlers)) {
    RemoveWatch(object, self);
    for (NSString *keyPath in (NSDictionary *)handlers) {
      @try {
        [(id)object removeObserver:self forKeyPath:keyPath];
      } @catch (NSException *exception) {
      }
    }
  }
  NSEndMapTableEnumeration(&each);
  [observedObjects release];
  [super dealloc];
}

#pragma mark - Public

- (BOOL)observeKeyPath:(NSString *)keyPath
              ofObject:(id)object
               options:(NSKeyValueObservingOptions)options
         changeHandler:(VXObservationChangeHandler)handler {
  if (object == nil || keyPath == nil || handler == nil ||
      ![(id)keyPath isKindOfClass:[NSString class]]) {
    return NO;
  }
  NSMutableDictionary *handlers = [self handlersOfObject:object];
  if (handlers == nil) {
    InstallDeallocWatch();
    // Owned by the registry alone (not autoreleased): the handlers, and
    // what they captured, go the moment the entry does.
    handlers = [[NSMutableDictionary alloc] init];
    NSMapInsert(_observedObjects, object, handlers);
    [handlers release];
    AddWatch(object, self);
  }
  if ([handlers objectForKey:keyPath] != nil) {
    return NO;
  }
  VXObservationChangeHandler copied = [handler copy];
  [handlers setObject:copied forKey:keyPath];
  [copied release];
  @try {
    [object addObserver:self forKeyPath:keyPath options:options context:NULL];
  } @catch (NSException *exception) {
    // The object refused the registration: leave the registry as it was.
    [self forgetKeyPath:keyPath ofObject:object];
    return NO;
  }
  return YES;
}

- (void)unObserveKeyPath:(NSString *)keyPath ofObject:(id)object {
  if (object == nil) {
    return;
  }
  NSMutableDictionary *handlers = [self handlersOfObject:object];
  if (handlers == nil) {
    return;
  }
  if (keyPath != nil) {
    if (![(id)keyPath isKindOfClass:[NSString class]] || [handlers objectForKey:keyPath] == nil) {
      return;
    }
    [self forgetKeyPath:keyPath ofObject:object];
    [self removeKVORegistrationOfObject:object forKeyPath:keyPath];
    return;
  }
  NSArray *keyPaths = [handlers allKeys];
  [[handlers retain] autorelease];
  [self forgetObject:object];
  for (NSString *each in keyPaths) {
    [self removeKVORegistrationOfObject:object forKeyPath:each];
  }
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context {
  VXObservationChangeHandler handler = nil;
  if (object != nil && keyPath != nil) {
    handler = [[self handlersOfObject:object] objectForKey:keyPath];
  }
  if (handler != nil) {
    // Keep the handler alive while it runs: it may unobserve its own pair.
    [handler retain];
    handler(change);
    [handler release];
    return;
  }
  @try {
    [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
  } @catch (NSException *exception) {
    // NSObject raises for an unhandled observation; Talvo never raises.
  }
}

#pragma mark - Private

- (NSMutableDictionary *)handlersOfObject:(id)object {
  return (NSMutableDictionary *)NSMapGet(_observedObjects, object);
}

// Drops the object's entry and its watch.
- (void)forgetObject:(id)object {
  NSMapRemove(_observedObjects, object);
  RemoveWatch(object, self);
}

// Drops the handler of a pair, and the object's entry with its last pair.
- (void)forgetKeyPath:(NSString *)keyPath ofObject:(id)object {
  NSMutableDictionary *handlers = [self handlersOfObject:object];
  [handlers removeObjectForKey:keyPath];
  if (handlers != nil && [handlers count] == 0) {
    [self forgetObject:object];
  }
}

- (void)removeKVORegistrationOfObject:(id)object forKeyPath:(NSString *)keyPath {
  @try {
    [object removeObserver:self forKeyPath:keyPath];
  } @catch (NSException *exception) {
  }
}

// Called by the dealloc watch, after the watch entry is gone and before
// NSObject's dealloc: the registrations and handlers go.
- (void)tv_observedObjectDidDeallocate:(void *)object {
  NSMutableDictionary *handlers = [(id)NSMapGet(_observedObjects, object) retain];
  NSMapRemove(_observedObjects, object);
  // The object is still whole (NSObject's dealloc has not run): its KVO
  // registrations are taken back, or GNUstep keeps their records forever.
  // What that autoreleases goes at once, so that the handlers (and what they
  // captured) die with the object.
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  for (NSString *keyPath in [handlers allKeys]) {
    @try {
      [(id)object removeObserver:self forKeyPath:keyPath];
    } @catch (NSException *exception) {
    }
  }
  [handlers release];
  [pool drain];
}

@end
