// Entry of tests of widgets: drawn nowhere, and apart from the desktop that the tests run on.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <QApplication>

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
  ::testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
