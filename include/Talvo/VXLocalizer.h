#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * An object to bind interface texts to: any key asked of it by key-value
 * coding answers the main bundle's localized string for that key (the key
 * itself when there is no translation). Observer registrations that
 * bindings make on it are accepted and ignored.
 */
@interface VXLocalizer : NSObject {
  NSString *_filename;
}

/** Stored and returned; the lookup does not consult it. Key-value coding of
 * "filename" answers a localized string like any other key. */
@property(atomic, strong, nullable) NSString *filename;

/** The main bundle's localized string for `key` in the default table. */
- (nullable id)valueForKey:(NSString *)key;

- (void)awakeFromNib;
- (void)addObserver:(NSObject *)observer
         forKeyPath:(NSString *)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(nullable void *)context;
- (void)removeObserver:(NSObject *)observer
            forKeyPath:(NSString *)keyPath
               context:(nullable void *)context;
- (void)removeObserver:(NSObject *)observer forKeyPath:(NSString *)keyPath;

@end

NS_ASSUME_NONNULL_END
