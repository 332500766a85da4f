#import <Talvo/VXObservationCenter.h>

#include <dispatch/dispatch.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

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
    // Keys: the observed objects, not retained (option 1), compared with
    // isEqual: and hash. Values: strong dictionaries key path → handler.
    _observedObjects = [[NSMapTable alloc] initWithKeyOptions:1 valueOptions:0 capacity:0];
  }
  return self;
}

- (void)dealloc {
  // A center that goes away while still registered would leave KVO calling
  // a freed object; take back every registration that is left.
  NSMapTable *observedObjects = _observedObjects;
  _observedObjects = nil;
  for (id object in [observedObjects keyEnumerator]) {
    for (NSString *keyPath in [observedObjects objectForKey:object]) {
      @try {
        [object removeObserver:self forKeyPath:keyPath];
      } @catch (NSException *exception) {
      }
    }
  }
  [observedObjects release];
  [super dealloc];
}

#pragma mark - Public

- (BOOL)observeKeyPath:(NSString *)keyPath
              ofObject:(id)object
               options:(NSKeyValueObservingOptions)options
         changeHandler:(VXObservationChangeHandler)handler {
  if (object == nil || keyPath == nil || handler == nil) {
    return NO;
  }
  NSMutableDictionary *handlers = [_observedObjects objectForKey:object];
  if (handlers == nil) {
    handlers = [NSMutableDictionary dictionary];
    [_observedObjects setObject:handlers forKey:object];
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
  NSMutableDictionary *handlers = [_observedObjects objectForKey:object];
  if (handlers == nil) {
    return;
  }
  if (keyPath != nil) {
    if ([handlers objectForKey:keyPath] == nil) {
      return;
    }
    [self forgetKeyPath:keyPath ofObject:object];
    [self removeKVORegistrationOfObject:object forKeyPath:keyPath];
    return;
  }
  NSArray *keyPaths = [handlers allKeys];
  [[handlers retain] autorelease];
  [_observedObjects removeObjectForKey:object];
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
    handler = [[_observedObjects objectForKey:object] objectForKey:keyPath];
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

// Drops the handler of a pair, and the object's entry with its last pair.
- (void)forgetKeyPath:(NSString *)keyPath ofObject:(id)object {
  NSMutableDictionary *handlers = [_observedObjects objectForKey:object];
  [handlers removeObjectForKey:keyPath];
  if ([handlers count] == 0) {
    [_observedObjects removeObjectForKey:object];
  }
}

- (void)removeKVORegistrationOfObject:(id)object forKeyPath:(NSString *)keyPath {
  @try {
    [object removeObserver:self forKeyPath:keyPath];
  } @catch (NSException *exception) {
  }
}

@end
