// What there is a picture of.
#pragma once

#include <string>

namespace quillmont::testing {

/// Each writes its PNG files into `folder`, prints their paths, and throws when something of the
/// program does not show as it should. `withImages` is whether disk images can be attached.

/// empty, idle, in-use, excluded, hover, alert, hover-dark, dark, many; without images: empty,
/// alert, dark.
void takeUsualPictures(const std::string& folder, bool withImages);

/// Two pixels to a point: panel-light, 2x, gear-menu, panel-dark; without images: gear-menu.
void takeSharpPictures(const std::string& folder, bool withImages);

/// no-compositor
void takeOpaquePicture(const std::string& folder, bool withImages);

/// tray-bottom
void takeBottomPicture(const std::string& folder, bool withImages);

}  // namespace quillmont::testing
