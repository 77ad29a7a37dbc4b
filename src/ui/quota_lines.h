#pragma once

#include <QString>
#include <QWidget>

#include <optional>

namespace fleetwise {

/// What is known of the two quota windows.
struct QuotaFigures {
    struct Window {
        double used = 0;  ///< share of the quota, 1 is all of it
        std::optional<double>
            projected;  ///< the share at the window's end if all goes on like this
        QString reset;  ///< when it starts anew, in words: "noch 1 h 50 min", "Mi 13:27"

        bool operator==(const Window&) const = default;
    };

    std::optional<Window> fiveHour;
    std::optional<Window> sevenDay;
    QString age;  ///< how old the figures are, in words, where they are too old to rely on

    bool operator==(const QuotaFigures&) const = default;
};

/// One slim line for each window that is known, with a bar under it. Takes no room without any.
class QuotaLines final : public QWidget {
public:
    explicit QuotaLines(QWidget* parent = nullptr);

    void setFigures(const QuotaFigures& figures);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int lineHeight() const;

    QuotaFigures figures;
};

}  // namespace fleetwise
