// A question to the user that has to be answered before anything else.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillmont {

enum class AlertStyle { warning = 0, informational = 1, critical = 2 };

struct Alert {
  std::string messageText;
  std::string informativeText;
  AlertStyle style = AlertStyle::warning;
  std::vector<std::string> buttonTitles;  ///< the first one is the default
};

/// The answer of the first button; every further one answers one more.
inline constexpr std::int64_t kAlertFirstButtonReturn = 1000;

/// The answer of an alert that went without a button: the program is being ended, or it has none.
inline constexpr std::int64_t kAlertAborted = -1001;

}  // namespace quillmont
