#include "ui/settings/action_editor.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/settings/action_words.h"
#include "ui/settings/page_labels.h"
#include "ui/settings/state_icon.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>

#include <chrono>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::chrono::milliseconds typingRest(800);

void setRole(QLabel* label, bool isWarning) {
    QPalette colours = label->parentWidget()->palette();
    const Palette own = paletteOf(colours);
    colours.setColor(QPalette::WindowText, isWarning ? own.warning : own.secondary);
    label->setPalette(colours);
}

}  // namespace

ActionEditor::ActionEditor(StateAction::FileSystem givenFileSystem, QWidget* parent)
    : QWidget(parent),
      fileSystem(std::move(givenFileSystem)),
      states(new QComboBox),
      command(new QLineEdit),
      planLabel(makePageText()),
      release(makePageText()),
      releaseButton(new QPushButton),
      removeButton(new QPushButton(shown("Entfernen"_text))) {
    layOut();
    fillStates();
    typingPause.setSingleShot(true);
    typingPause.setInterval(typingRest);
    connect(&typingPause, &QTimer::timeout, this, &ActionEditor::commit);
    connect(command, &QLineEdit::textEdited, &typingPause, qOverload<>(&QTimer::start));
    connect(command, &QLineEdit::editingFinished, this, &ActionEditor::commit);
    connect(states, &QComboBox::activated, this, [this](int index) {
        commit();
        StateAction wanted = shownAction;
        wanted.state = allSessionStates.at(static_cast<std::size_t>(index));
        change(wanted);
    });
    connect(releaseButton, &QPushButton::clicked, this, &ActionEditor::chooseRelease);
    connect(removeButton, &QPushButton::clicked, this,
            [this] { emit removalWanted(shownAction.id); });
}

ActionEditor::~ActionEditor() {
    // A field that goes while it has the focus still tells that its editing is finished.
    disconnect(command, nullptr, this, nullptr);
}

void ActionEditor::layOut() {
    states->setAccessibleName(shown("Zustand, in den eine Sitzung wechselt"_text));
    command->setAccessibleName(shown("Befehl"_text));
    command->setPlaceholderText(shown("/voller/pfad/zum/programm Argument"_text));
    auto* top = new QHBoxLayout;
    top->setSpacing(Metrics::gap);
    top->addWidget(states);
    top->addStretch();
    top->addWidget(removeButton);
    auto* bottom = new QHBoxLayout;
    bottom->setSpacing(Metrics::gap);
    bottom->addWidget(release, 1);
    bottom->addWidget(releaseButton);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Metrics::margin, Metrics::margin, Metrics::margin, Metrics::margin);
    layout->setSpacing(Metrics::gap);
    layout->addLayout(top);
    layout->addWidget(command);
    layout->addWidget(planLabel);
    layout->addLayout(bottom);
}

void ActionEditor::fillStates() {
    for (const SessionState state : allSessionStates) {
        const int index = static_cast<int>(state);
        if (index >= states->count()) states->addItem(qtText(label(state)));
        states->setItemIcon(index, stateIcon(state, *this));
    }
    states->setIconSize({Metrics::glyphSide, Metrics::glyphSide});
}

void ActionEditor::setAction(const StateAction& newAction) {
    const bool isOther = newAction != shownAction;
    shownAction = newAction;
    if (!typingPause.isActive() && command->text() != qtText(newAction.command))
        command->setText(qtText(newAction.command));
    states->setCurrentIndex(static_cast<int>(newAction.state));
    if (isOther) showPlan();
}

void ActionEditor::commit() {
    typingPause.stop();
    if (!command->isModified()) return;
    command->setModified(false);
    StateAction wanted = shownAction;
    wanted.command = command->text().toStdString();
    change(wanted);
}

void ActionEditor::change(const StateAction& wanted) {
    if (wanted == shownAction) return;
    StateAction unreleased = wanted;
    unreleased.confirmed.reset();
    emit edited(unreleased);
}

void ActionEditor::focusCommand() {
    command->setFocus(Qt::OtherFocusReason);
}

ActionEditor::Plan ActionEditor::planOnceReleased() const {
    return shownAction.armed().plan(fileSystem);
}

void ActionEditor::showPlan() {
    const Plan plan = planOnceReleased();
    planLabel->setText(plan ? planLines(*plan).join(u'\n') : qtText(plan.error().text()));
    setRole(planLabel, !plan && !shownAction.command.empty());
    const bool isReleased = shownAction.isArmed();
    release->setText(isReleased ? shown("Freigegeben: läuft von selbst."_text)
                                : shown("Noch nicht freigegeben: läuft nicht."_text));
    setRole(release, !isReleased && plan);
    release->setVisible(isReleased || plan);
    releaseButton->setText(isReleased ? shown("Freigabe zurücknehmen"_text)
                                      : shown("Freigeben …"_text));
    releaseButton->setVisible(isReleased || plan);
    const QString about = qtText(shownAction.command);
    releaseButton->setAccessibleDescription(about);
    removeButton->setAccessibleDescription(about);
    command->setAccessibleDescription(planLabel->text());
}

void ActionEditor::chooseRelease() {
    commit();
    if (shownAction.isArmed()) {
        emit releaseTakenBack(shownAction.id);
    } else if (const Plan plan = planOnceReleased()) {
        emit releaseWanted(shownAction, *plan);
    }
}

void ActionEditor::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    showPlan();
}

void ActionEditor::hideEvent(QHideEvent* event) {
    commit();
    QWidget::hideEvent(event);
}

void ActionEditor::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    fillStates();
    showPlan();
}

void ActionEditor::paintEvent(QPaintEvent*) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colours.hairline);
    painter.setBrush(colours.ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Metrics::rowRadius,
                            Metrics::rowRadius);
}

}  // namespace fleetwise
