#pragma once

#include "foundation/file_descriptor.h"

#include <functional>
#include <memory>
#include <string>

class QLocalServer;
class QLocalSocket;

namespace fleetwise {

/// What became of a start of the application.
enum class StartOutcome {
    first,        ///< no other instance runs: this one is the application now
    handedOver,   ///< another instance runs and took the message
    unreachable,  ///< another instance runs but did not answer within two seconds
};

/// Lets one instance of the application run for one lock file, and later starts tell it what they
/// were started for. The lock decides who is first, so neither a crash nor two starts at once lead
/// to none or two; the file names the socket that the first one listens at.
///
/// A message is empty ("show the window") or an address "fleetwise://…". On the socket it is one
/// line of UTF-8, answered with "ok"; anything else is dropped without an answer. Belongs to the
/// main thread.
class SingleInstance {
public:
    using Received = std::function<void(const std::string& message)>;

    /// `socketPath` is where to listen; systems take about 100 bytes of it. The folders of both
    /// are made where they are missing.
    SingleInstance(std::string lockFile, std::string socketPath);
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance();

    /// Takes the place of the first instance, and from then on runs `received` (which must not
    /// destroy this) for each later start; or hands `message` to the one that has it, where
    /// anything that is no message counts as the empty one. May wait for up to two seconds. In a
    /// folder that cannot be written to every start is the first.
    StartOutcome tryBecomeFirst(const std::string& message, Received received);

    /// Whether later starts can tell this instance anything.
    bool isReachable() const;

private:
    enum class Lock { ours, theirs };

    Lock takeLock();
    void noteSocket() const;
    std::string notedSocket() const;
    void listen();
    void admitClients();
    void hear(QLocalSocket& client);

    std::string lockFile;
    std::string socketPath;
    Received received;
    FileDescriptor lock;  ///< held as long as this is the first instance
    std::unique_ptr<QLocalServer> server;
};

}  // namespace fleetwise
