#import <Talvo/VXLocalizer.h>

#import "support/TestSupport.h"

namespace {

class Localizer : public PooledTest {};

TEST_F(Localizer, UntranslatedKeysAnswerThemselvesAndFilenameIsJustAKey) {
  Owned<VXLocalizer> localizer([VXLocalizer new]);
  [localizer.get() setFilename:@"Main"];
  EXPECT_NSEQ([localizer.get() filename], @"Main");
  EXPECT_NSEQ([localizer.get() valueForKey:@"Open Recent"], @"Open Recent");
  EXPECT_NSEQ([localizer.get() valueForKey:@"filename"], @"filename");
  EXPECT_NSEQ([localizer.get() valueForKeyPath:@"Save"], @"Save");
}

TEST_F(Localizer, ObserverRegistrationsAreAcceptedAndIgnored) {
  Owned<VXLocalizer> localizer([VXLocalizer new]);
  NSObject *observer = [[NSObject new] autorelease];
  [localizer.get() addObserver:observer forKeyPath:@"Title" options:NSKeyValueObservingOptionNew context:NULL];
  EXPECT_EQ([localizer.get() observationInfo], (void *)NULL);
  [localizer.get() removeObserver:observer forKeyPath:@"Title"];
  [localizer.get() removeObserver:observer forKeyPath:@"Never" context:NULL];
  [localizer.get() awakeFromNib];
}

}  // namespace
