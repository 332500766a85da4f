/*
 * A short list of CGFloat values: a point, a rectangle (x, y, width,
 * height) or filter parameters.
 *
 * Not covered: vectors from strings and their string representation,
 * CGAffineTransform vectors, archiving.
 */
#ifndef TALVO_CIVECTOR_H
#define TALVO_CIVECTOR_H

#import <CoreImage/CIBase.h>

NS_ASSUME_NONNULL_BEGIN

@interface CIVector : NSObject <NSCopying> {
  CGFloat *_values;
  size_t _count;
}

/** A NULL `values` gives a vector of `count` zeros. */
+ (instancetype)vectorWithValues:(nullable const CGFloat *)values count:(size_t)count;
+ (instancetype)vectorWithX:(CGFloat)x;
+ (instancetype)vectorWithX:(CGFloat)x Y:(CGFloat)y;
+ (instancetype)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z;
+ (instancetype)vectorWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w;
+ (instancetype)vectorWithCGPoint:(CGPoint)point;
/** (x, y, width, height). */
+ (instancetype)vectorWithCGRect:(CGRect)rect;

/** A NULL `values` gives a vector of `count` zeros. */
- (instancetype)initWithValues:(nullable const CGFloat *)values count:(size_t)count;
- (instancetype)initWithX:(CGFloat)x Y:(CGFloat)y Z:(CGFloat)z W:(CGFloat)w;

@property(nonatomic, readonly) size_t count;
/** 0 for an index at or beyond `count`. */
- (CGFloat)valueAtIndex:(size_t)index;
@property(nonatomic, readonly) CGFloat X;
@property(nonatomic, readonly) CGFloat Y;
@property(nonatomic, readonly) CGFloat Z;
@property(nonatomic, readonly) CGFloat W;
@property(nonatomic, readonly) CGPoint CGPointValue;
@property(nonatomic, readonly) CGRect CGRectValue;

@end

NS_ASSUME_NONNULL_END

#endif
