// The script runner: shows a notification.

#include <chrono>
#include <iostream>
#include <string_view>

#include "platform/linux/tools/osascript/display_notification.h"
#include "platform/linux/tools/osascript/notification_service.h"

namespace {

int fail(int status, std::string_view line) {
  std::cerr << line << '\n';
  return status;
}

}  // namespace

int main(int argc, char* argv[]) {
  constexpr auto kPatience = std::chrono::seconds(10);
  if (argc != 3 || std::string_view(argv[1]) != "-e")
    return fail(2, "usage: osascript -e <script>");
  const auto notification = quillmont::parseDisplayNotification(argv[2]);
  if (!notification) return fail(1, notification.errorText());
  const auto delivered = quillmont::deliverNotification(*notification, kPatience);
  if (!delivered) return fail(1, "osascript: " + delivered.errorText());
  return 0;
}
