#include "ui/details/detail_list.h"

#include "ui/base/interface_text.h"
#include "ui/base/state_glyph.h"
#include "ui/base/theme.h"
#include "ui/details/link_button.h"
#include "ui/details/wrapped_label.h"

#include <QBoxLayout>
#include <QEvent>
#include <QGridLayout>
#include <QPainter>

#include <algorithm>

namespace fleetwise {

namespace {

constexpr std::size_t mostRows = 10;
constexpr int mostTextLines = 4;

}  // namespace

/// The sign in front of a row, in the middle of its first line.
class DetailSign final : public QWidget {
public:
    void setSign(SessionState newSign, const QString& name) {
        sign = newSign;
        setAccessibleName(name);
        setToolTip(name);
        update();
    }
    QSize sizeHint() const override {
        return {Metrics::glyphSide, std::max(Metrics::glyphSide, fontMetrics().lineSpacing())};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        paintStateGlyph(painter, QRectF(rect()), sign, stateColour(sign, appearanceOf(palette())));
    }

private:
    SessionState sign = SessionState::unknown;
};

class DetailLine final : public QWidget {
public:
    DetailLine()
        : sign(new DetailSign),
          text(new WrappedLabel),
          figure(new QLabel),
          detail(new WrappedLabel),
          copy(new CopyButton) {
        text->setMostLines(mostTextLines);
        detail->setMostLines(mostTextLines);
        figure->setTextFormat(Qt::PlainText);
        for (QLabel* label : {figure, static_cast<QLabel*>(detail)})
            label->setForegroundRole(QPalette::PlaceholderText);
        auto* grid = new QGridLayout(this);
        grid->setContentsMargins(0, 0, 0, 0);
        grid->setHorizontalSpacing(Metrics::gap);
        grid->setVerticalSpacing(0);
        grid->addWidget(sign, 0, 0, Qt::AlignTop);
        grid->addWidget(text, 0, 1);
        grid->addWidget(figure, 0, 2, Qt::AlignRight | Qt::AlignTop);
        grid->addWidget(detail, 1, 1, 1, 2);
        grid->addWidget(copy, 0, 3, 2, 1, Qt::AlignVCenter);
        grid->setColumnStretch(1, 1);
        followFont();
    }

    void setRow(const DetailRow& row) {
        if (shownRow == row) return;
        shownRow = row;
        sign->setVisible(row.sign.has_value());
        if (row.sign) sign->setSign(*row.sign, row.signName);
        text->setText(row.text);
        for (QLabel* label : {figure, static_cast<QLabel*>(detail)})
            label->setVisible(!(label == figure ? row.figure : row.detail).isEmpty());
        figure->setText(row.figure);
        detail->setText(row.detail);
        copy->setVisible(!row.copied.isEmpty());
        copy->setCopied(row.copied, row.copyName);
        setToolTip(plainToolTip(row.tooltip));
    }

protected:
    void changeEvent(QEvent* event) override {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::FontChange) followFont();
    }

private:
    void followFont() {
        for (QLabel* label : {figure, static_cast<QLabel*>(detail)})
            label->setFont(smallFont(font()));
        // In the middle of the first line, as the sign.
        figure->setMinimumHeight(fontMetrics().lineSpacing());
    }

    std::optional<DetailRow> shownRow;
    DetailSign* sign;
    WrappedLabel* text;
    QLabel* figure;
    WrappedLabel* detail;
    CopyButton* copy;
};

DetailList::DetailList(QWidget* parent)
    : QWidget(parent), column(new QVBoxLayout(this)), more(new LinkButton) {
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Metrics::grid);
    column->addWidget(more, 0, Qt::AlignLeft);
    connect(more, &QToolButton::clicked, this, [this] {
        showsAll = !showsAll;
        showLines();
    });
    more->hide();
}

void DetailList::setRows(const std::vector<DetailRow>& newRows) {
    if (shownRows == newRows) return;
    shownRows = newRows;
    showLines();
}

void DetailList::showLines() {
    const bool isLong = shownRows.size() > mostRows;
    const std::size_t count = isLong && !showsAll ? mostRows : shownRows.size();
    while (lines.size() < count) {
        lines.push_back(new DetailLine);
        column->insertWidget(static_cast<int>(lines.size()) - 1, lines.back());
    }
    for (std::size_t number = 0; number < lines.size(); ++number) {
        if (number < count) lines[number]->setRow(shownRows[number]);
        lines[number]->setVisible(number < count);
    }
    more->setVisible(isLong);
    more->setText(showsAll ? shown("Weniger"_text)
                           : shown("Alle %d zeigen"_text, shownRows.size()));
}

}  // namespace fleetwise
