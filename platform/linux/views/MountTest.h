// A mount on its own, for tests: views made by hand, and what the user did to them.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QEnterEvent>
#include <QTest>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/views/QtMount.h"
#include "tests/support/HandmadeViewsTest.h"

namespace quillmont::testing {

class MountTest : public HandmadeViewsTest {
 protected:
  MountTest() { mount->widget()->show(); }

  void apply(const std::vector<ViewChange>& changes) override { mount->apply(changes, kPanelSize); }

  QWidget* widget(ViewId id) { return mount->widgetOf(id); }
  template <class Widget>
  Widget* as(ViewId id) {
    return dynamic_cast<Widget*>(mount->widgetOf(id));
  }

  /// Everything that is due now happens; what is to be deleted goes.
  static void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
  }

  static void enter(QWidget* target) {
    const QPointF middle(target->rect().center());
    QEnterEvent event(middle, middle, target->mapToGlobal(middle));
    QCoreApplication::sendEvent(target, &event);
  }

  static void leave(QWidget* target) {
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(target, &event);
  }

  /// Where the mouse is pressed, it is the window that decides whom it is for.
  void clickAt(QPoint position) {
    auto* const window = mount->widget()->window();
    auto* const target = window->childAt(position);
    QTest::mouseClick(target ? target : window, Qt::LeftButton, {},
                      target ? target->mapFrom(window, position) : position);
  }

  std::unique_ptr<QtMount> mount = std::make_unique<QtMount>(actions);
};

}  // namespace quillmont::testing
