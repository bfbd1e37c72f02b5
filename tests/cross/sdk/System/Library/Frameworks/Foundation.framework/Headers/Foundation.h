// Foundation: as much of it as the macOS host calls. Selectors and types are the real ones, which
// a test compares with the published typings; everything else is left out.
#pragma once

#include <Foundation/basics.h>
#include <Foundation/collections.h>
#include <Foundation/services.h>
#include <Foundation/values.h>
