#include "ui/settings/about_page.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/mark/artwork_images.h"
#include "ui/settings/page_labels.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>

namespace fleetwise {

namespace {

constexpr int aboutIconSide = 64;

QLabel* makeFactLabel(const QString& text) {
    QLabel* label = makePageText(text);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

}  // namespace

AboutPage::AboutPage(FleetMonitor& givenMonitor, const SettingsServices& services, QWidget* parent)
    : SettingsPage(givenMonitor, parent) {
    const ProgramFacts facts = services.facts();
    addTitle(qtText(facts.version));
    const auto places = [](const std::vector<ProgramFacts::Place>& all) {
        std::vector<Fact> told;
        for (const auto& place : all)
            told.push_back({qtText(place.path), qtText(place.purpose)});
        return told;
    };
    addFacts(shown("Was gelesen wird"_text), places(facts.read));
    addFacts(shown("Was geschrieben wird"_text), places(facts.written));
    std::vector<Fact> parts;
    for (const auto& part : facts.parts)
        parts.push_back({qtText(part.name), qtText(part.licence)});
    addFacts(shown("Woraus Fleetwise besteht"_text), parts);
    addStretch();
}

QString AboutPage::name() const {
    return shown("Über Fleetwise"_text);
}

void AboutPage::addTitle(const QString& version) {
    auto* icon = new QLabel;
    QPixmap picture =
        QPixmap::fromImage(applicationIcon(static_cast<int>(aboutIconSide * devicePixelRatioF())));
    picture.setDevicePixelRatio(devicePixelRatioF());
    icon->setPixmap(picture);
    auto* programName = new QLabel(QStringLiteral("Fleetwise"));
    programName->setFont(headingFont(programName->font()));
    const QString told = shown("Version %@"_text, version.toStdString());
    auto* copy = new QPushButton(shown("Angaben kopieren"_text));
    copy->setAutoDefault(false);
    connect(copy, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(copied); });
    copied = QStringLiteral("Fleetwise ") + version + u'\n';

    auto* title = new QWidget;
    auto* line = new QHBoxLayout(title);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(Metrics::groupGap);
    line->addWidget(icon);
    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    words->addStretch(1);
    words->addWidget(programName);
    words->addWidget(makeFactLabel(told));
    words->addStretch(1);
    line->addLayout(words, 1);
    line->addWidget(copy);
    addWide(title);
}

void AboutPage::addFacts(const QString& heading, const std::vector<Fact>& facts) {
    if (facts.empty()) return;
    addHeading(heading);
    copied += u'\n' + heading + u'\n';
    auto* table = new QWidget;
    auto* grid = new QGridLayout(table);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(Metrics::groupGap);
    grid->setVerticalSpacing(Metrics::gap);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const Fact& fact : facts) {
        QLabel* words = makeFactLabel(fact.words);
        words->setForegroundRole(QPalette::PlaceholderText);
        grid->addWidget(makeFactLabel(fact.name), row, 0, Qt::AlignTop);
        grid->addWidget(words, row, 1, Qt::AlignTop);
        copied += fact.name + u'\t' + fact.words + u'\n';
        ++row;
    }
    addWide(table);
}

}  // namespace fleetwise
