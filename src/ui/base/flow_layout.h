#pragma once

#include <QLayout>

#include <memory>
#include <vector>

namespace fleetwise {

/// Items side by side, each as large as it asks for, in as many rows as the width needs. Hidden
/// widgets take no room.
class FlowLayout final : public QLayout {
public:
    /// `side` is the one that rows keep to: Qt::AlignLeft or Qt::AlignRight.
    explicit FlowLayout(Qt::Alignment givenSide = Qt::AlignLeft, QWidget* parent = nullptr);
    ~FlowLayout() override;

    void insertWidget(int index, QWidget* widget);

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(items.size()); }
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

private:
    struct Row {
        std::vector<QLayoutItem*> items;
        QSize size;
    };

    std::vector<Row> rows(int width) const;

    std::vector<std::unique_ptr<QLayoutItem>> items;
    Qt::Alignment side;
};

}  // namespace fleetwise
