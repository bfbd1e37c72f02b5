// AppKit: as much of it as the macOS host calls. Selectors and types are the real ones, which a
// test compares with the published typings; everything else is left out.
#pragma once

#include <AppKit/application.h>
#include <AppKit/controls.h>
#include <AppKit/drawing.h>
#include <AppKit/views.h>
#include <AppKit/testing.h>
#include <AppKit/windows.h>
