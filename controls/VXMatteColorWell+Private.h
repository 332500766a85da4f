// The matte colour well's swatch rects, for tests.
#import <Talvo/VXMatteColorWell.h>

NS_ASSUME_NONNULL_BEGIN

@interface VXMatteColorWell (Private)
- (CGRect)_colorRect;
- (CGRect)_borderRect;
@end

NS_ASSUME_NONNULL_END
