#include "platform/linux/desktop/qt_messages.h"

#include <gtest/gtest.h>

namespace quillmont {
namespace {

TEST(QtMessages, ComplaintsAreLogged) {
  EXPECT_EQ(logLineOfQtMessage(QtWarningMsg, "The X11 connection broke"),
            "Qt: The X11 connection broke");
  EXPECT_EQ(logLineOfQtMessage(QtCriticalMsg, "磁盘"), "Qt: 磁盘");
  EXPECT_EQ(logLineOfQtMessage(QtFatalMsg, "no platform"), "Qt: no platform");
}

TEST(QtMessages, ChatterIsNot) {
  EXPECT_FALSE(logLineOfQtMessage(QtDebugMsg, "something"));
  EXPECT_FALSE(logLineOfQtMessage(QtInfoMsg, "something"));
}

TEST(QtMessages, WhatIsAsItShouldBeWithoutADisplayIsNot) {
  for (const char* message :
       {"QObject::connect: No such signal "
        "QPlatformNativeInterface::systemTrayWindowChanged(QScreen*)",
        "This plugin does not support raise()", "This plugin does not support propagateSizeHints()",
        "QStandardPaths: XDG_RUNTIME_DIR not set, defaulting to '/tmp/runtime-user'"}) {
    EXPECT_FALSE(logLineOfQtMessage(QtWarningMsg, message)) << message;
  }
}

}  // namespace
}  // namespace quillmont
