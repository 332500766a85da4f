#import <Talvo/VXLocalizer.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation VXLocalizer

@synthesize filename = _filename;

#pragma mark - Lifecycle

- (void)dealloc {
  [_filename release];
  [super dealloc];
}

- (void)awakeFromNib {
}

#pragma mark - Key-value coding

- (id)valueForKey:(NSString *)key {
  if (key == nil) {
    return @"";
  }
  return [[NSBundle mainBundle] localizedStringForKey:key value:@"" table:nil];
}

#pragma mark - Key-value observing

// Bindings register on the localizer as on any model object; its answers
// never change, so there is nothing to observe.

- (void)addObserver:(NSObject *)observer
         forKeyPath:(NSString *)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(void *)context {
}

- (void)removeObserver:(NSObject *)observer forKeyPath:(NSString *)keyPath context:(void *)context {
}

- (void)removeObserver:(NSObject *)observer forKeyPath:(NSString *)keyPath {
}

@end
