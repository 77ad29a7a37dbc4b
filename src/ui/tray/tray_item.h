#pragma once

#include "ui/mark/mark_painter.h"

#include <QObject>
#include <QRect>
#include <QString>
#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>

class QMenu;

namespace fleetwise {

/// The mark in the tray, with its menu. A desktop may have no tray, start it after us or lose it:
/// every five seconds it is looked whether there is one. Main thread; needs a QApplication.
class TrayItem final : public QObject {
    Q_OBJECT

public:
    explicit TrayItem(QObject* parent = nullptr);
    ~TrayItem() override;

    /// Whether the mark can be seen, so that the program may run without a window.
    bool isAvailable() const { return isThere; }

    /// The mark is drawn anew only where something has changed.
    void setFigures(const MarkFigures& figures);
    void setToolTip(const QString& text);

    /// A message of the desktop beside the mark, for a while; only where the mark can be seen.
    void showMessage(const QString& title, const QString& text);

    /// `panel` is the desktop's appearance, which need not be the one of our windows.
    void setStyle(MarkStyle style, Appearance panel);

signals:
    /// The mark was clicked. `anchor` is where it is on the screen or, where the tray does not
    /// tell, the pointer's position without a size.
    void popoverWanted(const QRect& anchor);
    void windowWanted();
    void quitWanted();
    void messageClicked();
    void availabilityChanged();

private:
    void lookForTray();
    void react(QSystemTrayIcon::ActivationReason reason);
    void redraw();

    std::unique_ptr<QMenu> menu;
    QSystemTrayIcon icon;
    QTimer search;
    bool isThere = false;
    MarkFigures figures;
    MarkStyle style = MarkStyle::coloured;
    Appearance panel = Appearance::light;
};

}  // namespace fleetwise
