// The one place Talvo decides between its two looks.
//
// The newer look is used when the floor of the AppKit version is above
// 1265.0. The version is NSAppKitVersionNumber, unless the environment
// variable TALVO_APPKIT_VERSION holds a number: then that number, so that
// the gallery and the tests can run either look on any AppKit (GNUstep
// reports 824). The variable is read once, at the first call.
//
// Code that makes a shared object asks once, when it makes it.
#pragma once

#import <Foundation/Foundation.h>
#import <Talvo/TalvoExport.h>

/** Whether Talvo draws its newer look. Main thread. */
TALVO_EXTERN BOOL TalvoUsesNewerLook(void);

/** Test hook: the AppKit version that TalvoUsesNewerLook judges from now
 * on; NAN goes back to the environment's or the platform's. */
TALVO_EXTERN void TalvoSetAppKitVersionForTesting(double version);
