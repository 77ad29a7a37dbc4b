#include "ui/settings/path_row.h"

#include "ui/base/interface_text.h"
#include "ui/base/theme.h"
#include "ui/settings/page_labels.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QToolButton>

namespace fleetwise {

PathRow::PathRow(const QString& purpose, const QString& path, QWidget* parent) : QWidget(parent) {
    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    if (!purpose.isEmpty()) words->addWidget(makePageNote(purpose));
    QLabel* text = makePageText(path);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    words->addWidget(text);
    auto* copy = new QToolButton;
    copy->setText(shown("Pfad kopieren"_text));
    copy->setFocusPolicy(Qt::StrongFocus);
    copy->setAccessibleName(shown("Pfad kopieren: %@"_text, path.toStdString()));
    connect(copy, &QToolButton::clicked, this,
            [path] { QGuiApplication::clipboard()->setText(path); });
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Metrics::groupGap);
    row->addLayout(words, 1);
    row->addWidget(copy, 0, Qt::AlignVCenter);
}

}  // namespace fleetwise
