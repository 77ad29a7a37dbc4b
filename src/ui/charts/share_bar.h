#pragma once

#include <QWidget>

namespace fleetwise {

/// A slim bar that is full at 1. Says nothing by itself: the words stand beside it.
class ShareBar final : public QWidget {
public:
    explicit ShareBar(QWidget* parent = nullptr);

    /// `isFaint`: the share is not to be relied on.
    void setShare(double newShare, bool isFaint);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double share = 0;
    bool isFaint = false;
};

}  // namespace fleetwise
