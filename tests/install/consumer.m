// An application that links Talvo the way any application would.
#import <Talvo/Talvo.h>

int main(void) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSArray *letters = [NSArray arrayWithObjects:@"a", @"b", @"c", @"b", nil];
  NSIndexSet *found = [letters indexesOfObjects:[NSArray arrayWithObject:@"b"]];
  id empty = [[[VXCollectionIsEmpty alloc] init] autorelease];
  int ok = [found count] == 2 && [[empty transformedValue:letters] intValue] == 0 &&
           TalvoVersionNumber == 1.0;
  printf("%s\n", ok ? "consumer ok" : "consumer FAILED");
  [pool drain];
  return ok ? 0 : 1;
}
