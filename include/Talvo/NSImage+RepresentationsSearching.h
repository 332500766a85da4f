#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/** Bits of the `selector` mask of bestRepresentationForSideSize:selector:. */
enum {
  /** A representation whose side is larger than asked may be chosen. */
  VXRepresentationAllowLarger = 1,
  /** A representation whose side is smaller than asked may be chosen, as
   * long as no larger one has been chosen. */
  VXRepresentationAllowSmaller = 2,
  /** Bitmaps whose pixel side is less than twice their point height are
   * eligible (under 2 pixels per point). */
  VXRepresentationStandardResolution = 4,
  /** Bitmaps whose pixel side is exactly twice their point side are
   * eligible. */
  VXRepresentationDoubleResolution = 8,
  /** Bitmaps whose pixel side is exactly three times their point side are
   * eligible. */
  VXRepresentationTripleResolution = 16,
};

@interface NSImage (representationsSearching)

/** The representation that best fits a side of `side`: the first eligible
 * one whose side (pixels for a bitmap, points otherwise; the larger of
 * width and height, truncated, compared as unsigned 32-bit values) equals
 * `side`; otherwise, with VXRepresentationAllowLarger, the one with the
 * smallest larger side; and only when no larger one was chosen, with
 * VXRepresentationAllowSmaller, the one with the largest smaller side. Ties
 * keep the first met.
 *
 * Bitmaps are eligible as the resolution bits of `mask` say; with both
 * VXRepresentationStandardResolution and VXRepresentationDoubleResolution
 * every bitmap is (triple resolution ones too), with none of the three
 * resolution bits no bitmap is. Other representations always are.
 *
 * @param side The side length asked for.
 * @param mask VXRepresentation… bits.
 * @return One of the receiver's representations, or nil when it has none or
 * none qualifies. */
- (nullable NSImageRep *)bestRepresentationForSideSize:(int32_t)side selector:(int32_t)mask;

@end

NS_ASSUME_NONNULL_END
