#include "platform/peer_program.h"

#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QStringList>
#include <gtest/gtest.h>

#include <sys/prctl.h>

#include <csignal>

namespace fleetwise::testing {

bool isInstalled(const std::string& program) {
    return !QStandardPaths::findExecutable(QString::fromStdString(program)).isEmpty();
}

PeerProgram::PeerProgram(const std::string& program, const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment) {
    QProcessEnvironment variables;
    variables.insert("PATH", qEnvironmentVariable("PATH"));
    for (const auto& [name, value] : environment)
        variables.insert(QString::fromStdString(name), QString::fromStdString(value));
    QStringList words;
    for (const std::string& argument : arguments)
        words.append(QString::fromStdString(argument));
    process.setProcessEnvironment(variables);
    process.setStandardErrorFile(QProcess::nullDevice());
    process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process.start(QString::fromStdString(program), words, QIODevice::ReadOnly);
    EXPECT_TRUE(process.waitForStarted()) << program << " does not start";
}

PeerProgram::~PeerProgram() {
    process.terminate();
    if (process.waitForFinished(5'000)) return;
    process.kill();
    process.waitForFinished();
}

std::string PeerProgram::nextLine() {
    while (!process.canReadLine()) {
        if (process.waitForReadyRead(10'000)) continue;
        ADD_FAILURE() << process.program().toStdString() << " says nothing";
        return {};
    }
    return process.readLine().trimmed().toStdString();
}

}  // namespace fleetwise::testing
