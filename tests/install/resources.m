// An installed Talvo finds its own artwork: the framework bundle of any
// Talvo class holds the slider's images.
#import <Talvo/Talvo.h>

int main(void) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSBundle *bundle = [NSBundle bundleForClass:[VXCollectionIsEmpty class]];
  NSString *path = [bundle pathForImageResource:@"knobNormal"];
  NSImage *image = path != nil ? [[[NSImage alloc] initWithContentsOfFile:path] autorelease] : nil;
  int ok = bundle != [NSBundle mainBundle] && image != nil && [image size].width > 0 &&
           [bundle pathForImageResource:@"noSuchImage"] == nil;
  printf("%s %s\n", ok ? "resources ok" : "resources FAILED", path != nil ? [path UTF8String] : "(none)");
  [pool drain];
  return ok ? 0 : 1;
}
