#include "platform/notify_call.h"

#include "foundation/brand.h"
#include "foundation/text.h"
#include "localisation/localisation.h"

#include <QVariantMap>

#include <string_view>

namespace fleetwise {

namespace {

constexpr std::size_t titleCharacters = 200;
constexpr std::size_t lineCharacters = 500;

QString oneLine(std::string_view text, std::size_t limit) {
    return QString::fromStdString(printable(shortenedText(trimmed(text), limit)));
}

QString bodyText(const Notification& notification, const QStringList& capabilities) {
    if (!capabilities.contains(QLatin1String("body"))) return {};
    QStringList lines{oneLine(notification.subtitle, lineCharacters),
                      oneLine(notification.body, lineCharacters)};
    lines.removeAll({});
    const QString text = lines.join(u'\n');
    const bool isMarkup = capabilities.contains(QLatin1String("body-markup"));
    return isMarkup ? text.toHtmlEscaped() : text;
}

QStringList actions(const Notification& notification, const QStringList& capabilities) {
    if (notification.sessionId.empty() || !capabilities.contains(QLatin1String("actions"))) {
        return {};
    }
    const bool resumes = notification.button == NotificationAction::resume;
    return {QLatin1String(clickKey), QString::fromStdString(localised("Fenster nach vorn"_text)),
            buttonKey(notification.button),
            QString::fromStdString(resumes ? localised("Fortsetzen"_text)
                                           : localised("In Fleetwise zeigen"_text))};
}

QVariantMap hints(const Notification& notification) {
    constexpr uchar normalUrgency = 1;
    QVariantMap hints{
        {QStringLiteral("desktop-entry"), QStringLiteral("fleetwise")},
        {QStringLiteral("urgency"), QVariant::fromValue(normalUrgency)},
    };
    if (notification.hasSound) {
        hints.insert(QStringLiteral("sound-name"), QStringLiteral("message-new-instant"));
    } else {
        hints.insert(QStringLiteral("suppress-sound"), true);
    }
    return hints;
}

}  // namespace

QVariantList notifyArguments(const Notification& notification, const QStringList& capabilities,
                             uint replaced) {
    constexpr int usualTime = -1;
    return {QString::fromUtf8(Brand::bundleName.data(), Brand::bundleName.size()),
            replaced,
            QStringLiteral("fleetwise"),
            oneLine(notification.title, titleCharacters),
            bodyText(notification, capabilities),
            actions(notification, capabilities),
            hints(notification),
            usualTime};
}

QString buttonKey(NotificationAction button) {
    return button == NotificationAction::resume ? QStringLiteral("resume") : QStringLiteral("open");
}

}  // namespace fleetwise
