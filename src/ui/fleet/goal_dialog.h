#pragma once

#include "localisation/number_input.h"
#include "usage/own_goals.h"

#include <QDialog>

#include <cstdint>
#include <optional>
#include <string>

class QFormLayout;
class QLabel;
class QLineEdit;

namespace fleetwise {

class FleetMonitor;
struct GoalNumberKind;

/// Edits the user's own goal of a session: what it is, and the limits at which to be told. Each
/// field may be empty. A number is read in the form of the interface language; one that cannot be
/// read is refused beside its field, and nothing is stored.
class GoalDialog final : public QDialog {
    Q_OBJECT

public:
    /// The monitor outlives this.
    GoalDialog(FleetMonitor& monitor, std::string sessionId, QWidget* parent = nullptr);

    /// Stores what is filled in, where all of it can be read; an empty goal is removed.
    void accept() override;

private:
    struct NumberField {
        QLineEdit* edit = nullptr;
        QLabel* fault = nullptr;
    };
    /// A field's number in units of its last decimal; nothing in it for an empty field.
    using Number = tl::expected<std::optional<std::int64_t>, QString>;

    void layOut(const std::optional<OwnGoals::Entry>& entry);
    NumberField addNumber(QFormLayout& form, const GoalNumberKind& kind, const QString& value);
    QWidget* makeButtons(bool isSet);
    static Number read(const NumberField& field, const GoalNumberKind& kind);
    /// Shows the field's fault where it has one, and leaves `number` alone then.
    bool take(const NumberField& field, const GoalNumberKind& kind,
              std::optional<std::int64_t>& number);
    void remove();

    FleetMonitor& monitor;
    const std::string sessionId;
    QLineEdit* objective = nullptr;
    NumberField tokens;
    NumberField cost;
    NumberField share;
};

/// Opens the dialog over `parent`. Does not wait for it to close.
void openGoalDialog(FleetMonitor& monitor, const std::string& sessionId, QWidget* parent);

}  // namespace fleetwise
