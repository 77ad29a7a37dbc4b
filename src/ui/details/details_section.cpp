#include "ui/details/details_section.h"

#include "ui/base/theme.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>

namespace fleetwise {

DetailsSection::DetailsSection(const QString& title, QWidget* parent)
    : QWidget(parent), heading(new QLabel(title)), figure(new QLabel), rows(new QVBoxLayout(this)) {
    setAccessibleName(title);
    for (QLabel* label : {heading, figure}) {
        label->setTextFormat(Qt::PlainText);
        label->setForegroundRole(QPalette::PlaceholderText);
    }
    auto* line = new QHBoxLayout;
    line->setSpacing(Metrics::gap);
    line->addWidget(heading, 1);
    line->addWidget(figure);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(Metrics::grid);
    rows->addLayout(line);
    followFont();
}

void DetailsSection::setNote(const QString& note) {
    figure->setText(note);
}

void DetailsSection::addControl(QWidget* control) {
    static_cast<QBoxLayout*>(rows->itemAt(0)->layout())->addWidget(control);
}

void DetailsSection::add(QWidget* content) {
    rows->addWidget(content);
}

void DetailsSection::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) followFont();
}

void DetailsSection::followFont() {
    heading->setFont(emphasisedFont(smallFont(font())));
    figure->setFont(smallFont(font()));
}

}  // namespace fleetwise
