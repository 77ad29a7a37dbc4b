#include "ui/settings/prices_page.h"

#include "fleet/cost_texts.h"
#include "ui/base/interface_text.h"
#include "ui/base/plain_table.h"
#include "ui/base/price_table.h"
#include "ui/settings/moment_text.h"
#include "ui/settings/price_delegate.h"
#include "ui/settings/price_input.h"
#include "ui/settings/price_table_model.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>

namespace fleetwise {

PricesPage::PricesPage(FleetMonitor& givenMonitor, const SettingsServices& givenServices,
                       QWidget* parent)
    : SettingsPage(givenMonitor, parent),
      services(givenServices),
      model(new PriceTableModel(givenServices.prices, this)) {
    addHeading(name());
    origin = addNote({});
    comparison = addNote({});
    addTable();
    addFlatRate();
    addHeading(shown("Update-Feed"_text));
    feed = addNote({});
    addStretch();
    onRefresh([this] { showBook(); });
    onRefresh([this] { showFlatRate(); });
    onRefresh([this] { showFeed(); });
    refresh();
}

PricesPage::~PricesPage() {
    // A field that goes while it has the focus still tells that its editing is finished.
    disconnect(flatRate.edit, nullptr, this, nullptr);
}

QString PricesPage::name() const {
    return shown("Preise"_text);
}

void PricesPage::addTable() {
    addHeading(qtText(priceTitle()));
    table = new PlainTable(qtText(priceTitle()), static_cast<int>(Prices::knownFamilies.size()));
    table->setModel(model);
    table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                           QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    auto* delegate = new PriceDelegate(table);
    table->setItemDelegate(delegate);
    addWide(table);
    refusal = addFault();
    connect(delegate, &PriceDelegate::faultChanged, this,
            [this](const QString& fault) { setFault(refusal, fault); });
    const auto giveUp = [this] { model->setData(table->currentIndex(), QString(), Qt::EditRole); };
    for (const int key : {Qt::Key_Delete, Qt::Key_Backspace}) {
        auto* shortcut = new QShortcut(key, table);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, giveUp);
    }
    connect(model, &QAbstractItemModel::dataChanged, this, [this] { refresh(); });
    addNote(shown(
        "Ein Doppelklick oder die Eingabe einer Zahl ändert einen Preis. Vor deinen eigenen Preisen steht ein Punkt; ein leeres Feld gibt wieder den der Liste."_text));
    incomplete = addNote({});
    resetButton = addButton(shown("Eigene Preise verwerfen …"_text));
    connect(resetButton, &QPushButton::clicked, this, &PricesPage::askForReset);
}

void PricesPage::addFlatRate() {
    addHeading(shown("Einheitspreis"_text));
    flatSwitch = addPlainSwitch(
        shown("Ein Preis für alles"_text),
        shown("Gilt statt der Liste für jedes Modell und jede Art von Tokens."_text));
    flatRate = addField(qtText(priceTitle()), qtText(priceText(0)));
    connect(flatSwitch, &QCheckBox::toggled, this, &PricesPage::wantFlatRate);
    connect(flatRate.edit, &QLineEdit::textEdited, this, [this] { setFault(flatRate, {}); });
    connect(flatRate.edit, &QLineEdit::editingFinished, this, &PricesPage::takeFlatRate);
}

void PricesPage::wantFlatRate(bool isWanted) {
    isAwaitingRate = isWanted;
    if (!isWanted) {
        setFault(flatRate, {});
        flatRate.edit->setModified(false);
        services.prices.setFlatRate({});
    } else if (!flatRate.edit->text().isEmpty()) {
        // The rate that held until it was switched off.
        flatRate.edit->setModified(true);
        takeFlatRate();
    }
    refresh();
    if (isWanted) flatRate.edit->setFocus(Qt::OtherFocusReason);
}

void PricesPage::takeFlatRate() {
    if (!flatRate.edit->isModified()) return;
    const auto wanted = readPrice(flatRate.edit->text());
    if (!wanted) return setFault(flatRate, wanted.error());
    if (!*wanted) return setFault(flatRate, shown("Trage einen Preis ein."_text));
    flatRate.edit->setModified(false);
    isAwaitingRate = false;
    setFault(flatRate, {});
    services.prices.setFlatRate(*wanted);
    refresh();
}

void PricesPage::askForReset() {
    auto* question = new QMessageBox(
        QMessageBox::NoIcon, shown("Eigene Preise verwerfen"_text),
        shown(
            "Alle deine eigenen Preise und den Einheitspreis verwerfen? Es gilt dann wieder die Preisliste."_text),
        QMessageBox::NoButton, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    question->setTextFormat(Qt::PlainText);
    QPushButton* proceed =
        question->addButton(shown("Verwerfen"_text), QMessageBox::DestructiveRole);
    question->setDefaultButton(
        question->addButton(shown("Abbrechen"_text), QMessageBox::RejectRole));
    connect(proceed, &QPushButton::clicked, this, [this] {
        isAwaitingRate = false;
        flatRate.edit->setText({});
        setFault(flatRate, {});
        services.prices.reset();
        refresh();
    });
    question->open();
}

void PricesPage::showBook() {
    model->refresh();
    const Prices::Book& book = monitor.priceBook();
    const bool isFlat = services.prices.flat().has_value();
    QString source = qtText(priceBookText(book));
    if (isFlat) source += u'\n' + shown("Die Liste ruht so lange."_text);
    origin->setText(source);
    comparison->setText(qtText(comparisonText(monitor.priceVerdict(), book)));
    comparison->setVisible(!comparison->text().isEmpty());
    const QStringList families = model->incompleteFamilies();
    incomplete->setText(shown("Für %@ zählt noch nichts: erst mit allen fünf Preisen."_text,
                              families.join(QStringLiteral(", ")).toStdString()));
    incomplete->setVisible(!families.isEmpty() && !isFlat);
    resetButton->setEnabled(isFlat || !services.prices.custom().empty());
}

void PricesPage::showFlatRate() {
    const auto rate = services.prices.flat();
    const QSignalBlocker quiet(flatSwitch);
    flatSwitch->setChecked(rate || isAwaitingRate);
    flatRate.row->setVisible(flatSwitch->isChecked());
    if (!rate || flatRate.edit->isModified()) return;
    if (const QString text = qtText(priceText(*rate)); text != flatRate.edit->text())
        flatRate.edit->setText(text);
}

QStringList PricesPage::feedLines() const {
    const FeedUpdate& update = services.feedUpdate;
    if (!update.hasAddress()) {
        return {shown(
            "Diese Version von Fleetwise kennt keinen Update-Feed. Neue Preise kommen mit einer neuen Version oder von dir."_text)};
    }
    const auto moment = [this](Date at) {
        return momentText(at, services.now(), monitor.calendar());
    };
    QStringList lines;
    if (update.lastChecked()) {
        lines << shown("Zuletzt gelesen: %@"_text, moment(*update.lastChecked()));
    } else if (!update.problem()) {
        lines << shown("Der Update-Feed wird gerade gelesen."_text);
    }
    if (update.problem())
        lines << shown("Der letzte Versuch schlug fehl: %@"_text, *update.problem());
    if (const auto seen = services.priceFeed.lastSeen())
        lines << shown("Preise übernommen: %@"_text, moment(*seen));
    if (const auto failure = services.priceFeed.lastFailure())
        lines << shown("Preise aus dem Feed: %@"_text, localised(*failure));
    if (update.newerVersion())
        lines << shown("Eine neuere Version ist da: %@"_text, *update.newerVersion());
    return lines;
}

void PricesPage::showFeed() {
    feed->setText(feedLines().join(u'\n'));
}

void PricesPage::hideEvent(QHideEvent* event) {
    takeFlatRate();
    if (!event->spontaneous()) isAwaitingRate = false;
    SettingsPage::hideEvent(event);
}

}  // namespace fleetwise
