#pragma once

#include "ui/mark/mark_settings.h"

#include <QWidget>

namespace fleetwise {

/// The mark with made-up figures, large and in the sizes that trays ask for.
class MarkPreview final : public QWidget {
    Q_OBJECT

public:
    explicit MarkPreview(QWidget* parent = nullptr);

    void setChoices(const MarkChoices& newChoices);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    MarkChoices choices;
};

}  // namespace fleetwise
