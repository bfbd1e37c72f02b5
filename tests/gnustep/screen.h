// What is on the screen, and a pointer to use it with. Questions are for the main thread, the
// pointer for any other.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>

namespace quillmont::testing {

using ViewTest = std::function<bool(NSView*)>;

/// The frontmost visible view for which `test` holds; nil without one.
NSView* viewOnScreen(const ViewTest& test);

ViewTest isStatusButton();
ViewTest hasHelp(const std::string& text);
ViewTest hasLabel(const std::string& text);  ///< what readers of the screen are told
ViewTest hasTitle(const std::string& text);  ///< of a button
ViewTest showsText(const std::string& text);
ViewTest isSegmented();

/// The middle of a view, or of one of `parts` of the same width, in the coordinates of X11.
struct Place {
  int x = 0, y = 0;
};
Place placeOf(NSView* view, int part = 0, int parts = 1);

void click(Place place);
void movePointer(Place place);

/// The name of a window to the X server.
unsigned long displayWindow(NSWindow* window);

/// Has that window take the keyboard, and presses a key.
void press(const std::string& key, unsigned long window);

/// How much green there is in the colour of one point, from 0 to 255.
int greenAt(Place place);

/// Saves the whole screen as `name`.png in the folder that QUILLMONT_PICTURES names; nothing
/// without that.
void takePicture(const std::string& name);

}  // namespace quillmont::testing
