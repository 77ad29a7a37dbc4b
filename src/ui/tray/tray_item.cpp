#include "ui/tray/tray_item.h"

#include "ui/base/interface_text.h"

#include <QCursor>
#include <QMenu>

#include <chrono>

namespace fleetwise {

namespace {

constexpr std::chrono::seconds searchInterval(5);

}  // namespace

TrayItem::TrayItem(QObject* parent) : QObject(parent), menu(std::make_unique<QMenu>()) {
    menu->addAction(shown("Fenster öffnen"_text), this, &TrayItem::windowWanted);
    menu->addSeparator();
    menu->addAction(shown("Beenden"_text), this, &TrayItem::quitWanted);
    icon.setContextMenu(menu.get());
    connect(&icon, &QSystemTrayIcon::activated, this, &TrayItem::react);
    connect(&icon, &QSystemTrayIcon::messageClicked, this, &TrayItem::messageClicked);
    redraw();
    search.setTimerType(Qt::VeryCoarseTimer);
    connect(&search, &QTimer::timeout, this, &TrayItem::lookForTray);
    search.start(searchInterval);
    lookForTray();
}

TrayItem::~TrayItem() = default;

void TrayItem::setFigures(const MarkFigures& newFigures) {
    if (newFigures == figures) return;
    figures = newFigures;
    redraw();
}

void TrayItem::setToolTip(const QString& text) {
    if (text != icon.toolTip()) icon.setToolTip(text);
}

void TrayItem::showMessage(const QString& title, const QString& text) {
    icon.showMessage(title, text, icon.icon());
}

void TrayItem::setStyle(MarkStyle newStyle, Appearance newPanel) {
    if (newStyle == style && newPanel == panel) return;
    style = newStyle;
    panel = newPanel;
    redraw();
}

void TrayItem::lookForTray() {
    const bool isThereNow = QSystemTrayIcon::isSystemTrayAvailable();
    if (isThereNow == isThere) return;
    isThere = isThereNow;
    icon.setVisible(isThere);
    emit availabilityChanged();
}

void TrayItem::react(QSystemTrayIcon::ActivationReason reason) {
    if (reason == QSystemTrayIcon::MiddleClick) emit windowWanted();
    if (reason != QSystemTrayIcon::Trigger) return;
    const QRect place = icon.geometry();
    emit popoverWanted(place.isEmpty() ? QRect(QCursor::pos(), QSize(0, 0)) : place);
}

void TrayItem::redraw() {
    icon.setIcon(markIcon(figures, style, panel));
}

}  // namespace fleetwise
