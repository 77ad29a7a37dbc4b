#include "ui/settings/actions_page.h"

#include "foundation/text.h"
#include "foundation/uuid.h"
#include "ui/base/interface_text.h"
#include "ui/base/plain_table.h"
#include "ui/base/theme.h"
#include "ui/settings/action_editor.h"
#include "ui/settings/action_log_model.h"
#include "ui/settings/page_labels.h"
#include "ui/settings/release_dialog.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace fleetwise {

namespace {

constexpr int visibleLogRows = 10;

}  // namespace

ActionsPage::ActionsPage(FleetMonitor& givenMonitor, const SettingsServices& services,
                         StateAction::FileSystem givenFileSystem, QWidget* parent)
    : SettingsPage(givenMonitor, parent),
      runner(services.actions),
      fileSystem(std::move(givenFileSystem)),
      stored(givenMonitor),
      logModel(new ActionLogModel(givenMonitor, services.now, this)) {
    addHeading(name());
    addNote(shown(
        "Ein Programm kann laufen, sobald eine Sitzung einen Zustand erreicht. Es läuft erst, wenn du genau diesen Befehl freigegeben hast."_text));
    addWide(makeList());
    connect(addButton(shown("Aktion hinzufügen"_text)), &QPushButton::clicked, this,
            &ActionsPage::addAction);
    addLog();
    addStretch();
    onRefresh([this] { showActions(); });
    onRefresh([this] { showLog(); });
    refresh();
}

QString ActionsPage::name() const {
    return shown("Aktionen"_text);
}

QWidget* ActionsPage::makeList() {
    auto* content = new QWidget;
    list = new QVBoxLayout(content);
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(Metrics::gap);
    emptyList = makePageText(shown("Noch keine Aktion."_text));
    list->addWidget(emptyList);
    return content;
}

void ActionsPage::addLog() {
    addHeading(shown("Protokoll"_text));
    emptyLog = addNote(shown(
        "Noch lief keine Aktion. Hier steht dann, was gestartet wurde und wie es endete."_text));
    log = new PlainTable(shown("Protokoll"_text), visibleLogRows);
    log->setModel(logModel);
    log->setSelectionBehavior(QAbstractItemView::SelectRows);
    log->setIconSize({Metrics::glyphSide, Metrics::glyphSide});
    for (const int column :
         {ActionLogModel::session, ActionLogModel::program, ActionLogModel::ending})
        log->horizontalHeader()->setSectionResizeMode(column, QHeaderView::Stretch);
    addWide(log);
}

ActionEditor* ActionsPage::makeEditor() {
    auto* editor = new ActionEditor(fileSystem);
    connect(editor, &ActionEditor::edited, this, &ActionsPage::takeEdited);
    connect(editor, &ActionEditor::releaseWanted, this, &ActionsPage::askForRelease);
    connect(editor, &ActionEditor::releaseTakenBack, this, [this](const std::string& id) {
        auto action = stored.find(id);
        if (!action) return;
        action->confirmed.reset();
        stored.put(*action);
        refresh();
    });
    connect(editor, &ActionEditor::removalWanted, this, [this](const std::string& id) {
        if (draft && draft->id == id) draft.reset();
        stored.remove(id);
        refresh();
    });
    keepFromWheel(editor);
    return editor;
}

void ActionsPage::showActions() {
    auto actions = stored.all();
    if (draft) actions.push_back(*draft);
    std::vector<ActionEditor*> leftOver = std::exchange(editors, {});
    for (const StateAction& action : actions) {
        const auto same = std::ranges::find(
            leftOver, action.id, [](const ActionEditor* editor) { return editor->action().id; });
        ActionEditor* editor = nullptr;
        if (same != leftOver.end()) {
            editor = *same;
            leftOver.erase(same);
        } else {
            editor = makeEditor();
        }
        const int place = static_cast<int>(editors.size());
        if (list->indexOf(editor) != place) list->insertWidget(place, editor);
        // At once, so that it can get the focus.
        editor->show();
        editor->setAction(action);
        editors.push_back(editor);
    }
    for (ActionEditor* editor : leftOver) {
        list->removeWidget(editor);
        editor->hide();
        editor->deleteLater();
    }
    emptyList->setVisible(actions.empty());
}

void ActionsPage::showLog() {
    logModel->update(runner.log());
    log->setVisible(logModel->rowCount() > 0);
    emptyLog->setVisible(logModel->rowCount() == 0);
}

void ActionsPage::addAction() {
    if (!draft) draft = StateAction{.id = randomUuid(), .state = SessionState::waiting};
    refresh();
    editors.back()->focusCommand();
}

void ActionsPage::takeEdited(const StateAction& action) {
    const bool isDraft = draft && draft->id == action.id;
    if (isDraft && trimmed(action.command).empty()) {
        draft = action;
    } else if (isDraft || stored.find(action.id)) {
        if (isDraft) draft.reset();
        stored.put(action);
    } else {
        return;  // removed meanwhile
    }
    refresh();
}

void ActionsPage::askForRelease(const StateAction& action, const StateAction::Plan& plan) {
    auto* dialog = new ReleaseDialog(action, plan, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, action] {
        // Only what the user has seen is released.
        if (stored.find(action.id) == action) stored.put(action.armed());
        refresh();
    });
    dialog->open();
}

}  // namespace fleetwise
