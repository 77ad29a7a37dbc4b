#include "ui/settings/page_labels.h"

#include "ui/base/theme.h"

#include <QLabel>

namespace fleetwise {

QLabel* makePageText(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel* makePageNote(const QString& text) {
    QLabel* label = makePageText(text);
    label->setFont(smallFont(label->font()));
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

}  // namespace fleetwise
