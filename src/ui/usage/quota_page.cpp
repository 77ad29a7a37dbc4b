#include "ui/usage/quota_page.h"

#include "fleet/quota_texts.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/charts/share_bar.h"
#include "ui/usage/quota_section.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QSignalBlocker>

#include <algorithm>

namespace fleetwise {

namespace {

QLabel* makeWords() {
    auto* label = new QLabel;
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QLabel* makeHeading(const QString& text) {
    auto* label = new QLabel(text);
    label->setFont(headingFont(label->font()));
    return label;
}

}  // namespace

QuotaPage::QuotaPage(FleetMonitor& givenMonitor, QWidget* parent)
    : UsagePage(parent),
      monitor(givenMonitor),
      accounts(new QComboBox),
      fiveHour(new QuotaSection(fiveHours)),
      sevenDay(new QuotaSection(sevenDays)),
      codexHeading(makeHeading(shown("Codex"_text))),
      codex(new QWidget),
      planHeading(makeHeading(shown("Tarife"_text))),
      plans(makeWords()),
      missing(makeWords()),
      source(makeWords()) {
    accounts->setAccessibleName(shown("Konto"_text));
    accounts->setToolTip(shown("Konto"_text));
    accounts->hide();
    source->setFont(smallFont(font()));
    source->setForegroundRole(QPalette::PlaceholderText);
    layOut();
    const auto showAgain = [this] { refresh(shownAt); };
    connect(accounts, &QComboBox::activated, this, showAgain);
    for (QuotaSection* section : {fiveHour, sevenDay})
        connect(section, &QuotaSection::spanChanged, this, showAgain);
}

void QuotaPage::layOut() {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::margin);
    layout->setSpacing(Metrics::groupGap);
    layout->addWidget(missing);
    layout->addWidget(accounts, 0, Qt::AlignLeft);
    for (QWidget* widget : {static_cast<QWidget*>(fiveHour), static_cast<QWidget*>(sevenDay)})
        layout->addWidget(widget);
    for (const auto& [heading, content] :
         {std::pair<QLabel*, QWidget*>{codexHeading, codex}, {planHeading, plans}}) {
        auto* block = new QVBoxLayout;
        block->setSpacing(Metrics::grid);
        block->addWidget(heading);
        block->addWidget(content);
        layout->addLayout(block);
    }
    layout->addWidget(source);
    layout->addStretch();
    auto* rows = new QVBoxLayout(codex);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(Metrics::grid);
}

QString QuotaPage::name() const {
    return shown("Kontingent"_text);
}

bool QuotaPage::isWanted() const {
    return monitor.settings().get(Settings::usageShowsQuota);
}

void QuotaPage::setShowsTables(bool showsTables) {
    fiveHour->setShowsTable(showsTables);
    sevenDay->setShowsTable(showsTables);
}

void QuotaPage::refresh(Date now) {
    shownAt = now;
    const UsageOverview& usage = monitor.usage();
    showAccounts(usage);
    showWindows(usage, now);
    showCodex(usage, now);
    showPlans(usage);
    const QString figures = qtText(quotaSourceText(usage));
    const QString configuration = qtText(configurationReadingText());
    const bool isMissing = usage.samples->empty();
    missing->setText(figures);
    missing->setVisible(isMissing);
    source->setText(isMissing ? configuration : figures + u'\n' + configuration);
}

void QuotaPage::showAccounts(const UsageOverview& usage) {
    const bool isUnchanged = std::ranges::equal(
        usage.accounts, shownAccounts, [](const auto& account, const auto& shownOne) {
            return account.org == shownOne.first && account.titel == shownOne.second;
        });
    if (isUnchanged) return;
    shownAccounts.clear();
    for (const auto& account : usage.accounts)
        shownAccounts.emplace_back(account.org, account.titel);
    const QVariant chosen = accounts->currentData();
    const QSignalBlocker quiet(accounts);
    accounts->clear();
    for (const auto& account : usage.accounts)
        accounts->addItem(qtText(account.titel), qtText(account.org));
    accounts->setCurrentIndex(std::max(0, accounts->findData(chosen)));
    accounts->setVisible(accounts->count() > 0);
}

void QuotaPage::showWindows(const UsageOverview& usage, Date now) {
    const auto index = static_cast<std::size_t>(std::max(0, accounts->currentIndex()));
    const bool isOneOfSeveral = index < usage.accounts.size();
    const auto org = isOneOfSeveral ? std::optional(usage.accounts[index].org)
                                    : UsageHistoryStore::primaryOrg(*usage.samples, now);
    const UsageSamples samples = UsageHistoryStore::samples(org, *usage.samples);
    fiveHour->setVisible(!samples.empty());
    sevenDay->setVisible(!samples.empty());
    if (samples.empty()) return;
    fiveHour->setQuota(UsageHistoryStore::fiveHourValues(samples),
                       isOneOfSeveral ? usage.accounts[index].fuenfStunden : usage.fiveHour, now,
                       monitor.calendar());
    sevenDay->setQuota(UsageHistoryStore::sevenDayValues(samples),
                       isOneOfSeveral ? usage.accounts[index].siebenTage : usage.sevenDay, now,
                       monitor.calendar());
}

void QuotaPage::showCodex(const UsageOverview& usage, Date now) {
    std::vector<std::pair<QString, int>> words;
    std::vector<bool> faint;
    for (const CodexQuota& window :
         usage.codex ? usage.codex->windows : std::vector<CodexQuota>()) {
        const bool hasReset = window.hasReset(now);
        words.emplace_back(
            qtText(window.windowLabel() + ": " + codexQuotaText(window, now, monitor.calendar())),
            hasReset ? 0 : window.usedPercent);
        faint.push_back(window.isStale(now));
    }
    codexHeading->setVisible(!words.empty());
    codex->setVisible(!words.empty());
    if (words == shownCodex) return;
    shownCodex = words;
    qDeleteAll(codex->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly));
    for (std::size_t index = 0; index < words.size(); ++index) {
        QLabel* label = makeWords();
        label->setText(words[index].first);
        auto* bar = new ShareBar;
        constexpr double full = 100;
        bar->setShare(words[index].second / full, faint[index]);
        codex->layout()->addWidget(label);
        codex->layout()->addWidget(bar);
    }
}

void QuotaPage::showPlans(const UsageOverview& usage) {
    QStringList lines;
    for (const PlanStore::Plan& plan : usage.plans) {
        const std::string words = planText(plan);
        if (!words.empty()) lines << qtText(plan.agent.label() + ": " + words);
    }
    planHeading->setVisible(!lines.empty());
    plans->setVisible(!lines.empty());
    plans->setText(lines.join(u'\n'));
}

}  // namespace fleetwise
