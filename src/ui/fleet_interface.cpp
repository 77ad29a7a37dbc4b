#include "ui/fleet_interface.h"

#include "fleet/cost_texts.h"
#include "ui/cost_display.h"
#include "ui/interface_text.h"
#include "ui/mark_settings.h"
#include "ui/mark_tooltip.h"
#include "ui/theme.h"

#include <QApplication>
#include <QWindow>

#include <algorithm>

namespace fleetwise {

namespace {

bool canBeSeen(const QWidget* widget) {
    return widget->isVisible() && !widget->isMinimized() && widget->windowHandle() != nullptr &&
           widget->windowHandle()->isExposed();
}

bool isAnyWindowVisible() {
    return std::ranges::any_of(QApplication::topLevelWidgets(), canBeSeen);
}

}  // namespace

FleetInterface::FleetInterface(FleetMonitor& givenMonitor, QApplication& givenApplication)
    : monitor(givenMonitor),
      application(givenApplication),
      desktopPalette(QApplication::palette()),
      listModel(monitor, [this] { return monitor.groups(); }),
      glanceModel(monitor, [this] { return buildGlance(monitor.sessions()); }),
      window(monitor, listModel),
      popover(glanceModel, glanceDelegate) {
    glanceDelegate.setDensity(Density::comfortable);
    // A panel need not have the colours of the windows, and does not tell its own.
    tray.setStyle(MarkStyle::badge, Appearance::dark);
    connectTray();
    connectPopover();
    settingsChanged();
    fleetChanged();
    hookChanged();
    followTray();
    monitor.setVisibility(isAnyWindowVisible);
    monitor.addObserver(*this);
}

FleetInterface::~FleetInterface() {
    monitor.removeObserver(*this);
    monitor.setVisibility({});
}

void FleetInterface::start() {
    hasStarted = true;
    window.bringUp();
}

void FleetInterface::connectTray() {
    connect(&tray, &TrayItem::popoverWanted, &popover, &FleetPopover::toggle);
    connect(&tray, &TrayItem::windowWanted, &window, &FleetWindow::bringUp);
    // Not quit(), which any window can refuse by not closing.
    connect(&tray, &TrayItem::quitWanted, &application, [] { QApplication::exit(); });
    connect(&tray, &TrayItem::availabilityChanged, this, &FleetInterface::followTray);
}

void FleetInterface::connectPopover() {
    connect(&popover, &FleetPopover::windowWanted, &window, &FleetWindow::bringUp);
    connect(&popover, &FleetPopover::activated, this, [this](const QModelIndex& index) {
        if (glanceModel.row(index).kind == SessionRow::Kind::heading) {
            glanceModel.toggleFolded(index);
            popover.reveal(index);
            return;
        }
        const std::string id = glanceModel.row(index).key.toStdString();
        monitor.activate(id);
        // What stood in the way is told in the row.
        if (!monitor.notice(id)) popover.hide();
    });
}

void FleetInterface::followTray() {
    window.setClosing(tray.isAvailable() ? FleetWindow::Closing::hides
                                         : FleetWindow::Closing::minimises);
    // Without the mark the window is the only way in.
    if (!tray.isAvailable() && hasStarted && window.isHidden()) window.showMinimized();
}

void FleetInterface::settingsChanged() {
    applyAppearance();
    glanceDelegate.setAmounts(costDisplay(monitor.settings()).amounts());
    showMark();
    showToday();
}

void FleetInterface::applyAppearance() {
    const std::string mode = monitor.settings().get(Settings::appearanceMode);
    const QPalette wanted = applicationPalette(appearanceFor(mode, desktopPalette), desktopPalette);
    if (wanted != QApplication::palette()) QApplication::setPalette(wanted);
}

void FleetInterface::fleetChanged() {
    showMark();
    // The day may be another one.
    showToday();
}

void FleetInterface::showToday() {
    const CostDisplay display = costDisplay(monitor.settings());
    const CostFigures today = monitor.figuresOfToday();
    const std::string amount = costText(today.money(display.basis));
    if (display.extent == CostDisplay::Extent::nothing || amount.empty()) {
        popover.setCosts({}, {});
        return;
    }
    popover.setCosts(shown("Heute %@"_text, amount), qtText(costExplanation(today, display.basis)));
}

void FleetInterface::showMark() {
    const auto working = static_cast<int>(monitor.workingCount());
    const auto attention = static_cast<int>(monitor.attentionCount());
    MarkFigures figures;
    figures.working = working;
    figures.needsAttention = attention > 0;
    figures = shownFigures(std::move(figures), markChoices(monitor.settings()));
    tray.setFigures(figures);
    tray.setToolTip(qtText(markTooltip({.working = working, .attention = attention})));
    if (figures == shownMark && !window.windowIcon().isNull()) return;
    shownMark = figures;
    window.setWindowIcon(markIcon(figures, MarkStyle::badge, Appearance::dark));
}

void FleetInterface::hookChanged() {
    popover.setHint(monitor.hookState() == FleetMonitor::HookState::missing
                        ? FleetHint::installHook
                        : FleetHint::startAgent);
}

}  // namespace fleetwise
