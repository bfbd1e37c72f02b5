// The session's message bus, taken as it is found.
#pragma once

#include <chrono>
#include <string>

namespace quillmont {

class Log;

/// Where no bus is named, the bus library would start one that nobody else knows and that stays
/// behind. This names the place where a session's bus is, whether there is one or not. For this
/// process and its children; before any other thread is there.
void keepFromStartingSessionBus();

/// The bus library ends a process that goes on waiting for an answer on a connection that has just
/// been lost, as the toolkit now and then does. This has it write a line instead, unless the user
/// has chosen; under the same conditions.
void outliveSessionBus();

/// A bus that takes connections and then says nothing would keep the toolkit waiting for ever.
/// After `patience` this process and its children go on without, which the log is told. To be
/// called behind the first one, under the same conditions.
void leaveSilentSessionBus(std::chrono::milliseconds patience, Log& log);

/// The address of the bus socket in `runtimeFolder`.
std::string busAddressIn(const std::string& runtimeFolder);

}  // namespace quillmont
