#include "app/environment.h"

#include <QCoreApplication>
#include <QStandardPaths>

#include <cstdlib>
#include <filesystem>

namespace fleetwise {

std::optional<std::string> environmentVariable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    if (value == nullptr) return {};
    return value;
}

std::optional<std::string> findProgram(const std::string& program) {
    const QString found = QStandardPaths::findExecutable(QString::fromStdString(program));
    if (found.isEmpty()) return {};
    return found.toStdString();
}

std::optional<std::string> programResource(const std::string& name) {
    const std::filesystem::path folder = QCoreApplication::applicationDirPath().toStdString();
    const std::filesystem::path resource = folder.parent_path() / name;
    std::error_code ignored;
    if (!std::filesystem::exists(resource, ignored)) return {};
    return resource.string();
}

std::optional<std::string> bundledHook() {
    if (auto beside = programResource("bin/fleetwise-hook")) return beside;
    return programResource("lib/fleetwise/fleetwise-hook");
}

}  // namespace fleetwise
