#include "ui/settings/literal_text.h"

#include <QChar>

namespace fleetwise {

namespace {

constexpr int longestUnbroken = 24;
constexpr char16_t zeroWidthSpace = u'\u200B';

bool isUnseen(char32_t character) {
    switch (QChar::category(character)) {
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Other_Surrogate:
        case QChar::Other_PrivateUse:
        case QChar::Other_NotAssigned:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            return false;
    }
}

QString codeOf(char32_t character) {
    constexpr int hexadecimal = 16;
    return QStringLiteral("⟨U+%1⟩")
        .arg(static_cast<uint>(character), 4, hexadecimal, QLatin1Char('0'))
        .toUpper();
}

}  // namespace

QString literalText(const std::string& text) {
    QString literal;
    int unbroken = 0;
    for (const char32_t character : QString::fromStdString(text).toStdU32String()) {
        literal += isUnseen(character) ? codeOf(character) : QString::fromUcs4(&character, 1);
        const bool isBreak = character == U'/' && unbroken >= longestUnbroken / 2;
        unbroken = QChar::isSpace(character) ? 0 : unbroken + 1;
        if (!isBreak && unbroken < longestUnbroken) continue;
        literal += QChar(zeroWidthSpace);
        unbroken = 0;
    }
    return literal;
}

}  // namespace fleetwise
