#pragma once

#include <QButtonGroup>
#include <QStringList>
#include <QWidget>

namespace fleetwise {

/// A row of chips of which one is always chosen, the first at the beginning. Wraps where it is
/// narrow.
class ChipChoice final : public QWidget {
    Q_OBJECT

public:
    /// `subject` is for screen readers: what is chosen.
    ChipChoice(const QString& subject, const QStringList& names, QWidget* parent = nullptr);

    int chosen() const { return group.checkedId(); }
    void choose(int index);

signals:
    /// The user chose another.
    void changed();

private:
    QButtonGroup group;
};

}  // namespace fleetwise
