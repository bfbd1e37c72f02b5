// Reads the list of attached images that "hdiutil info -plist" prints.
#pragma once

#include <string>
#include <vector>

namespace quillmont {

class PropertyList;

/// One attached image with a volume below /Volumes/.
struct ScanEntry {
  std::string imagePath;
  std::string mountPoint;
  std::string devEntry;  ///< device node of the mounted volume, such as /dev/disk4s1
  bool operator==(const ScanEntry&) const = default;
};

/// The images in the tool's order: of each image file the first listing that has a volume below
/// /Volumes/, and of its volumes the first such one. A list of any other shape has no images.
///
/// The tool's list is a dictionary; "images" in it is an array of dictionaries with "image-path"
/// and "system-entities", an array of dictionaries with "dev-entry" and, for a mounted volume,
/// "mount-point". A value of the wrong type counts as absent.
std::vector<ScanEntry> readAttachedImages(const PropertyList& list);

}  // namespace quillmont
