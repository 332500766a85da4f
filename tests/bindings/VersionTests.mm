#import <Talvo/Talvo.h>

#include <cstring>

#import "support/TestSupport.h"

TEST(Version, SymbolsHoldTheReleasedValues) {
  EXPECT_STREQ(reinterpret_cast<const char *>(TalvoVersionString),
               "@(#)PROGRAM:Talvo  PROJECT:TalvoFramework-1\n");
  EXPECT_EQ(TalvoVersionNumber, 1.0);
}
