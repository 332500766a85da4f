#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/**
 * Constraints that pin an item inside a container. None of these methods
 * installs what it makes: add the constraints to the container or to a
 * common ancestor. All constraints are required, with relation Equal and
 * multiplier 1.
 */
@interface NSLayoutConstraint (container)

/** item.attribute = container.attribute × 1 + constant.
 * @param item The constrained item, usually a subview of `container`.
 * @param container The item it is pinned to.
 * @param attribute The same attribute on both sides (Left … FirstBaseline).
 * @param constant Added to the container's attribute.
 * @return The constraint, or nil when an item is nil or the attribute is not
 * a layout attribute. */
+ (nullable NSLayoutConstraint *)constraintWithItem:(id)item
                                        inContainer:(id)container
                                          attribute:(NSLayoutAttribute)attribute
                                           constant:(double)constant;

/** Pins the four edges of `item` inside `container`, `insets` away from
 * them.
 * @return Four constraints in this order: Top (+top), Bottom (-bottom),
 * Left (+left), Right (-right); empty when an item is nil. */
+ (NSArray<NSLayoutConstraint *> *)constraintsWithItem:(id)item
                                           inContainer:(id)container
                                            edgeInsets:(NSEdgeInsets)insets;

/** The four edge constraints of constraintsWithItem:inContainer:edgeInsets:
 * with all insets 0: `item` fills `container`. */
+ (NSArray<NSLayoutConstraint *> *)constraintsWithItem:(id)item fittedInContainer:(id)container;

@end

NS_ASSUME_NONNULL_END
