#include "ui/onboarding/onboarding_window.h"

#include "monitor/fleet_monitor.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/onboarding/hook_page.h"
#include "ui/onboarding/reading_page.h"
#include "ui/onboarding/step_dots.h"
#include "ui/onboarding/tour_page.h"

#include <QBoxLayout>
#include <QFrame>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>

namespace fleetwise {

namespace {

constexpr int pageCount = 3;
constexpr int initialCharacters = 92;
constexpr int initialLines = 29;
constexpr double largestPart = 0.9;  ///< of the screen

}  // namespace

OnboardingWindow::OnboardingWindow(FleetMonitor& givenMonitor)
    : monitor(givenMonitor),
      pages(new QStackedWidget),
      dots(new StepDots(pageCount)),
      skipButton(new QPushButton(shown("Überspringen"_text))),
      backButton(new QPushButton(shown("Zurück"_text))),
      nextButton(new QPushButton) {
    setWindowTitle(shown("Willkommen bei Fleetwise"_text));
    setObjectName(QStringLiteral("onboarding"));
    addPage(new ReadingPage);
    addPage(new HookPage(monitor));
    addPage(new TourPage(monitor));
    layOut();
    addShortcuts();
    turnTo(0);
    const QSize wanted(initialCharacters * fontMetrics().averageCharWidth(),
                       initialLines * fontMetrics().lineSpacing());
    resize(wanted.boundedTo(screen()->availableSize() * largestPart));
}

bool OnboardingWindow::isWanted(const Settings& settings) {
    return settings.get(Settings::showIntroAtLaunch) &&
           !settings.get(Settings::didCompleteOnboarding);
}

void OnboardingWindow::bringUp() {
    if (!isVisible()) turnTo(0);
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void OnboardingWindow::done(int result) {
    monitor.store(Settings::didCompleteOnboarding, true);
    monitor.store(Settings::showIntroAtLaunch, false);
    QDialog::done(result);
}

void OnboardingWindow::addPage(OnboardingPage* page) {
    auto* area = new QScrollArea;
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setAccessibleName(page->title());
    page->setAutoFillBackground(true);
    page->setBackgroundRole(QPalette::Base);
    pages->addWidget(area);
}

void OnboardingWindow::layOut() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(pages, 1);
    layout->addWidget(makeFooter());
}

QWidget* OnboardingWindow::makeFooter() {
    auto* footer = new QWidget;
    auto* row = new QHBoxLayout(footer);
    row->setContentsMargins(2 * Metrics::groupGap, Metrics::margin, 2 * Metrics::groupGap,
                            Metrics::margin);
    row->setSpacing(Metrics::gap);
    row->addWidget(skipButton);
    row->addStretch(1);
    row->addWidget(dots);
    row->addStretch(1);
    row->addWidget(backButton);
    row->addWidget(nextButton);
    for (QPushButton* button : {skipButton, backButton, nextButton})
        button->setAutoDefault(false);
    nextButton->setDefault(true);
    // The others stay where they are when one of them has nothing to do.
    for (QPushButton* button : {skipButton, backButton}) {
        QSizePolicy policy = button->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        button->setSizePolicy(policy);
    }
    connect(skipButton, &QPushButton::clicked, this, &OnboardingWindow::reject);
    connect(backButton, &QPushButton::clicked, this, [this] { turnTo(currentPage() - 1); });
    connect(nextButton, &QPushButton::clicked, this, [this] {
        if (currentPage() + 1 < pageCount) return turnTo(currentPage() + 1);
        accept();
    });
    return footer;
}

void OnboardingWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, QPushButton* button) {
        connect(new QShortcut(keys, this), &QShortcut::activated, button, [button] {
            if (button->isVisible()) button->click();
        });
    };
    add(QKeySequence::Back, backButton);
    add(QKeySequence::Forward, nextButton);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this,
            &OnboardingWindow::reject);
}

int OnboardingWindow::currentPage() const {
    return pages->currentIndex();
}

void OnboardingWindow::turnTo(int page) {
    const bool isLast = page + 1 == pageCount;
    pages->setCurrentIndex(page);
    dots->setStep(page);
    nextButton->setText(isLast ? shown("Fertig"_text) : shown("Weiter"_text));
    // Before the button that had it is hidden.
    nextButton->setFocus();
    backButton->setVisible(page > 0);
    skipButton->setVisible(!isLast);
}

}  // namespace fleetwise
