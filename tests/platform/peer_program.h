#pragma once

#include <QProcess>

#include <map>
#include <string>
#include <vector>

namespace fleetwise::testing {

/// Whether a program of this name is installed.
bool isInstalled(const std::string& program);

/// A program that a test talks to. It has only the given environment beside PATH, and ends with
/// this, or with the tests should they die.
class PeerProgram {
public:
    PeerProgram(const std::string& program, const std::vector<std::string>& arguments,
                const std::map<std::string, std::string>& environment);
    PeerProgram(const PeerProgram&) = delete;
    PeerProgram& operator=(const PeerProgram&) = delete;
    ~PeerProgram();

    /// The next line that it prints, without the line feed. Waits for it; fails the test where none
    /// comes.
    std::string nextLine();

private:
    QProcess process;
};

}  // namespace fleetwise::testing
