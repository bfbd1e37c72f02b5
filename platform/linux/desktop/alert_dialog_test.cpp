#include "platform/linux/desktop/alert_dialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace quillmont {
namespace {

const Alert kQuestion = {"Really?", "All of it goes.", AlertStyle::warning, {"Go", "取消", "Wait"}};

/// Runs the alert and does `action` to its window as soon as that is open.
std::int64_t answered(const Alert& alert, const std::function<void(QWidget&)>& action) {
  QTimer::singleShot(0, qApp, [&] { action(*QApplication::activeModalWidget()); });
  return runAlertDialog(alert, {});
}

QList<QPushButton*> buttonsFromTheLeft(QWidget& window) {
  auto buttons = window.findChildren<QPushButton*>();
  std::sort(buttons.begin(), buttons.end(),
            [](const QPushButton* a, const QPushButton* b) { return a->x() < b->x(); });
  return buttons;
}

void press(QWidget& window, int key) {
  QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
  QApplication::sendEvent(&window, &event);
}

TEST(AlertDialog, EachButtonHasItsAnswer) {
  for (int index = 0; index < 3; ++index) {
    EXPECT_EQ(answered(kQuestion, [&](QWidget& w) { buttonsFromTheLeft(w)[index]->click(); }),
              1000 + index);
  }
}

TEST(AlertDialog, ShowsItsTextsAsTheyAre) {
  Alert alert = kQuestion;
  alert.messageText = "<b>名字</b>";
  answered(alert, [](QWidget& window) {
    std::vector<std::string> texts;
    for (const auto* label : window.findChildren<QLabel*>()) {
      if (label->text().isEmpty()) continue;
      EXPECT_EQ(label->textFormat(), Qt::PlainText);
      texts.push_back(label->text().toStdString());
    }
    EXPECT_THAT(texts, ::testing::UnorderedElementsAre("<b>名字</b>", "All of it goes."));
    EXPECT_EQ(buttonsFromTheLeft(window)[1]->text().toStdString(), "取消");
    window.close();
  });
}

TEST(AlertDialog, ReturnPressesTheFirstButton) {
  EXPECT_EQ(answered(kQuestion, [](QWidget& window) { press(window, Qt::Key_Return); }), 1000);
}

TEST(AlertDialog, ReturnPressesTheButtonThatTabHasGoneTo) {
  EXPECT_EQ(answered(kQuestion,
                     [](QWidget& window) {
                       auto* const cancel = buttonsFromTheLeft(window).at(1);
                       cancel->setFocus(Qt::TabFocusReason);
                       press(*cancel, Qt::Key_Return);
                     }),
            1001);
}

TEST(AlertDialog, EscapeAndTheCloseButtonCancel) {
  EXPECT_EQ(answered(kQuestion, [](QWidget& window) { press(window, Qt::Key_Escape); }), 1001);
  EXPECT_EQ(answered(kQuestion, [](QWidget& window) { window.close(); }), 1001);
}

TEST(AlertDialog, WithoutACancellingButtonTheyAnswerForTheLast) {
  Alert alert = kQuestion;
  alert.buttonTitles = {"Go", "Stay"};
  EXPECT_EQ(answered(alert, [](QWidget& window) { press(window, Qt::Key_Escape); }), 1001);
}

TEST(AlertDialog, WithoutAnyButtonItCanStillBeClosed) {
  Alert alert = kQuestion;
  alert.buttonTitles = {};
  EXPECT_EQ(answered(alert, [](QWidget& window) { window.close(); }), kAlertAborted);
}

TEST(AlertDialog, TellsReadersOfTheScreenWhatItAsks) {
  answered(kQuestion, [](QWidget& window) {
    EXPECT_EQ(window.accessibleName().toStdString(), "Really?");
    EXPECT_EQ(window.accessibleDescription().toStdString(), "All of it goes.");
    window.close();
  });
}

TEST(AlertDialog, StandsInTheMiddleInFrontOfOtherWindows) {
  answered(kQuestion, [](QWidget& window) {
    EXPECT_TRUE(window.windowFlags() & Qt::WindowStaysOnTopHint);
    const auto distance =
        window.geometry().center() - window.screen()->availableGeometry().center();
    EXPECT_LE(distance.manhattanLength(), 40);
    window.close();
  });
}

}  // namespace
}  // namespace quillmont
