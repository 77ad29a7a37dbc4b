#pragma once

#include <QDialog>

class QPushButton;
class QStackedWidget;

namespace fleetwise {

class FleetMonitor;
class OnboardingPage;
class Settings;
class StepDots;

/// The introduction for a new user, in three pages: what is read, what is written, what there is to
/// see. Once it is gone through, skipped or closed, it does not come by itself again.
class OnboardingWindow final : public QDialog {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit OnboardingWindow(FleetMonitor& monitor);

    /// Whether the program is to begin with it.
    static bool isWanted(const Settings& settings);

    /// Begins with the first page, unless it is open already.
    void bringUp();

    void done(int result) override;

private:
    void addPage(OnboardingPage* page);
    void layOut();
    QWidget* makeFooter();
    void addShortcuts();
    void turnTo(int page);
    int currentPage() const;

    FleetMonitor& monitor;
    QStackedWidget* pages;
    StepDots* dots;
    QPushButton* skipButton;
    QPushButton* backButton;
    QPushButton* nextButton;
};

}  // namespace fleetwise
