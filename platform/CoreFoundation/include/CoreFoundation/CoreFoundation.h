// Talvo's Core Foundation stand-in: toll-free with Foundation (CFBase.h).
#ifndef TALVO_COREFOUNDATION_H
#define TALVO_COREFOUNDATION_H

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFData.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFNumber.h>
#include <CoreFoundation/CFString.h>
#include <CoreFoundation/CFURL.h>

#endif
