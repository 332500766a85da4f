#import "support/TalvoLook.h"

#import <AppKit/AppKit.h>

#include <dispatch/dispatch.h>

#include <cmath>
#include <cstdlib>

#if __has_feature(objc_arc)
#error "Talvo is built with manual reference counting."
#endif

static double gTestingVersion = NAN;

static double EnvironmentOrPlatformVersion(void) {
  static double version = 0.0;
  static dispatch_once_t once;
  dispatch_once(&once, ^{
    version = NSAppKitVersionNumber;
    const char *text = getenv("TALVO_APPKIT_VERSION");
    if (text != NULL && *text != '\0') {
      char *end = NULL;
      double parsed = strtod(text, &end);
      // Text that is not wholly a number is ignored, not half-read.
      if (end != NULL && *end == '\0' && std::isfinite(parsed)) {
        version = parsed;
      }
    }
  });
  return version;
}

BOOL TalvoUsesNewerLook(void) {
  double version = std::isnan(gTestingVersion) ? EnvironmentOrPlatformVersion() : gTestingVersion;
  return std::floor(version) > 1265.0 ? YES : NO;
}

void TalvoSetAppKitVersionForTesting(double version) { gTestingVersion = version; }
