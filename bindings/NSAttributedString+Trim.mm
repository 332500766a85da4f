#import <Talvo/NSAttributedString+Trim.h>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

@implementation NSAttributedString (trim)

- (NSAttributedString *)attributedStringByTrimmingCharactersInSet:(NSCharacterSet *)set {
  NSMutableAttributedString *trimmed = [[self mutableCopy] autorelease];
  if ([(id)set isKindOfClass:[NSCharacterSet class]]) {
    NSString *string = [trimmed string];
    NSRange found = [string rangeOfCharacterFromSet:set];
    while (found.location == 0 && found.length > 0) {
      [trimmed replaceCharactersInRange:NSMakeRange(0, found.length) withString:@""];
      found = [[trimmed string] rangeOfCharacterFromSet:set];
    }
    found = [[trimmed string] rangeOfCharacterFromSet:set options:NSBackwardsSearch];
    while (found.length > 0 && NSMaxRange(found) == [trimmed length]) {
      [trimmed replaceCharactersInRange:found withString:@""];
      found = [[trimmed string] rangeOfCharacterFromSet:set options:NSBackwardsSearch];
    }
  }
  return [[[NSAttributedString alloc] initWithAttributedString:trimmed] autorelease];
}

- (NSAttributedString *)attributedStringByTrimmingWhitespace {
  return [self attributedStringByTrimmingCharactersInSet:[NSCharacterSet
                                                             whitespaceAndNewlineCharacterSet]];
}

@end
