#pragma once

#include "ui/onboarding/onboarding_page.h"

namespace fleetwise {

/// What is read, and what leaves the machine.
class ReadingPage final : public OnboardingPage {
    Q_OBJECT

public:
    explicit ReadingPage(QWidget* parent = nullptr);
};

}  // namespace fleetwise
