#include "ui/settings/settings_page.h"

#include "ui/base/theme.h"
#include "ui/settings/page_labels.h"
#include "ui/settings/switch_box.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

constexpr int mostCharactersPerLine = 84;
// Controls below each other are about as wide, and boxes of choices narrower where there is no
// room.
constexpr int choiceCharacters = 14;
constexpr int leastCharacters = 12;
constexpr int numberCharacters = 16;

void tintFault(QLabel* label) {
    if (label->parentWidget() == nullptr) return;
    QPalette colours = label->parentWidget()->palette();
    colours.setColor(QPalette::PlaceholderText, paletteOf(colours).attention);
    label->setPalette(colours);
}

/// `widget` and what it holds, as far as the wheel changes it.
QList<QWidget*> turningControls(QWidget* widget) {
    QList<QWidget*> all = widget->findChildren<QWidget*>();
    all.push_back(widget);
    all.removeIf([](const QWidget* control) {
        return qobject_cast<const QComboBox*>(control) == nullptr &&
               qobject_cast<const QAbstractSpinBox*>(control) == nullptr;
    });
    return all;
}

void setUsualWidth(QWidget* control) {
    const int character = control->fontMetrics().averageCharWidth();
    auto* choice = qobject_cast<QComboBox*>(control);
    if (choice != nullptr) choice->setMinimumContentsLength(choiceCharacters);
    control->setMinimumWidth(character * (choice != nullptr ? leastCharacters : numberCharacters));
}

/// The name and explanation of a switch, which a click on them turns over.
class SwitchText final : public QWidget {
public:
    SwitchText(QCheckBox& givenSwitch, const QString& text, const QString& explanation)
        : toggled(givenSwitch) {
        auto* lines = new QVBoxLayout(this);
        lines->setContentsMargins(0, 0, 0, 0);
        lines->setSpacing(0);
        lines->addWidget(makePageText(text));
        if (!explanation.isEmpty()) lines->addWidget(makePageNote(explanation));
    }

protected:
    void mousePressEvent(QMouseEvent* event) override { event->accept(); }
    void mouseReleaseEvent(QMouseEvent* event) override {
        if (rect().contains(event->position().toPoint())) toggled.click();
    }

private:
    QCheckBox& toggled;
};

}  // namespace

SettingsPage::SettingsPage(FleetMonitor& givenMonitor, QWidget* parent)
    : QWidget(parent), monitor(givenMonitor), rows(new QVBoxLayout) {
    auto* content = new QWidget;
    content->setLayout(rows);
    content->setMaximumWidth(fontMetrics().averageCharWidth() * mostCharactersPerLine);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(Metrics::gap);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2 * Metrics::margin, Metrics::groupGap, 2 * Metrics::margin,
                               2 * Metrics::margin);
    layout->addWidget(content, 1);
    // Takes what a wide window has more than the text can use.
    layout->addStretch(0);
}

void SettingsPage::refresh() {
    for (const auto& refresher : refreshers)
        refresher();
}

void SettingsPage::addHeading(const QString& text) {
    if (rows->count() > 0) rows->addSpacing(Metrics::groupGap);
    QLabel* heading = makePageText(text);
    heading->setFont(headingFont(heading->font()));
    rows->addWidget(heading);
}

QLabel* SettingsPage::addNote(const QString& text) {
    QLabel* note = makePageNote(text);
    note->setTextInteractionFlags(Qt::TextSelectableByMouse);
    rows->addWidget(note);
    return note;
}

void SettingsPage::addRow(const QString& name, QWidget* widget) {
    if (name.isEmpty()) return addWide(widget);
    QLabel* label = makePageText(name);
    label->setBuddy(widget);
    if (widget->accessibleName().isEmpty()) widget->setAccessibleName(name);
    auto* row = new QHBoxLayout;
    row->setSpacing(Metrics::groupGap);
    row->addWidget(label, 1);
    row->addWidget(widget);
    rows->addLayout(row);
    for (QWidget* control : turningControls(widget))
        setUsualWidth(control);
    keepFromWheel(widget);
}

void SettingsPage::addWide(QWidget* widget) {
    rows->addWidget(widget);
    keepFromWheel(widget);
}

void SettingsPage::addStretch() {
    rows->addStretch(1);
}

QCheckBox* SettingsPage::addPlainSwitch(const QString& text, const QString& explanation,
                                        QWidget* sign) {
    auto* box = new SwitchBox(text);
    box->setAccessibleDescription(explanation);
    auto* row = new QHBoxLayout;
    row->setSpacing(Metrics::groupGap);
    auto* words = new SwitchText(*box, text, explanation);
    if (sign != nullptr) {
        auto* start = new QHBoxLayout;
        start->setSpacing(Metrics::gap);
        start->addWidget(sign);
        start->addWidget(words, 1);
        row->addLayout(start, 1);
    } else {
        row->addWidget(words, 1);
    }
    row->addWidget(box);
    rows->addLayout(row);
    return box;
}

QCheckBox* SettingsPage::addSwitch(const QString& text, const Setting<bool>& setting,
                                   const QString& explanation) {
    QCheckBox* box = addPlainSwitch(text, explanation);
    connect(box, &QCheckBox::toggled, this,
            [this, &setting](bool isOn) { monitor.change(setting, isOn); });
    onRefresh([this, box, &setting] {
        const QSignalBlocker quiet(box);
        box->setChecked(monitor.settings().get(setting));
    });
    return box;
}

QPushButton* SettingsPage::addButton(const QString& text) {
    auto* button = new QPushButton(text);
    button->setAutoDefault(false);
    rows->addWidget(button, 0, Qt::AlignLeft);
    return button;
}

QComboBox* SettingsPage::makeChoice(const Setting<std::string_view>& setting,
                                    std::vector<Choice> choices) {
    auto* box = new QComboBox;
    for (const Choice& choice : choices)
        box->addItem(choice.text, QString::fromStdString(choice.value));
    connect(box, &QComboBox::activated, this, [this, box, &setting] {
        monitor.change(setting, box->currentData().toString().toStdString());
    });
    onRefresh([this, box, &setting] {
        const auto stored = QString::fromStdString(monitor.settings().get(setting));
        box->setCurrentIndex(std::max(0, box->findData(stored)));
    });
    return box;
}

QComboBox* SettingsPage::addChoice(const QString& name, const Setting<std::string_view>& setting,
                                   std::vector<Choice> choices) {
    QComboBox* box = makeChoice(setting, std::move(choices));
    addRow(name, box);
    return box;
}

QSpinBox* SettingsPage::addNumber(const QString& name, const Setting<std::int64_t>& setting,
                                  int least, int most, const QString& unit) {
    auto* box = new QSpinBox;
    box->setRange(least, most);
    box->setKeyboardTracking(false);
    box->setAlignment(Qt::AlignRight);
    if (!unit.isEmpty()) box->setSuffix(u' ' + unit);
    addRow(name, box);
    connect(box, &QSpinBox::valueChanged, this,
            [this, &setting](int value) { monitor.change(setting, value); });
    onRefresh([this, box, least, most, &setting] {
        const auto stored = std::clamp<std::int64_t>(monitor.settings().get(setting), least, most);
        // Setting even the same value would throw away what is being typed.
        if (stored == box->value()) return;
        const QSignalBlocker quiet(box);
        box->setValue(static_cast<int>(stored));
    });
    return box;
}

SettingsPage::Field SettingsPage::addField(const QString& name, const QString& placeholder) {
    const Field field{.edit = new QLineEdit, .fault = makeFault(), .row = new QWidget};
    field.edit->setPlaceholderText(placeholder);
    field.edit->setAccessibleName(name);
    auto* block = new QVBoxLayout(field.row);
    block->setContentsMargins(0, 0, 0, 0);
    block->setSpacing(Metrics::grid);
    if (!name.isEmpty()) {
        QLabel* label = makePageText(name);
        label->setBuddy(field.edit);
        block->addWidget(label);
    }
    block->addWidget(field.edit);
    block->addWidget(field.fault);
    rows->addWidget(field.row);
    return field;
}

QLabel* SettingsPage::makeFault() {
    QLabel* label = makePageNote();
    label->hide();
    // The colours may become others.
    onRefresh([label] { tintFault(label); });
    return label;
}

QLabel* SettingsPage::addFault() {
    QLabel* label = makeFault();
    rows->addWidget(label);
    return label;
}

void SettingsPage::setFault(QLabel* label, const QString& fault) {
    tintFault(label);
    label->setText(fault);
    label->setVisible(!fault.isEmpty());
}

void SettingsPage::setFault(const Field& field, const QString& fault) {
    setFault(field.fault, fault);
    field.edit->setAccessibleDescription(fault);
}

void SettingsPage::onRefresh(std::function<void()> action) {
    refreshers.push_back(std::move(action));
}

void SettingsPage::keepFromWheel(QWidget* widget) {
    for (QWidget* control : turningControls(widget)) {
        control->setFocusPolicy(Qt::StrongFocus);
        control->installEventFilter(this);
    }
}

bool SettingsPage::eventFilter(QObject* watched, QEvent* event) {
    const auto* control = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Wheel && control != nullptr && !control->hasFocus()) {
        event->ignore();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace fleetwise
