#pragma once

#include <QLabel>

namespace fleetwise {

/// Plain text over as many lines as it takes, or so many at most. Paths and ids break where a line
/// ends, so that it may be as narrow as can be.
class WrappedLabel final : public QLabel {
    Q_OBJECT

public:
    explicit WrappedLabel(QWidget* parent = nullptr);

    /// 0: all.
    void setMostLines(int lines);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int mostLines = 0;
};

}  // namespace fleetwise
