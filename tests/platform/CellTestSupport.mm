#import "platform/CellTestSupport.h"

@implementation TVActionRecorder
- (void)act:(id)sender {
  _count++;
  if ([sender respondsToSelector:@selector(selectedSegment)]) {
    _selectedSegment = [sender selectedSegment];
  }
  if ([sender respondsToSelector:@selector(doubleValue)]) {
    _value = [sender doubleValue];
  }
}
@end
