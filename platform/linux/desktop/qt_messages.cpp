#include "platform/linux/desktop/qt_messages.h"

#include <algorithm>
#include <array>
#include <atomic>

namespace quillmont {
namespace {

std::atomic<Log*> destination = nullptr;

/// Of a program that draws nowhere; of one without a runtime folder; of windows whose place the
/// compositor chooses.
constexpr std::array kHarmless = {
    "QPlatformNativeInterface::systemTrayWindowChanged",
    "This plugin does not support",
    "XDG_RUNTIME_DIR",
    "Wayland does not support",
};

void takeMessage(QtMsgType type, const QMessageLogContext&, const QString& message) {
  const auto line = logLineOfQtMessage(type, message);
  if (line) destination.load()->write(*line);
}

}  // namespace

void sendQtMessagesTo(Log& log) {
  destination = &log;
  qInstallMessageHandler(takeMessage);
}

std::optional<std::string> logLineOfQtMessage(QtMsgType type, const QString& message) {
  const bool chatter = type == QtDebugMsg || type == QtInfoMsg;
  const bool harmless = std::any_of(kHarmless.begin(), kHarmless.end(), [&](const char* part) {
    return message.contains(QLatin1String(part));
  });
  if (chatter || harmless) return std::nullopt;
  return "Qt: " + message.toStdString();
}

}  // namespace quillmont
