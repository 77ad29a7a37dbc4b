#include "ui/fleet/goal_dialog.h"

#include "fleet/goal_texts.h"
#include "localisation/number_format.h"
#include "monitor/fleet_monitor.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <cmath>
#include <utility>

namespace fleetwise {

/// What a field asks for. Bound and example are in units of its last decimal.
struct GoalNumberKind {
    Text name;
    Text unit;
    int decimals = 0;
    std::int64_t most = 0;
    std::int64_t example = 0;
};

namespace {

constexpr GoalNumberKind tokenKind{"Budget"_text, "Tokens"_text, 0, 1'000'000'000'000'000, 200'000};
constexpr GoalNumberKind costKind{"Kosten"_text, "US-Dollar"_text, 2, 100'000'000'00, 2'50};
constexpr GoalNumberKind shareKind{"Anteil"_text, "Prozent des 5-Stunden-Fensters"_text, 2, 100'00,
                                   12'50};

constexpr int fieldWidth = 140;
constexpr int initialWidth = 460;
constexpr int longestObjective = 2000;
constexpr double hundredths = 100;

/// As the user would write it: without decimals where they say nothing.
QString written(std::int64_t units, int decimals) {
    constexpr std::int64_t whole = 100;
    if (decimals == 0) return qtText(groupedNumber(units));
    return qtText(units % whole == 0 ? groupedNumber(units / whole) : fixedNumber(units, decimals));
}

QString writtenHundredths(std::optional<double> value, std::int64_t most) {
    if (!value) return {};
    const double bounded = std::clamp(*value * hundredths, 0.0, static_cast<double>(most));
    return written(std::llround(bounded), 2);
}

std::optional<double> fromHundredths(std::optional<std::int64_t> units) {
    if (!units) return {};
    return static_cast<double>(*units) / hundredths;
}

QLabel* makeHint(const QString& text) {
    auto* hint = new QLabel(text);
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);
    return hint;
}

}  // namespace

GoalDialog::GoalDialog(FleetMonitor& givenMonitor, std::string givenSession, QWidget* parent)
    : QDialog(parent), monitor(givenMonitor), sessionId(std::move(givenSession)) {
    const Session* session = monitor.session(sessionId);
    const std::string name = session != nullptr ? session->displayName() : sessionId;
    setWindowTitle(shown("Ziel: %@"_text, name));
    layOut(monitor.ownGoal(sessionId));
    resize(initialWidth, sizeHint().height());
}

void GoalDialog::layOut(const std::optional<OwnGoals::Entry>& entry) {
    objective = new QLineEdit;
    objective->setMaxLength(longestObjective);
    objective->setPlaceholderText(shown("Was diese Sitzung erreichen soll"_text));
    if (entry) objective->setText(qtText(entry->objective));

    auto* form = new QFormLayout;
    form->setSpacing(Metrics::gap);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(shown("Ziel"_text), objective);
    const bool hasBudget = entry && entry->tokenBudget;
    tokens = addNumber(*form, tokenKind, hasBudget ? written(*entry->tokenBudget, 0) : QString());
    cost = addNumber(*form, costKind,
                     entry ? writtenHundredths(entry->costLimitUSD, costKind.most) : QString());
    share =
        addNumber(*form, shareKind,
                  entry ? writtenHundredths(entry->windowShareLimit, shareKind.most) : QString());
    // Codex has a window of its own, whose shares nothing tells.
    const Session* session = monitor.session(sessionId);
    if (session != nullptr && session->agent.isCodex() && share.edit->text().isEmpty()) {
        form->setRowVisible(form->rowCount() - 2, false);
        form->setRowVisible(form->rowCount() - 1, false);
    }

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::groupGap, Metrics::groupGap, Metrics::groupGap,
                               Metrics::margin);
    layout->setSpacing(Metrics::margin);
    layout->addLayout(form);
    const auto& goals = *monitor.usage().codexGoals;
    if (const auto ofCodex = goals.find(sessionId); ofCodex != goals.end()) {
        layout->addWidget(
            makeHint(shown("Codex verfolgt hier: %@"_text, goalText(ofCodex->second))));
    }
    layout->addWidget(makeHint(shown(
        "Was leer bleibt, gilt nicht. Sind die Kosten oder der Anteil erreicht, erfährst du es."_text)));
    layout->addStretch();
    layout->addWidget(makeButtons(entry.has_value()));
}

GoalDialog::NumberField GoalDialog::addNumber(QFormLayout& form, const GoalNumberKind& kind,
                                              const QString& value) {
    const NumberField field{.edit = new QLineEdit(value), .fault = makeHint({})};
    field.edit->setFixedWidth(fieldWidth);
    field.edit->setAlignment(Qt::AlignRight);
    field.edit->setAccessibleName(shown(kind.name) + QStringLiteral(", ") + shown(kind.unit));
    field.fault->setWordWrap(false);
    field.fault->hide();
    connect(field.edit, &QLineEdit::textEdited, field.fault, &QLabel::hide);
    auto* line = new QHBoxLayout;
    line->setSpacing(Metrics::gap);
    line->addWidget(field.edit);
    line->addWidget(new QLabel(shown(kind.unit)), 1);
    auto* name = new QLabel(shown(kind.name));
    name->setBuddy(field.edit);
    form.addRow(name, line);
    form.setWidget(form.rowCount(), QFormLayout::FieldRole, field.fault);
    return field;
}

QWidget* GoalDialog::makeButtons(bool isSet) {
    auto* buttons = new QWidget;
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Metrics::gap);
    const auto make = [&](const QString& text, void (GoalDialog::*action)()) {
        auto* button = new QPushButton(text);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, action);
        row->addWidget(button);
        return button;
    };
    make(shown("Ziel entfernen"_text), &GoalDialog::remove)->setVisible(isSet);
    row->addStretch();
    make(shown("Abbrechen"_text), &GoalDialog::reject);
    make(shown("Sichern"_text), &GoalDialog::accept)->setDefault(true);
    return buttons;
}

GoalDialog::Number GoalDialog::read(const NumberField& field, const GoalNumberKind& kind) {
    const QString text = field.edit->text().trimmed();
    if (text.isEmpty()) return std::nullopt;
    const auto number = parseNumber(text.toStdString(), kind.decimals, interfaceLanguageInUse());
    const bool isTooLarge = number ? *number > kind.most : number.error() == NumberFault::tooLarge;
    if (isTooLarge) {
        return tl::unexpected(
            shown("Höchstens %@."_text, written(kind.most, kind.decimals).toStdString()));
    }
    if (number == 0) return tl::unexpected(shown("Es muss mehr als null sein."_text));
    if (number) return *number;
    if (number.error() == NumberFault::tooPrecise) {
        return tl::unexpected(kind.decimals == 0
                                  ? shown("Hier passt nur eine ganze Zahl."_text)
                                  : shown("Höchstens zwei Stellen hinter dem Komma."_text));
    }
    return tl::unexpected(shown("Das lässt sich nicht als Zahl lesen. Schreibe etwa %@."_text,
                                written(kind.example, kind.decimals).toStdString()));
}

bool GoalDialog::take(const NumberField& field, const GoalNumberKind& kind,
                      std::optional<std::int64_t>& number) {
    const Number input = read(field, kind);
    if (input) number = *input;
    const QString fault = input ? QString() : input.error();
    field.fault->setText(fault);
    field.fault->setVisible(!fault.isEmpty());
    QPalette colours = palette();
    colours.setColor(QPalette::PlaceholderText, paletteOf(colours).attention);
    field.fault->setPalette(colours);
    field.edit->setAccessibleDescription(fault);
    return input.has_value();
}

void GoalDialog::accept() {
    std::optional<std::int64_t> tokenBudget;
    std::optional<std::int64_t> cents;
    std::optional<std::int64_t> hundredthsOfPercent;
    QLineEdit* refused = nullptr;
    // From the last on, so that the first of those refused gets the keyboard.
    if (!take(share, shareKind, hundredthsOfPercent)) refused = share.edit;
    if (!take(cost, costKind, cents)) refused = cost.edit;
    if (!take(tokens, tokenKind, tokenBudget)) refused = tokens.edit;
    if (refused != nullptr) {
        layout()->activate();
        resize(size().expandedTo(sizeHint()));
        refused->setFocus();
        refused->selectAll();
        return;
    }
    const auto before = monitor.ownGoal(sessionId);
    const OwnGoals::Entry entry{.objective = objective->text().trimmed().toStdString(),
                                .tokenBudget = tokenBudget,
                                .costLimitUSD = fromHundredths(cents),
                                .windowShareLimit = fromHundredths(hundredthsOfPercent),
                                .createdAt = before ? before->createdAt : monitor.clock()};
    const bool isEmpty = entry.objective.empty() && !tokenBudget && !cents && !hundredthsOfPercent;
    if (isEmpty) return remove();
    if (before != entry) monitor.setOwnGoal(sessionId, entry);
    QDialog::accept();
}

void GoalDialog::remove() {
    if (monitor.ownGoal(sessionId)) monitor.removeOwnGoal(sessionId);
    QDialog::accept();
}

void openGoalDialog(FleetMonitor& monitor, const std::string& sessionId, QWidget* parent) {
    auto* dialog = new GoalDialog(monitor, sessionId, parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

}  // namespace fleetwise
