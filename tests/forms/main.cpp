#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" TRAMBLE_SOURCE "/tests/forms/screen.json");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
