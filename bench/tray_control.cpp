// The least that a program with a tray icon can be: Quillmont's costs are measured beside its.
//
// usage: quillmont_tray_control [--timer]   with an empty timer that fires every second

#include <QApplication>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>
#include <cstring>

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  QPixmap square(22, 22);
  square.fill(Qt::gray);
  QSystemTrayIcon icon{QIcon(square)};
  icon.show();
  QTimer timer;
  if (argc > 1 && std::strcmp(argv[1], "--timer") == 0) {
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(1000);
  }
  return QApplication::exec();
}
