#include "ui/onboarding/example_row.h"

#include "fleet/cost_texts.h"
#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/fleet/fleet_list_model.h"

#include <QPainter>
#include <QPainterPath>

namespace fleetwise {

namespace {

SessionRow madeUpRow() {
    const Date now = dateFromSeconds(1'700'000'000);
    Session session;
    session.id = "example";
    session.name = localised("Rechnungen umbauen"_text);
    session.state = SessionState::decision;
    session.cwd = "/projekte/billing";
    session.gitBranch = "main";
    session.lastMessage = localised("Soll ich die alte Tabelle behalten?"_text);
    session.stateSince = now - Seconds(134);
    session.hostApp = "Terminal";
    session.isLive = true;
    SessionRow row = sessionRow(session, {.now = now}, {.cost = costText({.usd = 0.42})});
    row.contextFill = 0.5;
    return row;
}

}  // namespace

ExampleRow::ExampleRow(QWidget* parent) : QWidget(parent), model(1, 1) {
    const SessionRow example = madeUpRow();
    model.setData(row(), QVariant::fromValue(example), FleetListModel::rowRole);
    model.setData(row(), false, FleetListModel::headingRole);
    delegate.setDensity(Density::comfortable);
    delegate.setCosts({.extent = CostDisplay::Extent::sessions});
    setAccessibleName(example.spoken);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QStyleOptionViewItem ExampleRow::option() const {
    QStyleOptionViewItem item;
    item.initFrom(this);
    item.rect = rect();
    item.font = font();
    item.widget = this;
    item.state = QStyle::State_Enabled;
    return item;
}

QSize ExampleRow::sizeHint() const {
    return delegate.sizeHint(option(), row());
}

void ExampleRow::paintEvent(QPaintEvent* /*event*/) {
    const Palette colours = paletteOf(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colours.hairline);
    painter.setBrush(colours.ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Metrics::rowRadius,
                            Metrics::rowRadius);
    delegate.paint(&painter, option(), row());
}

}  // namespace fleetwise
