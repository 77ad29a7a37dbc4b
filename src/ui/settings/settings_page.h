#pragma once

#include "monitor/fleet_monitor.h"
#include "monitor/settings.h"

#include <QString>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QVBoxLayout;

namespace fleetwise {

/// One page of the settings window: rows below each other, in groups with headings. Each change
/// acts at once. The controls follow the settings, whoever changes them.
class SettingsPage : public QWidget {
    Q_OBJECT

public:
    /// The monitor outlives this.
    explicit SettingsPage(FleetMonitor& monitor, QWidget* parent = nullptr);

    virtual QString name() const = 0;

    /// Brings all up to date. The window calls it when the page comes into view, and while it can
    /// be seen whenever a setting, the hook or the costs change and once a second.
    virtual void refresh();

protected:
    struct Choice {
        QString text;
        std::string value;
    };
    struct Field {
        QLineEdit* edit = nullptr;
        QLabel* fault = nullptr;  ///< below the field; see setFault
        QWidget* row = nullptr;   ///< all of it, with its name
    };

    /// Begins a group of rows.
    void addHeading(const QString& text);
    /// A secondary text of several lines; returns its label.
    QLabel* addNote(const QString& text);
    /// A row of the caller's; `name` may be empty, which lets the widget have the whole width.
    void addRow(const QString& name, QWidget* widget);
    void addWide(QWidget* widget);
    void addStretch();

    // Controls of one setting. They store with FleetMonitor::change.
    QCheckBox* addSwitch(const QString& text, const Setting<bool>& setting,
                         const QString& explanation = {});
    QComboBox* addChoice(const QString& name, const Setting<std::string_view>& setting,
                         std::vector<Choice> choices);
    QSpinBox* addNumber(const QString& name, const Setting<std::int64_t>& setting, int least,
                        int most, const QString& unit);

    /// A switch that stores nothing by itself. `sign` stands before its text, where there is one.
    QCheckBox* addPlainSwitch(const QString& text, const QString& explanation = {},
                              QWidget* sign = nullptr);
    /// As addChoice, to be put somewhere else.
    QComboBox* makeChoice(const Setting<std::string_view>& setting, std::vector<Choice> choices);
    /// A button at the left, no wider than its text.
    QPushButton* addButton(const QString& text);

    /// A text field with a place for what is wrong with its contents.
    Field addField(const QString& name, const QString& placeholder = {});
    /// Shows why the contents are refused, to the eye and to screen readers; empty: nothing is.
    static void setFault(const Field& field, const QString& fault);
    /// A place for what went wrong, hidden while that is nothing.
    QLabel* addFault();
    static void setFault(QLabel* label, const QString& fault);

    /// Called by refresh(), in order: for controls that no helper here makes.
    void onRefresh(std::function<void()> action);

    /// Scrolling over a control that turns with the wheel must not change what it says. Done for
    /// all that is added as a row.
    void keepFromWheel(QWidget* widget);

    bool eventFilter(QObject* watched, QEvent* event) override;

    FleetMonitor& monitor;

private:
    QLabel* makeFault();

    QVBoxLayout* rows;
    std::vector<std::function<void()>> refreshers;
};

}  // namespace fleetwise
