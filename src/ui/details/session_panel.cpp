#include "ui/details/session_panel.h"

#include "foundation/text.h"
#include "monitor/fleet_monitor.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/charts/share_bar.h"
#include "ui/details/detail_list.h"
#include "ui/details/detail_rows.h"
#include "ui/details/details_section.h"
#include "ui/details/folded_text.h"
#include "ui/details/link_button.h"
#include "ui/details/session_header.h"
#include "ui/details/timeline_bar.h"

#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace fleetwise {

SessionPanel::SessionPanel(FleetMonitor& givenMonitor, QWidget* parent)
    : QWidget(parent), monitor(givenMonitor), header(new SessionHeader(monitor)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Metrics::groupGap);
    column->addWidget(header);
    connect(header, &SessionHeader::menuWanted, this, &SessionPanel::menuWanted);
    message = addText(shown("Letzte Nachricht"_text));
    prompt = addText(shown("Prompt"_text));
    tasks = addList(shown("Aufgaben"_text));
    addGoal();
    background = addList(shown("Hintergrund"_text));
    subagents = addList(shown("Unteragenten"_text));
    addCourse();
    addStatistics();
    costs = addList(shown("Tokens und Kosten"_text));
    places = addList(shown("Pfade"_text));
    column->addStretch(1);
}

DetailsSection* SessionPanel::addSection(const QString& title) {
    auto* section = new DetailsSection(title);
    layout()->addWidget(section);
    return section;
}

FoldedText* SessionPanel::addText(const QString& title) {
    auto* text = new FoldedText(title);
    addSection(title)->add(text);
    return text;
}

SessionPanel::ListSection SessionPanel::addList(const QString& title) {
    const ListSection made{.section = addSection(title), .list = new DetailList};
    made.section->add(made.list);
    return made;
}

void SessionPanel::addGoal() {
    goal = addList(shown("Ziel"_text));
    goalBar = new ShareBar;
    goal.section->add(goalBar);
    auto* edit = new LinkButton(shown("Ändern …"_text));
    edit->setAccessibleName(shown("Ziel ändern"_text));
    goal.section->addControl(edit);
    connect(edit, &QToolButton::clicked, this, [this] { emit goalWanted(shownId); });
}

void SessionPanel::addCourse() {
    course = {.section = addSection(shown("Verlauf"_text)), .list = new DetailList};
    timeline = new TimelineBar;
    course.section->add(timeline);
    course.section->add(course.list);
}

void SessionPanel::addStatistics() {
    statistics = addSection(shown("Statistik"_text));
    context = new DetailList;
    contextBar = new ShareBar;
    counts = new DetailList;
    for (QWidget* widget : {static_cast<QWidget*>(context), static_cast<QWidget*>(contextBar),
                            static_cast<QWidget*>(counts)})
        statistics->add(widget);
}

void SessionPanel::setSession(const Session& session, const SessionDetails& details) {
    const Date now = monitor.clock();
    header->setSession(session);
    showTexts(session, details);
    showRows(tasks, taskRows(details.tasks));
    const auto done = std::ranges::count(details.tasks, TaskListStore::Status::completed,
                                         &SessionDetails::Task::status);
    tasks.section->setNote(QStringLiteral("%1/%2").arg(done).arg(details.tasks.size()));
    showGoal(session.id);
    showRows(background, backgroundRows(session, now, monitor.calendar()));
    showRows(subagents, subagentRows(details.subagents, session.subagentCount, now));
    showTimeline(session.id);
    showStatistics(session);
    showRows(costs, costRows(monitor, session.id));
    const bool isAnother = std::exchange(shownId, session.id) != session.id;
    if (std::exchange(resumedIn, session.cwd) != session.cwd || isAnother) {
        resumeText = monitor.resumeTextOfPast(session).value_or(std::string());
    }
    showRows(places, placeRows(session, details, resumeText, monitor.home()));
}

void SessionPanel::showTexts(const Session& session, const SessionDetails& details) {
    const auto subject =
        session.id == shownId ? FoldedText::Subject::same : FoldedText::Subject::another;
    const auto show = [&](FoldedText* where, const std::optional<std::string>& text) {
        where->setText(text ? qtText(*text) : QString(), subject);
        where->parentWidget()->setVisible(text.has_value());
    };
    show(message, details.message);
    show(prompt, details.prompt);
}

void SessionPanel::showTimeline(const std::string& id) {
    const auto& begun = monitor.timeline(id);
    const auto spans = timelineSpans(begun, std::max(monitor.clock(), monitor.lastRefresh()));
    timeline->setSpans(spans, monitor.calendar());
    // A single state says no more than the header.
    course.section->setVisible(spans.size() > 1);
    course.list->setRows(durationRows(spans));
}

void SessionPanel::showGoal(const std::string& id) {
    showRows(goal, goalRows(monitor, id));
    const auto current = monitor.goal(id);
    showShare(goalBar, current ? current->share() : std::nullopt);
}

void SessionPanel::showStatistics(const Session& session) {
    context->setRows(contextRows(session));
    counts->setRows(countRows(session));
    showShare(contextBar, session.contextFill({}));
    statistics->setVisible(!context->rows().empty() || !counts->rows().empty());
}

void SessionPanel::showRows(const ListSection& where, const std::vector<DetailRow>& rows) {
    where.list->setRows(rows);
    where.section->setVisible(!rows.empty());
}

void SessionPanel::showShare(ShareBar* bar, std::optional<double> share) {
    bar->setShare(share.value_or(0), false);
    bar->setVisible(share.has_value());
}

}  // namespace fleetwise
