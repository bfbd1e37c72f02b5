// The script of a notification: as somebody wrote it, and as it is made for a volume of any name.

#include <string>

#include "monitor/notification_script.h"
#include "platform/linux/tools/osascript/display_notification.h"
#include "platform/linux/tools/osascript/notification_service.h"
#include "platform/utf8.h"
#include "tests/fuzz/fuzzing.h"

namespace quillmont::testing {
namespace {

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) result += c == '"' ? std::string("\\\"") : std::string(1, c);
  return result + "\"";
}

void checkScript(std::string_view script) {
  const auto notification = parseDisplayNotification(script);
  if (!notification) return require(!notification.errorText().empty(), "a failure has a text");
  require(!isValidUtf8(script) || isValidUtf8(notification->message + notification->title),
          "text comes of text");
  require("display notification " + quoted(notification->message) + " with title " +
                  quoted(notification->title) + " sound name \"default\"" ==
              script,
          "a script says one thing, and one script says it");
}

void checkName(std::string_view name) {
  const auto notification = parseDisplayNotification(ejectionNotificationScript(name));
  require(static_cast<bool>(notification), "the script of an ejection is understood");
  require(notification->message == "DMG 映像 \"" + std::string(name) + "\" 因空闲已自动推出。",
          "a volume's name is shown as it is");
}

/// What a notification service makes of a body that it reads as markup.
std::string shown(std::string_view body) {
  std::string text;
  while (!body.empty()) {
    require(body.front() != '<' && body.front() != '>', "a body has no markup of the name's");
    const auto escape =
        body.front() == '&' ? body.substr(0, body.find(';') + 1) : body.substr(0, 1);
    text += escape == "&amp;"  ? '&'
            : escape == "&lt;" ? '<'
            : escape == "&gt;" ? '>'
                               : escape.front();
    require(escape.size() == 1 || escape == "&amp;" || escape == "&lt;" || escape == "&gt;",
            "escapes");
    body.remove_prefix(escape.size());
  }
  return text;
}

}  // namespace

void tryInput(std::string_view input) {
  checkScript(input);
  checkName(input);
  require(shown(notificationBody(std::string(input), true)) == input, "a body shows the message");
}

}  // namespace quillmont::testing
