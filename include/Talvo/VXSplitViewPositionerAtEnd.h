#import <Talvo/VXSplitViewPositioner.h>

/** Pushes and pops panels at the trailing edge: the last view in layout,
 * the last view-stack constraint, the last position constraint. */
@interface VXSplitViewPositionerAtEnd : VXSplitViewPositioner
@end
