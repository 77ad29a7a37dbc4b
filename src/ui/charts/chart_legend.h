#pragma once

#include <QString>
#include <QWidget>

#include <vector>

namespace fleetwise {

/// Which colour means what, with a figure each. Wraps where it is narrow.
class ChartLegend final : public QWidget {
public:
    struct Entry {
        QString name;
        QString figure;

        bool operator==(const Entry&) const = default;
    };

    explicit ChartLegend(QWidget* parent = nullptr);

    /// One for each series, in their order. `hasRest` is as in DayBarsData.
    void setEntries(std::vector<Entry> newEntries, bool hasRest);

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text(const Entry& entry) const;
    /// Where the entries stand at this width.
    std::vector<QRect> places(int width) const;

    std::vector<Entry> entries;
    bool hasRest = false;
};

}  // namespace fleetwise
