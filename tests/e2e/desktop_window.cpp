// A plain program with a window, a few controls and a status item, for the laboratory's own test.
// What is done to it is a line on its output.

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPixmap>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>
#include <iostream>
#include <string>

namespace {

void say(const std::string& text) {
  std::cout << text << std::endl;
}

void addStatusItem(QApplication& application) {
  QPixmap image(22, 22);
  image.fill(QColor(200, 30, 30));
  auto* const item = new QSystemTrayIcon(QIcon(image), &application);
  QObject::connect(item, &QSystemTrayIcon::activated, [] { say("item clicked"); });
  item->show();
}

}  // namespace

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  QWidget window;
  window.setWindowTitle("实验 window");
  QPalette palette = window.palette();
  palette.setColor(QPalette::Window, QColor(10, 120, 40));
  window.setPalette(palette);
  auto* const column = new QVBoxLayout(&window);
  auto* const label = new QLabel("已空闲 00:05");
  auto* const check = new QCheckBox("登录时启动");
  auto* const button = new QPushButton("Press me");
  auto* const line = new QLineEdit;
  line->setAccessibleName("Words");
  auto* const hidden = new QLabel("Nobody sees this");
  for (QWidget* const part :
       {static_cast<QWidget*>(label), static_cast<QWidget*>(check), static_cast<QWidget*>(button),
        static_cast<QWidget*>(line), static_cast<QWidget*>(hidden)}) {
    column->addWidget(part);
  }
  hidden->hide();
  QObject::connect(button, &QPushButton::clicked, [label] {
    label->setText("Pressed");
    say("pressed");
  });
  QObject::connect(line, &QLineEdit::returnPressed,
                   [line] { say("words: " + line->text().toStdString()); });
  window.resize(300, 200);
  window.show();
  addStatusItem(application);
  return application.exec();
}
