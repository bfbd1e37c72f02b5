// What Qt has to say, in the program's own log.
#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>
#include <string>

#include "platform/Log.h"

namespace quillmont {

/// From now on. `log` must outlive the process.
void sendQtMessagesTo(Log& log);

/// The line for a message; none for chatter, and for complaints about what is as it should be.
std::optional<std::string> logLineOfQtMessage(QtMsgType type, const QString& message);

}  // namespace quillmont
