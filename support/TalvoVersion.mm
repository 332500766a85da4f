#import <Talvo/Talvo.h>

const unsigned char TalvoVersionString[] = "@(#)PROGRAM:Talvo  PROJECT:TalvoFramework-1\n";
const double TalvoVersionNumber = 1.0;
