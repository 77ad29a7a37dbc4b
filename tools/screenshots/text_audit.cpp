#include "screenshots/text_audit.h"

#include "localisation/localisation.h"
#include "localisation/pseudo_language.h"
#include "ui/base/elided_label.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QToolButton>

namespace fleetwise::screenshots {

namespace {

QString plainText(QString text) {
    static const QRegularExpression markup(QStringLiteral("<[^>]*>"));
    static const QRegularExpression mnemonic(QStringLiteral("&(?=\\w)"));
    return text.remove(markup).remove(mnemonic);
}

QString placeOf(const QWidget& widget) {
    QStringList names;
    for (const QWidget* each = &widget; each != nullptr; each = each->parentWidget())
        names.prepend(QString::fromLatin1(each->metaObject()->className()).section(u':', -1));
    return names.join(u'/');
}

/// Half a pixel of rounding and the shadow of a letter count for nothing.
constexpr int tolerance = 2;

bool isCut(const QLabel& label) {
    if (dynamic_cast<const ElidedLabel*>(&label) != nullptr || label.text().isEmpty()) return false;
    const QRect room = label.contentsRect();
    if (label.hasHeightForWidth())
        return label.heightForWidth(label.width()) > label.height() + tolerance;
    int widest = 0;
    for (const QString& line : plainText(label.text()).split(u'\n'))
        widest = std::max(widest, label.fontMetrics().horizontalAdvance(line));
    return widest > room.width() + tolerance ||
           label.fontMetrics().height() > room.height() + 2 * tolerance;
}

bool isCut(const QAbstractButton& button) {
    if (button.text().isEmpty()) return false;
    const auto* tool = dynamic_cast<const QToolButton*>(&button);
    if (tool != nullptr && tool->toolButtonStyle() == Qt::ToolButtonIconOnly &&
        !tool->icon().isNull()) {
        return false;
    }
    return plainText(button.text()).size() > 1 &&
           button.minimumSizeHint().width() > button.width() + tolerance;
}

/// Part of it lies beyond the edge of what it is in; what is scrolled away altogether, or up and
/// down, does not count.
bool isClipped(const QWidget& widget) {
    const QRect seen = widget.visibleRegion().boundingRect();
    return !seen.isEmpty() && seen.width() + tolerance < widget.width();
}

/// All texts of the interface that the widget shows or speaks.
QStringList textsOf(const QWidget& widget) {
    QStringList texts{widget.toolTip(), widget.accessibleName(), widget.windowTitle()};
    if (const auto* label = dynamic_cast<const QLabel*>(&widget)) texts << label->text();
    if (const auto* button = dynamic_cast<const QAbstractButton*>(&widget)) texts << button->text();
    if (const auto* edit = dynamic_cast<const QLineEdit*>(&widget))
        texts << edit->placeholderText();
    if (const auto* box = dynamic_cast<const QComboBox*>(&widget)) {
        for (int item = 0; item < box->count(); ++item)
            texts << box->itemText(item);
    }
    if (const auto* header = dynamic_cast<const QHeaderView*>(&widget)) {
        for (int section = 0; section < header->count(); ++section) {
            texts << header->model()
                         ->headerData(section, header->orientation(), Qt::DisplayRole)
                         .toString();
        }
    }
    return texts;
}

/// Whether some words stand in it that are not figures, units or in the brackets of the
/// pseudo-language.
bool isUntranslated(QString text) {
    static const QRegularExpression translated(QStringLiteral("\\[[^\\[\\]]*\\]"));
    static const QRegularExpression word(QStringLiteral("\\p{L}{4,}"));
    while (text.contains(translated))
        text.remove(translated);
    return text.contains(word);
}

}  // namespace

std::vector<TextFault> auditTexts(const QWidget& window,
                                  const std::function<bool(const QString&)>& isData) {
    const bool isPseudo = interfaceLanguageInUse() == pseudoLanguage;
    std::vector<TextFault> faults;
    QList<QWidget*> widgets = window.findChildren<QWidget*>();
    widgets.prepend(const_cast<QWidget*>(&window));
    for (const QWidget* widget : widgets) {
        if (!widget->isVisible()) continue;
        const auto* label = dynamic_cast<const QLabel*>(widget);
        const auto* button = dynamic_cast<const QAbstractButton*>(widget);
        const bool hasText = label != nullptr || button != nullptr;
        const bool lacksRoom = (label != nullptr && isCut(*label)) ||
                               (button != nullptr && isCut(*button)) ||
                               (hasText && isClipped(*widget));
        if (lacksRoom) {
            faults.push_back({TextFault::Kind::cut,
                              label != nullptr ? label->text() : button->text(), placeOf(*widget)});
        }
        if (!isPseudo) continue;
        for (const QString& text : textsOf(*widget)) {
            if (isUntranslated(plainText(text)) && !isData(text))
                faults.push_back({TextFault::Kind::untranslated, text, placeOf(*widget)});
        }
    }
    return faults;
}

}  // namespace fleetwise::screenshots
