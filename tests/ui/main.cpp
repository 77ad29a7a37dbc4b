// The tests of the interface paint and open windows, which takes an application, but no display.

#include "support/temporary_directory.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argumentCount, char** arguments) {
    const fleetwise::testing::TemporaryDirectory home;
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, home.path().c_str());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argumentCount, arguments);
    const QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
