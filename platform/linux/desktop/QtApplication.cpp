#include "platform/linux/desktop/QtApplication.h"

#include <QEvent>
#include <QFont>
#include <chrono>
#include <cstdlib>

#include "platform/linux/desktop/display_platform.h"
#include "platform/linux/desktop/qt_messages.h"
#include "platform/linux/desktop/session_bus.h"
#include "platform/linux/views/text_lines.h"

namespace quillmont {
namespace {

constexpr std::chrono::seconds kBusPatience(10);

/// On X11 with more than one monitor Qt takes no notice of bars unless it is told to, and the panel
/// would lie over them.
void seeBarsOnSeveralMonitors() {
  setenv("QT_RELY_ON_NET_WORKAREA_ATOM", "1", 0);
}

}  // namespace

/// The session manager's wish. Qt would ask the windows first, of which a panel closes for nobody.
class QtApplication::QuitFilter : public QObject {
 public:
  explicit QuitFilter(QtApplication& application) : application_(application) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched != qApp || event->type() != QEvent::Quit) return false;
    application_.terminate();
    return true;
  }

 private:
  QtApplication& application_;
};

QtApplication::~QtApplication() = default;

QtApplication::QtApplication(EventLoop& loop, Log& log) : LinuxApplication(loop), log_(log) {
  sendQtMessagesTo(log);
  keepFromStartingSessionBus();
  outliveSessionBus();
  leaveSilentSessionBus(kBusPatience, log);
  seeBarsOnSeveralMonitors();
  const bool ownChoice = !qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
  arguments_.texts = {"Quillmont"};
  if (ownChoice) {
    arguments_.texts.insert(arguments_.texts.end(), {"-platform", qtPlatforms(findDisplays())});
  }
  for (auto& text : arguments_.texts) arguments_.pointers.push_back(text.data());
  arguments_.count = static_cast<int>(arguments_.pointers.size());
  arguments_.pointers.push_back(nullptr);

  QApplication::setApplicationName("Quillmont");
  QApplication::setDesktopFileName("quillmont");
  application_ = std::make_unique<QApplication>(arguments_.count, arguments_.pointers.data());
  QApplication::setQuitOnLastWindowClosed(false);
  quitFilter_ = std::make_unique<QuitFilter>(*this);
  qApp->installEventFilter(quitFilter_.get());
  QFont font = QApplication::font();
  font.setFamilies(fontFamilies());
  QApplication::setFont(font);
  hasNoDisplay_ = ownChoice && QGuiApplication::platformName() == "offscreen";

  notifier_ = std::make_unique<QSocketNotifier>(loop.descriptor(), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                   [&loop] { loop.dispatchPending(); });
}

/// When the X server dies, Qt ends the process from within its loop, and even then the delegate has
/// its say.
void QtApplication::serve() {
  if (hasNoDisplay_ && !isTerminating()) {
    log_.write("No display: watching disk images without a panel.");
  }
  static QtApplication* serving = nullptr;
  serving = this;
  std::atexit([] {
    if (serving) serving->finish();
  });
  if (!isTerminating()) QApplication::exec();
  serving = nullptr;
  finish();
  application_ = nullptr;
}

void QtApplication::finish() {
  terminate();
  qtWillEnd().send();
  notifier_ = nullptr;
}

Signal<>& qtWillEnd() {
  static Signal<> signal;
  return signal;
}

void QtApplication::stopServing() {
  notifier_->setEnabled(false);
  LinuxApplication::stopServing();
  QApplication::exit();
}

}  // namespace quillmont
