#import "platform/ImageIO/TVPropertyDictionary.h"

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation _TVPropertyDictionary

+ (instancetype)newWithObjects:(const id *)values forKeys:(const id *)keys count:(NSUInteger)count {
  _TVPropertyDictionary *dictionary = [self alloc];
  for (NSUInteger i = 0; i < count && dictionary->_count < kTVPropertyDictionaryCapacity; ++i) {
    if (keys[i] == nil || values[i] == nil) continue;
    dictionary->_keys[dictionary->_count] = [keys[i] copy];
    dictionary->_values[dictionary->_count] = [values[i] retain];
    dictionary->_count++;
  }
  return dictionary;
}

- (void)dealloc {
  for (NSUInteger i = 0; i < _count; ++i) {
    [_keys[i] release];
    [_values[i] release];
  }
  [super dealloc];
}

- (NSUInteger)count {
  return _count;
}

- (id)objectForKey:(id)key {
  if (key == nil) return nil;
  for (NSUInteger i = 0; i < _count; ++i) {
    if (_keys[i] == key) return _values[i];
  }
  for (NSUInteger i = 0; i < _count; ++i) {
    if ([_keys[i] isEqual:key]) return _values[i];
  }
  return nil;
}

// Rarely asked of image properties: an array of the keys does.
- (NSEnumerator *)keyEnumerator {
  return [[NSArray arrayWithObjects:_keys count:_count] objectEnumerator];
}

// GNUstep's dictionary leaves fast enumeration to its subclasses. The keys
// are handed out in one batch; nothing ever mutates them.
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)state
                                  objects:(id *)buffer
                                    count:(NSUInteger)length {
  if (state->state != 0) return 0;
  state->state = 1;
  state->itemsPtr = _keys;
  state->mutationsPtr = (unsigned long *)&_count;
  return _count;
}

// Immutable: a copy is the receiver.
- (id)copyWithZone:(NSZone *)zone {
  return [self retain];
}

@end
