// Manual reference counting helpers for Talvo's Objective-C++ sources.
#pragma once

// Sets an ivar to nil before releasing the old object, so that code the
// release reaches (a dealloc that calls back into its owner, say) never sees
// a freed object.
template <typename T>
inline void TalvoDestroy(T &ivar) {
  T old = ivar;
  ivar = nil;
  [old release];
}
