#include "platform/posix/errors.h"

#include <system_error>

namespace quillmont {

std::string errorText(int errorNumber) {
  return std::generic_category().message(errorNumber);
}

Error systemError(std::string_view what, int errorNumber) {
  return Error{std::string(what) + ": " + errorText(errorNumber)};
}

}  // namespace quillmont
