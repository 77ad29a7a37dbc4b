#include "ui/settings/notify_exceptions.h"

#include "foundation/text.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/settings/page_labels.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QToolButton>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr std::string_view sessionPrefix = "s:";
constexpr std::string_view projectPrefix = "p:";

}  // namespace

NotifyExceptions::NotifyExceptions(FleetMonitor& givenMonitor, QWidget* parent)
    : QWidget(parent), monitor(givenMonitor), none(makePageNote()), lines(new QVBoxLayout(this)) {
    none->setText(shown(
        "Keine. Im Menü einer Sitzung kannst du sie oder ihr Projekt stumm schalten oder immer melden lassen."_text));
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(Metrics::gap);
    lines->addWidget(none);
}

void NotifyExceptions::refresh() {
    const auto overrides = monitor.settings().notifyOverrides();
    if (!std::ranges::equal(overrides, rows, [](const auto& entry, const Row& row) {
            return entry.first == row.key;
        })) {
        rebuild(overrides);
    }
    none->setVisible(rows.empty());
    for (const Row& row : rows) {
        const Words told = words(row.key);
        row.name->setText(told.name);
        row.explanation->setText(told.explanation);
        row.choice->setCurrentIndex(overrides.at(row.key) ? 0 : 1);
    }
}

void NotifyExceptions::rebuild(const NotificationPolicy::Overrides& overrides) {
    const bool hadFocus = isAncestorOf(window()->focusWidget());
    for (const Row& row : rows) {
        row.widget->hide();
        row.widget->deleteLater();
    }
    rows.clear();
    for (const auto& [key, notifies] : overrides) {
        rows.push_back(makeRow(key));
        lines->addWidget(rows.back().widget);
    }
    // Who removes several one after the other stays here.
    if (hadFocus && !rows.empty()) rows.front().choice->setFocus();
}

NotifyExceptions::Row NotifyExceptions::makeRow(const std::string& key) {
    Row row{.key = key,
            .widget = new QWidget,
            .name = makePageText(),
            .explanation = makePageNote(),
            .choice = new QComboBox};
    row.choice->addItem(shown("Melden"_text));
    row.choice->addItem(shown("Stumm"_text));
    row.choice->setFocusPolicy(Qt::StrongFocus);
    const std::string name = words(key).name.toStdString();
    row.choice->setAccessibleName(shown("Mitteilungen von %@"_text, name));
    connect(row.choice, &QComboBox::activated, this,
            [this, key](int index) { set(key, index == 0); });
    auto* drop = new QToolButton;
    drop->setText(shown("Entfernen"_text));
    drop->setFocusPolicy(Qt::StrongFocus);
    drop->setAccessibleName(shown("Ausnahme entfernen: %@"_text, name));
    connect(drop, &QToolButton::clicked, this, [this, key] { remove(key); });
    auto* texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(row.name);
    texts->addWidget(row.explanation);
    auto* line = new QHBoxLayout(row.widget);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(Metrics::gap);
    line->addLayout(texts, 1);
    line->addWidget(row.choice);
    line->addWidget(drop);
    return row;
}

NotifyExceptions::Words NotifyExceptions::words(const std::string& key) const {
    if (key.starts_with(projectPrefix)) {
        const std::string path = printable(key.substr(projectPrefix.size()));
        return {qtText(path.substr(path.rfind('/') + 1)), shown("Projekt %@"_text, path)};
    }
    const std::string id = key.starts_with(sessionPrefix) ? key.substr(sessionPrefix.size()) : key;
    if (const Session* session = monitor.session(id)) {
        return {qtText(session->displayName()),
                shown("Sitzung in %@"_text, session->displayPath(monitor.home()))};
    }
    return {qtText(printable(id)), shown("Diese Sitzung ist nicht mehr in der Liste."_text)};
}

void NotifyExceptions::set(const std::string& key, bool notifies) {
    Json changed = monitor.settings().get(Settings::sessionNotifyOverrides);
    changed[key] = notifies;
    monitor.change(Settings::sessionNotifyOverrides, changed);
}

void NotifyExceptions::remove(const std::string& key) {
    Json changed = monitor.settings().get(Settings::sessionNotifyOverrides);
    changed.erase(key);
    monitor.change(Settings::sessionNotifyOverrides, changed);
}

}  // namespace fleetwise
