#include "monitor/notification_script.h"

namespace quillmont {
namespace {

/// `text` as a string of the script language.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char character : text) {
    if (character == '"') result += '\\';
    result += character;
  }
  return result += '"';
}

}  // namespace

std::string ejectionNotificationScript(std::string_view volumeName) {
  const auto message = "DMG 映像 \"" + std::string(volumeName) + "\" 因空闲已自动推出。";
  return "display notification " + quoted(message) + " with title " + quoted("磁盘已安全推出") +
         " sound name " + quoted("default");
}

}  // namespace quillmont
