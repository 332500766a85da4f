#import <Talvo/VXWindowIntrospection.h>

unsigned char VXIntrospectionDone = 0;
unsigned char VXIntrospectionDoneForBorderless = 0;
