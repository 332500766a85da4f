#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSCalendar (day)

/** Midnight at the start of the day of `date` in the receiver's time zone;
 * nil for a nil date, an argument that is not a date, or a date at an
 * infinite or NaN time. The other methods answer nil for the same. */
- (nullable NSDate *)beginningOfDayAtDate:(nullable NSDate *)date;

/** The beginning of the day plus 89999 seconds: 00:59:59 of the next day on
 * a 24-hour day. */
- (nullable NSDate *)endOfDayAtDate:(nullable NSDate *)date;

/** `date` with `numberOfDay` days added, the day wrapping within its month
 * (month and year never change), the time of day kept. */
- (nullable NSDate *)dateByAddingNumberOfDay:(int64_t)numberOfDay toDate:(nullable NSDate *)date;

@end

NS_ASSUME_NONNULL_END
