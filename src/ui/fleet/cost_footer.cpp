#include "ui/fleet/cost_footer.h"

#include "fleet/cost_texts.h"
#include "ui/base/cost_display.h"
#include "ui/base/interface_text.h"

#include <QStringList>

namespace fleetwise {

namespace {

constexpr int widestMinimum = 300;

}  // namespace

CostFooter::CostFooter(FleetMonitor& givenMonitor, QWidget* parent)
    : ElidedLabel(parent), monitor(givenMonitor) {
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    showCosts();
    monitor.addObserver(*this);
}

CostFooter::~CostFooter() {
    monitor.removeObserver(*this);
}

QSize CostFooter::sizeHint() const {
    return {fontMetrics().horizontalAdvance(firstPart()) + 1, ElidedLabel::sizeHint().height()};
}

QSize CostFooter::minimumSizeHint() const {
    return sizeHint().boundedTo({widestMinimum, sizeHint().height()});
}

void CostFooter::showCosts() {
    const CostDisplay display = costDisplay(monitor.settings());
    if (display.extent == CostDisplay::Extent::nothing) {
        setText({});
        setToolTip({});
        return;
    }
    showTotal(display.basis);
    if (const auto& scan = monitor.costScan()) setText(qtText(scanText(*scan)));
}

void CostFooter::showTotal(MoneyBasis basis) {
    const CostFigures figures = listedFigures();
    const auto& verdict = monitor.priceVerdict();
    setText(qtText(totalText(figures, basis, monitor.priceBook(), verdict)));
    QStringList lines{qtText(costExplanation(figures, basis)),
                      qtText(priceBookText(monitor.priceBook()))};
    if (verdict) lines << qtText(verdictText(*verdict, monitor.priceBook()));
    lines.removeAll(QString());
    setToolTip(plainToolTip(lines.join(u'\n')));
}

CostFigures CostFooter::listedFigures() const {
    std::vector<std::string> ids;
    for (const SessionGroup& group : monitor.groups()) {
        for (const std::size_t member : group.members)
            ids.push_back(monitor.sessions()[member].id);
    }
    return monitor.figures(ids);
}

}  // namespace fleetwise
