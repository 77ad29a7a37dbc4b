#include "ui/settings/webhook_page.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/settings/moment_text.h"
#include "ui/settings/page_labels.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

#include <array>
#include <utility>

namespace fleetwise {

namespace {

/// What Webhook::payload sends.
constexpr std::array<std::pair<const char*, Text>, 9> payloadKeys{{
    {"event", "»state_changed«, bei einem Test »test«"_text},
    {"source", "immer »Fleetwise«"_text},
    {"at", "Zeitpunkt nach ISO 8601"_text},
    {"session.id", "Kennung der Sitzung"_text},
    {"session.name", "Name, wie er in der Liste steht"_text},
    {"session.state", "neuer Zustand"_text},
    {"session.previous", "Zustand davor, falls bekannt"_text},
    {"session.project", "Name des Projekts, falls bekannt"_text},
    {"session.application", "Programm, in dem die Sitzung läuft, falls bekannt"_text},
}};

}  // namespace

WebhookPage::WebhookPage(FleetMonitor& givenMonitor, const SettingsServices& services,
                         QWidget* parent)
    : SettingsPage(givenMonitor, parent), webhook(services.webhook), now(services.now) {
    addAddress();
    addContents();
    addStretch();
    onRefresh([this] { showAddress(); });
    onRefresh([this] { showOutcome(); });
    refresh();
}

WebhookPage::~WebhookPage() {
    // A field that goes while it has the focus still tells that its editing is finished.
    disconnect(address.edit, nullptr, this, nullptr);
}

QString WebhookPage::name() const {
    return shown("Webhook"_text);
}

void WebhookPage::addAddress() {
    addHeading(name());
    addNote(shown(
        "Wechselt eine Sitzung ihren Zustand, meldet Fleetwise das an diese Adresse. Ohne Adresse wird nichts gesendet."_text));
    address = addField(shown("Adresse"_text), QStringLiteral("https://"));
    connect(address.edit, &QLineEdit::textEdited, this, [this] { setFault(address, {}); });
    connect(address.edit, &QLineEdit::editingFinished, this, [this] {
        // Who copies the rest of it from another window is not done.
        if (isActiveWindow()) takeAddress();
    });
    auto* buttons = new QWidget;
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Metrics::gap);
    testButton = new QPushButton(shown("Test senden"_text));
    clearButton = new QPushButton(shown("Adresse entfernen"_text));
    connect(testButton, &QPushButton::clicked, this, &WebhookPage::test);
    connect(clearButton, &QPushButton::clicked, this, &WebhookPage::clearAddress);
    row->addWidget(testButton);
    row->addWidget(clearButton);
    row->addStretch();
    addWide(buttons);
    testResult = addNote({});
    testResult->hide();
    lastDelivery = addNote({});
}

void WebhookPage::addContents() {
    addHeading(shown("Was gesendet wird"_text));
    addNote(shownCount(
        static_cast<std::int64_t>(Webhook::maximumPerWindow),
        "Ein POST mit JSON und diesen Angaben, sonst nichts. Höchstens %d Meldung je Minute; was darüber hinausgeht, entfällt."_text,
        "Ein POST mit JSON und diesen Angaben, sonst nichts. Höchstens %d Meldungen je Minute; was darüber hinausgeht, entfällt."_text));
    auto* table = new QWidget;
    auto* grid = new QGridLayout(table);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(Metrics::groupGap);
    grid->setVerticalSpacing(Metrics::grid);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const auto& [key, meaning] : payloadKeys) {
        auto* keyLabel = new QLabel(QString::fromLatin1(key));
        keyLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
        keyLabel->setFont(smallFont(keyLabel->font()));
        grid->addWidget(keyLabel, row, 0, Qt::AlignTop);
        grid->addWidget(makePageNote(shown(meaning)), row, 1);
        ++row;
    }
    addWide(table);
}

std::string WebhookPage::storedAddress() const {
    return monitor.settings().get(Settings::webhookURL);
}

bool WebhookPage::takeAddress() {
    if (!address.edit->isModified()) return !storedAddress().empty();
    const std::string typed = address.edit->text().trimmed().toStdString();
    const auto error = Webhook::validate(typed);
    if (error && error != Webhook::AddressError::missing) {
        QString fault = qtText(Webhook::message(*error));
        if (const std::string stored = storedAddress(); !stored.empty())
            fault += u' ' + shown("Gesendet wird weiter an %@"_text, stored);
        setFault(address, fault);
        return false;
    }
    address.edit->setModified(false);
    setFault(address, {});
    if (typed != storedAddress()) monitor.change(Settings::webhookURL, typed);
    refresh();
    return !error;
}

void WebhookPage::clearAddress() {
    address.edit->clear();
    address.edit->setModified(true);
    takeAddress();
    address.edit->setFocus(Qt::OtherFocusReason);
}

void WebhookPage::test() {
    if (!takeAddress()) {
        if (address.fault->text().isEmpty())
            setFault(address, qtText(Webhook::message(Webhook::AddressError::missing)));
        address.edit->setFocus(Qt::OtherFocusReason);
        return;
    }
    testButton->setEnabled(false);
    testResult->setText(shown("Der Test läuft …"_text));
    testResult->show();
    webhook.test(storedAddress(), [page = QPointer(this)](const Webhook::Outcome& outcome) {
        if (page.isNull()) return;
        page->testButton->setEnabled(true);
        page->testResult->setText(outcome.isSuccess
                                      ? shown("Der Test kam an: %@"_text, outcome.detail)
                                      : shown("Der Test kam nicht an: %@"_text, outcome.detail));
        page->refresh();
    });
}

void WebhookPage::showAddress() {
    const std::string stored = storedAddress();
    if (!address.edit->isModified() && address.edit->text() != qtText(stored))
        address.edit->setText(qtText(stored));
    clearButton->setEnabled(!stored.empty());
}

void WebhookPage::showOutcome() {
    const auto& outcome = webhook.lastOutcome();
    if (!outcome) {
        lastDelivery->setText(
            shown("Seit dem Start von Fleetwise wurde noch nichts gesendet."_text));
        return;
    }
    const std::string moment = momentText(outcome->at, now(), monitor.calendar());
    lastDelivery->setText(
        outcome->isSuccess
            ? shown("Letzte Meldung: %@, angekommen (%@)"_text, moment, outcome->detail)
            : shown("Letzte Meldung: %@, nicht angekommen (%@)"_text, moment, outcome->detail));
}

void WebhookPage::hideEvent(QHideEvent* event) {
    takeAddress();
    SettingsPage::hideEvent(event);
}

}  // namespace fleetwise
