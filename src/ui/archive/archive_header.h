#pragma once

#include <QHeaderView>

namespace fleetwise {

/// The headings above the archive: quiet, in line with the cells, the order shown by an arrow.
class ArchiveHeader final : public QHeaderView {
    Q_OBJECT

public:
    explicit ArchiveHeader(QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintSection(QPainter* painter, const QRect& area, int section) const override;
};

}  // namespace fleetwise
