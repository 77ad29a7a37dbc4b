#include "ui/settings/accounts_page.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/settings/page_labels.h"

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr int longestAccountName = 60;

}  // namespace

AccountsPage::AccountsPage(FleetMonitor& givenMonitor, QWidget* parent)
    : SettingsPage(givenMonitor, parent) {
    addHeading(shown("Konten"_text));
    missing = addNote(shown(
        "Sobald Fleetwise das Kontingent von mehr als einem Konto kennt, stehen die Konten hier, und du kannst ihnen Namen geben."_text));
    content = new QWidget;
    fields = new QVBoxLayout(content);
    fields->setContentsMargins(0, 0, 0, 0);
    fields->setSpacing(Metrics::margin);
    addWide(content);
    onRefresh([this] { showAccounts(); });
    addStretch();
}

QString AccountsPage::name() const {
    return shown("Konten"_text);
}

std::vector<AccountsPage::Account> AccountsPage::accounts() const {
    std::vector<Account> all;
    for (const auto& measured : monitor.usage().accounts)
        all.push_back({measured.org, qtText(UsageHistoryStore::substituteTitle(measured.rang))});
    // A name can also be taken back from an account that is measured no longer.
    const Json names = monitor.settings().get(Settings::accountNames);
    for (const auto& [organisation, name] : names.items()) {
        const bool isMeasured =
            std::ranges::find(all, organisation, &Account::organisation) != all.end();
        if (!isMeasured) all.push_back({organisation, shown("Ohne neue Messwerte"_text)});
    }
    return all;
}

void AccountsPage::showAccounts() {
    const std::vector<Account> wanted = accounts();
    if (wanted != shownAccounts) {
        const bool isTyping =
            std::ranges::any_of(edits, [](const auto& entry) { return entry.second->hasFocus(); });
        if (isTyping) return;
        shownAccounts = wanted;
        edits.clear();
        for (auto* old : content->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            old->hide();
            old->deleteLater();
        }
        for (const Account& account : wanted)
            addAccount(account);
    }
    missing->setVisible(wanted.empty());
    content->setVisible(!wanted.empty());
    for (const auto& [organisation, edit] : edits) {
        if (!edit->hasFocus()) edit->setText(nameOf(organisation));
    }
}

void AccountsPage::addAccount(const Account& account) {
    auto* edit = new QLineEdit;
    edit->setMaxLength(longestAccountName);
    edit->setPlaceholderText(account.title);
    edit->setAccessibleName(account.title);
    QLabel* label = makePageText(
        shown("%@ · Organisation %@"_text, account.title.toStdString(), account.organisation));
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(edit);
    auto* row = new QWidget;
    auto* lines = new QVBoxLayout(row);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(Metrics::grid);
    lines->addWidget(label);
    lines->addWidget(edit);
    fields->addWidget(row);
    connect(edit, &QLineEdit::editingFinished, this,
            [this, edit, organisation = account.organisation] {
                store(organisation, edit->text().trimmed());
            });
    edits.emplace(account.organisation, edit);
}

QString AccountsPage::nameOf(const std::string& organisation) const {
    const Json names = monitor.settings().get(Settings::accountNames);
    const auto found = names.find(organisation);
    return found != names.end() && found->is_string() ? qtText(found->get<std::string>())
                                                      : QString();
}

void AccountsPage::store(const std::string& organisation, const QString& typed) {
    if (typed == nameOf(organisation)) return;
    Json names = monitor.settings().get(Settings::accountNames);
    if (typed.isEmpty()) {
        names.erase(organisation);
    } else {
        names[organisation] = typed.toStdString();
    }
    monitor.change(Settings::accountNames, names);
}

}  // namespace fleetwise
