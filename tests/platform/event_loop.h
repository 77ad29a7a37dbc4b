#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

namespace fleetwise::testing {

/// Has Qt's event loop for a test of this thread.
class EventLoopTest : public ::testing::Test {
protected:
    /// Runs the loop until the condition holds; whether it did in time.
    template <typename Condition>
    bool waitUntil(Condition condition, int mostMilliseconds = 10'000) {
        QElapsedTimer timer;
        timer.start();
        while (!condition() && timer.elapsed() < mostMilliseconds)
            letPass(1);
        return condition();
    }

    /// Runs the loop for a while, where it is to be seen that something does not happen.
    void letPass(int milliseconds) {
        QEventLoop events;
        QTimer::singleShot(milliseconds, Qt::PreciseTimer, &events, &QEventLoop::quit);
        events.exec();
    }

private:
    int argumentCount = 1;
    char programName[6] = "tests";
    char* arguments[2] = {programName, nullptr};
    QCoreApplication application{argumentCount, arguments};
};

}  // namespace fleetwise::testing
