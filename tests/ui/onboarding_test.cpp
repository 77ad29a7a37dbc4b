// The introduction as a new user meets it.

#include "monitor/virtual_fleet.h"
#include "ui/onboarding/onboarding_window.h"
#include "ui/onboarding/step_dots.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <vector>

namespace fleetwise::testing {
namespace {

class OnboardingTest : public ::testing::Test, protected VirtualFleet {
protected:
    void open() {
        window.bringUp();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    void press(Qt::Key key) { QTest::keyClick(&window, key); }
    QString step() { return window.findChild<StepDots*>()->accessibleName(); }
    bool shows(const QString& text) const {
        const auto labels = window.findChildren<QLabel*>();
        return std::ranges::any_of(labels, [&](const QLabel* label) {
            return label->isVisible() && label->text().contains(text);
        });
    }
    QPushButton& button(const QString& text) {
        const auto buttons = window.findChildren<QPushButton*>();
        return **std::ranges::find(buttons, text, &QPushButton::text);
    }

    OnboardingWindow window{monitor};
};

TEST_F(OnboardingTest, isGoneThroughOnceByTheKeyboard) {
    begin({session("a", SessionState::working), session("b", SessionState::working),
           session("c", SessionState::idle), session("z", SessionState::dormant)});
    EXPECT_TRUE(OnboardingWindow::isWanted(settings));
    const QSignalSpy finished(&window, &OnboardingWindow::finished);
    open();
    EXPECT_TRUE(shows("~/.codex"));
    press(Qt::Key_Return);
    EXPECT_EQ(step(), "Seite 2 von 3");
    QTest::keyClick(&window, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(step(), "Seite 1 von 3");
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    EXPECT_TRUE(shows("Gerade läuft: Arbeitet 2 · Bereit 1"));
    EXPECT_TRUE(OnboardingWindow::isWanted(settings));
    press(Qt::Key_Return);
    EXPECT_EQ(finished.size(), 1);
    EXPECT_FALSE(window.isVisible());
    EXPECT_FALSE(OnboardingWindow::isWanted(settings));

    window.bringUp();
    EXPECT_EQ(step(), "Seite 1 von 3");
}

TEST_F(OnboardingTest, canBeLeftOut) {
    const std::vector<std::function<void()>> ways{
        [this] { press(Qt::Key_Escape); },
        [this] { button("Überspringen").click(); },
        [this] { window.close(); },
    };
    for (const auto& leave : ways) {
        settings.set(Settings::didCompleteOnboarding, false);
        settings.set(Settings::showIntroAtLaunch, true);
        const QSignalSpy finished(&window, &OnboardingWindow::finished);
        open();
        leave();
        EXPECT_EQ(finished.size(), 1);
        EXPECT_FALSE(OnboardingWindow::isWanted(settings));
    }
}

TEST_F(OnboardingTest, installsTheHookOnlyAfterAYes) {
    open();
    press(Qt::Key_Return);
    EXPECT_FALSE(button("Einrichten").isEnabled());
    begin({});
    EXPECT_TRUE(shows(QString::fromStdString(home.at("settings.json"))));
    ASSERT_TRUE(button("Einrichten").isEnabled());

    home.write("state", "no folder");
    button("Einrichten").click();
    EXPECT_TRUE(shows("Wird eingerichtet"));
    finishAll();
    EXPECT_TRUE(shows("nicht eingerichtet: "));

    std::filesystem::remove(home.at("state"));
    button("Einrichten").click();
    finishAll();
    EXPECT_TRUE(shows("Der Hook ist eingerichtet."));
    EXPECT_FALSE(button("Einrichten").isVisible());
}

TEST_F(OnboardingTest, holdsLargeTextsWithoutCuttingThem) {
    QFont large = window.font();
    large.setPointSizeF(2 * large.pointSizeF());
    window.setFont(large);
    open();
    for (int page = 0; page < 3; ++page) {
        QCoreApplication::processEvents();
        for (const QLabel* label : window.findChildren<QLabel*>()) {
            if (!label->isVisible() || !label->wordWrap()) continue;
            EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                << label->text().toStdString();
        }
        press(Qt::Key_Return);
    }
}

}  // namespace
}  // namespace fleetwise::testing
