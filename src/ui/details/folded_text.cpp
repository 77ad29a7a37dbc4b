#include "ui/details/folded_text.h"

#include "ui/base/interface_text.h"
#include "ui/details/link_button.h"
#include "ui/details/text_measure.h"

#include <QBoxLayout>
#include <QScrollBar>
#include <QWheelEvent>

namespace fleetwise {

namespace {

constexpr int foldedLines = 6;

}  // namespace

TextBlock::TextBlock(QWidget* parent) : QTextEdit(parent) {
    setFrameShape(NoFrame);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTabChangesFocus(true);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    // Not fixed: the height of the hint is that of a width that it may no longer have.
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void TextBlock::setText(const QString& text) {
    if (shownText == text) return;
    shownText = text;
    setPlainText(text);
    updateGeometry();
}

void TextBlock::setMostLines(int lines) {
    mostLines = lines;
    verticalScrollBar()->setValue(0);
    updateGeometry();
}

int TextBlock::lineCount(int width) const {
    return WrappedText(shownText, font(), width).lineCount();
}

QSize TextBlock::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 30, heightForWidth(width())};
}

QSize TextBlock::minimumSizeHint() const {
    return {0, fontMetrics().lineSpacing()};
}

int TextBlock::heightForWidth(int width) const {
    return WrappedText(shownText, font(), width).height(mostLines);
}

/// The whole page is scrolled instead.
void TextBlock::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

FoldedText::FoldedText(const QString& name, QWidget* parent)
    : QWidget(parent), block(new TextBlock), more(new LinkButton) {
    block->setAccessibleName(name);
    block->setMostLines(foldedLines);
    more->hide();
    connect(more, &QToolButton::clicked, this, [this] { setUnfolded(!isUnfolded); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(block);
    layout->addWidget(more, 0, Qt::AlignLeft);
    setUnfolded(false);
}

void FoldedText::setText(const QString& text, Subject subject) {
    if (subject == Subject::another && isUnfolded) setUnfolded(false);
    if (shownText == text) return;
    shownText = text;
    block->setText(text);
    followWidth();
}

void FoldedText::setUnfolded(bool isToBe) {
    isUnfolded = isToBe;
    block->setMostLines(isUnfolded ? 0 : foldedLines);
    more->setText(isUnfolded ? shown("Weniger"_text) : shown("Mehr"_text));
}

void FoldedText::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    followWidth();
}

void FoldedText::followWidth() {
    more->setVisible(block->lineCount(width()) > foldedLines);
}

}  // namespace fleetwise
