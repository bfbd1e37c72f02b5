// The least that a program with a tray icon can be: Quillmont's costs are measured beside its.
//
// usage: quillmont_tray_control [--timer] [--starts NUMBER]
//   --timer   an empty timer fires every second
//   --starts  every five seconds, that many programs that do nothing are started one after another,
//             and the nothing that they print is read

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <QPixmap>
#include <QSystemTrayIcon>
#include <QTimer>

namespace {

void startBarely() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  char name[] = "true";
  char* const arguments[] = {name, nullptr};
  pid_t pid = 0;
  const int failure = posix_spawn(&pid, "/bin/true", &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  char answer = 0;
  while (read(ends[0], &answer, 1) > 0) continue;
  close(ends[0]);
  if (failure == 0) waitpid(pid, nullptr, 0);
}

}  // namespace

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  const auto arguments = QApplication::arguments();
  QPixmap square(22, 22);
  square.fill(Qt::gray);
  QSystemTrayIcon icon{QIcon(square)};
  icon.show();
  QTimer everySecond;
  everySecond.setTimerType(Qt::PreciseTimer);
  if (arguments.contains("--timer")) everySecond.start(1000);
  QTimer everyCycle;
  const auto option = arguments.indexOf("--starts");
  const int starts = option < 0 ? 0 : arguments.value(option + 1).toInt();
  QObject::connect(&everyCycle, &QTimer::timeout, [starts] {
    for (int number = 0; number < starts; ++number) startBarely();
  });
  if (starts > 0) everyCycle.start(5000);
  return QApplication::exec();
}
