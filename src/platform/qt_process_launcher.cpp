#include "platform/qt_process_launcher.h"

#include <QProcess>
#include <QStringList>

namespace fleetwise {

bool QtProcessLauncher::startDetached(const std::vector<std::string>& command) {
    if (command.empty()) return false;
    QStringList arguments;
    for (std::size_t index = 1; index < command.size(); ++index)
        arguments.append(QString::fromStdString(command[index]));
    QProcess process;
    process.setProgram(QString::fromStdString(command.front()));
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

}  // namespace fleetwise
