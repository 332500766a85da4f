#import <Talvo/NSDictionary+HttpString.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSDictionary (httpString)

- (NSMutableString *)httpString {
  NSMutableString *query = [NSMutableString string];
  BOOL first = YES;
  for (id key in [self keyEnumerator]) {
    if (!first) {
      [query appendString:@"&"];
    }
    first = NO;
    [query appendFormat:@"%@=%@", key, [self objectForKey:key]];
  }
  return query;
}

@end
