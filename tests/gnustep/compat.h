// What a Mac's frameworks have and GNUstep's lack. Comes before every Objective-C++ source of a
// GNUstep build; the sources themselves know nothing of it.
#pragma once

#include "tests/gnustep/compat_desktop.h"
#include "tests/gnustep/compat_foundation.h"
#include "tests/gnustep/compat_views.h"
