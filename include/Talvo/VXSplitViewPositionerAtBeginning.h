#import <Talvo/VXSplitViewPositioner.h>

/** Pushes and pops panels at the leading edge: the first view in layout,
 * the first view-stack constraint, the first position constraint. */
@interface VXSplitViewPositionerAtBeginning : VXSplitViewPositioner
@end
