#pragma once

#include <QFrame>

#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace fleetwise {

class FleetMonitor;
struct ArchiveEntry;

/// What is known of the selected session, below the list. Keeps its height.
class ArchivePreview final : public QFrame {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit ArchivePreview(FleetMonitor& givenMonitor);

    /// Null for none.
    void setEntry(const ArchiveEntry* entry);

signals:
    /// The session is to be resumed, or brought to the front where it runs.
    void activated();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void layOut();
    void adoptFont();
    QString facts(const ArchiveEntry& entry) const;

    FleetMonitor& monitor;
    QLabel* name;
    QPlainTextEdit* prompt;
    QLabel* details;
    QPushButton* activate;
};

}  // namespace fleetwise
