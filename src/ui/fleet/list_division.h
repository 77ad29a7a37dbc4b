#pragma once

#include <QSplitter>

namespace fleetwise {

/// The list and the pane beside it, divided by a hairline that can be dragged. The pane keeps its
/// width, and the list gets what is left.
class ListDivision final : public QSplitter {
    Q_OBJECT

public:
    /// As wide as the pane asks for, until it is dragged to another width.
    ListDivision(QWidget* list, QWidget* pane, QWidget* parent = nullptr);

    /// 0 while the pane has never had a width of its own.
    int paneWidth() const { return chosenWidth; }
    void setPaneWidth(int width) { chosenWidth = width; }

    void setPaneVisible(bool isVisible);

protected:
    QSplitterHandle* createHandle() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    int chosenWidth = 0;
};

}  // namespace fleetwise
