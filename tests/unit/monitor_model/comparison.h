// The real monitor and the model, side by side through one history.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "tests/unit/monitor_model/History.h"

namespace quillmont::testing {

/// How often something was seen in the model, by the beginning of what was written down.
using Tally = std::map<std::string, int>;

/// Runs both, comparing all that they did and where they stand after every step. What the model
/// did is added to `tally`, if there is one. Nothing when they agree, else the first difference.
std::optional<std::string> differenceIn(const History& history, Tally* tally = nullptr);

/// The history without those of its steps that the difference can do without.
History shortened(History history);

/// Every step of the history and the difference that it ends in.
std::string report(const History& history);

}  // namespace quillmont::testing
