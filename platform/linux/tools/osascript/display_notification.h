// The one sentence of the Mac's script language that this script runner understands.
#pragma once

#include <string>
#include <string_view>

#include "platform/Result.h"

namespace quillmont {

/// What the desktop is to show, as plain text.
struct Notification {
  std::string title;
  std::string message;
  bool operator==(const Notification&) const = default;
};

/// Reads `display notification "MESSAGE" with title "TITLE" sound name "default"`, spelled with
/// single spaces and nothing around it. In a string, a backslash directly before a double quote
/// makes the quote a part of the text; every other backslash is a backslash. So a volume name keeps
/// its backslashes without anybody having doubled them. Failure: what was expected, and where.
Result<Notification> parseDisplayNotification(std::string_view script);

}  // namespace quillmont
