// The session's message bus, taken as it is found.
#pragma once

#include <string>

namespace quillmont {

/// Where no bus is named, the bus library would start one that nobody else knows and that stays
/// behind. This names the place where a session's bus is, whether there is one or not. For this
/// process and its children; before any other thread is there.
void keepFromStartingSessionBus();

/// The address of the bus socket in `runtimeFolder`.
std::string busAddressIn(const std::string& runtimeFolder);

}  // namespace quillmont
