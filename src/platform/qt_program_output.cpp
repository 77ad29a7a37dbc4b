#include "platform/qt_program_output.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QStringList>

namespace fleetwise {

tl::expected<std::string, ProgramFailure> QtProgramOutput::run(
    const std::vector<std::string>& command, std::chrono::milliseconds limit) {
    constexpr qint64 maximumBytes = 1 << 20;
    if (command.empty()) return tl::unexpected(ProgramFailure::failed);
    QStringList arguments;
    for (std::size_t index = 1; index < command.size(); ++index)
        arguments.append(QString::fromStdString(command[index]));
    const QDeadlineTimer deadline(limit);
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QString::fromStdString(command.front()), arguments, QIODevice::ReadOnly);
    while (process.state() != QProcess::NotRunning) {
        const bool hasNews = process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
        const bool tooMuch = process.bytesAvailable() > maximumBytes;
        if (tooMuch || (!hasNews && deadline.hasExpired())) {
            process.kill();
            process.waitForFinished();
            return tl::unexpected(ProgramFailure::noAnswer);
        }
    }
    if (process.error() == QProcess::FailedToStart ||
        process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        return tl::unexpected(ProgramFailure::failed);
    }
    return process.readAllStandardOutput().toStdString();
}

}  // namespace fleetwise
