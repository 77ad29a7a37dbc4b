#pragma once

#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace fleetwise {

/// A part of the details under a small heading.
class DetailsSection final : public QWidget {
    Q_OBJECT

public:
    explicit DetailsSection(const QString& title, QWidget* parent = nullptr);

    /// A figure at the heading's right end; may be empty.
    void setNote(const QString& note);

    /// A control at the heading's right end.
    void addControl(QWidget* control);
    void add(QWidget* content);

protected:
    void changeEvent(QEvent* event) override;

private:
    void followFont();

    QLabel* heading;
    QLabel* figure;
    QVBoxLayout* rows;
};

}  // namespace fleetwise
