#include "platform/macos/library_folders.h"

#import <Foundation/Foundation.h>

namespace quillmont {

std::vector<std::string> libraryFolders() {
  @autoreleasepool {
    std::vector<std::string> folders;
    for (NSURL* folder in [[NSFileManager defaultManager] URLsForDirectory:NSLibraryDirectory
                                                                 inDomains:NSUserDomainMask]) {
      folders.emplace_back([[folder path] fileSystemRepresentation]);
    }
    return folders;
  }
}

}  // namespace quillmont
