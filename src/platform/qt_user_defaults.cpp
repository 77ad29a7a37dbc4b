#include "platform/qt_user_defaults.h"

#include <QSettings>
#include <QStringList>

namespace fleetwise {

namespace {

QString qtKey(const std::string& key) {
    return QString::fromStdString(key);
}

QVariant asVariant(const Json& value) {
    if (value.is_boolean()) return value.get<bool>();
    if (value.is_number_integer()) return QVariant::fromValue(qlonglong{value.get<std::int64_t>()});
    if (value.is_number()) return value.get<double>();
    if (value.is_string()) return QString::fromStdString(value.get<std::string>());
    return QString::fromStdString(encodeJson(value));
}

Json asJson(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::Bool:
            return value.toBool();
        case QMetaType::Int:
        case QMetaType::LongLong:
            return value.toLongLong();
        case QMetaType::Double:
            return value.toDouble();
        case QMetaType::QStringList: {
            // Unquoted commas in a hand-edited INI file read as a list.
            Json texts = Json::array();
            for (const QString& text : value.toStringList())
                texts.push_back(text.toStdString());
            return texts;
        }
        default:
            return value.toString().toStdString();
    }
}

}  // namespace

QtUserDefaults::QtUserDefaults() : QtUserDefaults(QStringLiteral("Fleetwise")) {}

QtUserDefaults::QtUserDefaults(const QString& name)
    : settings(
          std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, name, name)) {
    settings->setFallbacksEnabled(false);
}

QtUserDefaults QtUserDefaults::ofPreviousName() {
    return QtUserDefaults(QStringLiteral("fleetwise"));
}

QtUserDefaults::~QtUserDefaults() = default;

void QtUserDefaults::set(const std::string& key, const Json& value) {
    settings->setValue(qtKey(key), asVariant(value));
}

void QtUserDefaults::remove(const std::string& key) {
    settings->remove(qtKey(key));
}

std::optional<Json> QtUserDefaults::stored(const std::string& key) const {
    const QVariant value = settings->value(qtKey(key));
    if (!value.isValid()) return {};
    return asJson(value);
}

}  // namespace fleetwise
