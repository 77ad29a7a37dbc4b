#include "platform/single_instance.h"

#include "foundation/atomic_file.h"
#include "foundation/regular_file.h"
#include "foundation/utf8.h"

#include <QDeadlineTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>
#include <QTimer>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string_view>

namespace fleetwise {

namespace {

constexpr std::chrono::seconds patience{2};
constexpr qsizetype maximumClients = 8;
constexpr std::size_t maximumPathBytes = 4'096;
constexpr qint64 maximumLineBytes = 8'192;
constexpr std::string_view addressPrefix = "fleetwise://";
constexpr std::string_view answer = "ok\n";

bool isMessage(std::string_view text) {
    if (text.empty()) return true;
    return text.starts_with(addressPrefix) && text.size() < maximumLineBytes &&
           wellFormedUtf8(text) == text &&
           std::none_of(text.begin(), text.end(), [](char c) { return c >= 0 && c < ' '; });
}

std::optional<std::string> messageOf(const QByteArray& line) {
    std::string text = line.toStdString();
    if (text.ends_with('\n')) text.pop_back();
    if (!isMessage(text)) return {};
    return text;
}

/// Whether the instance behind the socket took the message.
bool handOver(const std::string& socketPath, const std::string& message,
              const QDeadlineTimer& deadline) {
    const auto left = [&] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.connectToServer(QString::fromStdString(socketPath));
    if (!socket.waitForConnected(left())) return false;
    socket.write(QByteArray::fromStdString(message + '\n'));
    while (!socket.canReadLine() && socket.waitForReadyRead(left())) {
    }
    return socket.readLine(maximumLineBytes).toStdString() == answer;
}

}  // namespace

SingleInstance::SingleInstance(std::string givenLockFile, std::string givenSocketPath)
    : lockFile(std::move(givenLockFile)), socketPath(std::move(givenSocketPath)) {}

SingleInstance::~SingleInstance() = default;

StartOutcome SingleInstance::tryBecomeFirst(const std::string& message, Received givenReceived) {
    received = std::move(givenReceived);
    const std::string handed = isMessage(message) ? message : "";
    const QDeadlineTimer deadline(patience);
    // The other one may be about to listen, or about to end.
    do {
        const Lock taken = takeLock();
        // Somebody may have removed the file that another instance still holds.
        const std::string other = taken == Lock::ours ? socketPath : notedSocket();
        if (!other.empty() && handOver(other, handed, deadline)) return StartOutcome::handedOver;
        if (taken == Lock::ours) {
            noteSocket();
            listen();
            return StartOutcome::first;
        }
        QThread::msleep(20);
    } while (!deadline.hasExpired());
    return StartOutcome::unreachable;
}

SingleInstance::Lock SingleInstance::takeLock() {
    for (const std::string& path : {lockFile, socketPath})
        (void)makePrivateDirectory(std::filesystem::path(path).parent_path().string());
    FileDescriptor opened(
        ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (opened && ::flock(opened.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return Lock::theirs;
    lock = std::move(opened);
    return Lock::ours;
}

void SingleInstance::noteSocket() const {
    if (!lock || ::ftruncate(lock.get(), 0) != 0) return;
    (void)::pwrite(lock.get(), socketPath.data(), socketPath.size(), 0);
}

std::string SingleInstance::notedSocket() const {
    return readRegularFile(lockFile, maximumPathBytes).value_or(std::string());
}

bool SingleInstance::isReachable() const {
    return server && server->isListening();
}

void SingleInstance::listen() {
    const QString path = QString::fromStdString(socketPath);
    // What an instance that crashed has left.
    QLocalServer::removeServer(path);
    server = std::make_unique<QLocalServer>();
    server->setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(server.get(), &QLocalServer::newConnection, server.get(),
                     [this] { admitClients(); });
    server->listen(path);
}

void SingleInstance::admitClients() {
    while (QLocalSocket* client = server->nextPendingConnection()) {
        QObject::connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
        if (server->findChildren<QLocalSocket*>().size() > maximumClients) {
            client->abort();
            continue;
        }
        client->setReadBufferSize(maximumLineBytes);
        QObject::connect(client, &QLocalSocket::readyRead, server.get(),
                         [this, client] { hear(*client); });
        QTimer::singleShot(patience, client, [client] { client->abort(); });
    }
}

void SingleInstance::hear(QLocalSocket& client) {
    if (!client.canReadLine()) {
        if (client.bytesAvailable() >= maximumLineBytes) client.abort();
        return;
    }
    const auto message = messageOf(client.readLine());
    QObject::disconnect(&client, &QLocalSocket::readyRead, nullptr, nullptr);
    if (!message) {
        client.abort();
        return;
    }
    client.write(answer.data(), static_cast<qint64>(answer.size()));
    client.disconnectFromServer();
    received(*message);
}

}  // namespace fleetwise
