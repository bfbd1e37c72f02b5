// Whether the running system has what the host asks of it. A message that nobody understands is an
// exception at the moment it is sent, which may be rare; this finds them all at once.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "platform/Log.h"

namespace quillmont {

/// Methods of one class, separated by spaces: "-frame" is one of its instances, "+array" its own.
struct SystemInterface {
  const char* className;
  const char* methods;
};

/// Every class of the system that this host sends messages to, with the messages.
std::span<const SystemInterface> usedInterfaces();

/// Those of them that the running system lacks, as "NSSwitch" for a whole class and
/// "-[NSView addSubview:]" for a method.
std::vector<std::string> missingInterfaces(std::span<const SystemInterface> interfaces);

/// A line of the log for each used one that is missing, and one line to close. For debug builds, at
/// start; any thread.
void reportSelfCheck(Log& log);

}  // namespace quillmont
