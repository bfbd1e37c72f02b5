// The list of attached images as the disk-image tool prints it.
#pragma once

#include <string>

#include "platform/PropertyList.h"
#include "platform/linux/ImageTable.h"

namespace quillmont {

/// A dictionary whose "images" is an array of dictionaries: "image-path", and "system-entities",
/// an array of dictionaries with "dev-entry" and, for a mounted volume, "mount-point".
PropertyList infoList(const ImageTable& table);

/// The same for people: the image's path, then a line a device.
std::string infoText(const ImageTable& table);

}  // namespace quillmont
