// The desktop's notification service: org.freedesktop.Notifications on the user's session bus
// (Desktop Notifications Specification 1.2).
#pragma once

#include <chrono>
#include <string>

#include "platform/Result.h"
#include "platform/linux/tools/osascript/display_notification.h"

namespace quillmont {

/// The text for the service's body, which is markup for some services and plain text for others.
std::string notificationBody(const std::string& message, bool serviceReadsMarkup);

/// Hands `notification` to the service, with the sound of a new message. Blocks until the service
/// has taken it, for `limit` at most. Never starts a bus: a session without one has nobody who
/// could show anything. Failure: no session bus, no service, or none that answers in time.
Result<void> deliverNotification(const Notification& notification, std::chrono::seconds limit);

}  // namespace quillmont
