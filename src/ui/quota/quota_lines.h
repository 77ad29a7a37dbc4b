#pragma once

#include "ui/quota/quota_figures.h"
#include "ui/quota/quota_painting.h"

#include <QWidget>

namespace fleetwise {

/// One slim line for each window that is known, with a bar under it. Takes no room without any.
class QuotaLines final : public QWidget {
public:
    explicit QuotaLines(QWidget* parent = nullptr);

    void setFigures(const QuotaFigures& figures);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QuotaPlaces places() const;

    QuotaFigures figures;
};

}  // namespace fleetwise
