#include "platform/single_instance.h"

#include "platform/event_loop.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <thread>
#include <vector>

namespace fleetwise::testing {
namespace {

using ::testing::ElementsAre;

/// A plain connection to the socket, as of any program of this user.
FileDescriptor connectTo(const std::string& path) {
    FileDescriptor client(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    ::sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    ::sockaddr generic{};
    static_assert(sizeof generic <= sizeof address);
    const void* raw = &address;
    if (::connect(client.get(), static_cast<const ::sockaddr*>(raw), sizeof address) != 0)
        ADD_FAILURE() << std::strerror(errno);
    return client;
}

class SingleInstanceTest : public EventLoopTest {
protected:
    SingleInstanceTest() { EXPECT_EQ(start(first), StartOutcome::first); }

    StartOutcome start(SingleInstance& instance) {
        return instance.tryBecomeFirst(
            "", [this](const std::string& message) { messages.push_back(message); });
    }

    /// A later start of the program, on another thread since it waits for this one.
    StartOutcome startLater(const std::string& message) {
        std::atomic<bool> isDone = false;
        StartOutcome outcome = StartOutcome::first;
        std::thread later([&] {
            SingleInstance instance(lockFile, socketPath);
            outcome = instance.tryBecomeFirst(message, {});
            isDone = true;
        });
        EXPECT_TRUE(waitUntil([&] { return isDone.load(); }));
        later.join();
        return outcome;
    }

    /// What the first instance answers to these bytes before it hangs up.
    std::string answerTo(const std::string& bytes) {
        const FileDescriptor client = connectTo(socketPath);
        (void)::send(client.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        std::string answer;
        char buffer[64];
        EXPECT_TRUE(waitUntil([&] {
            const ssize_t count = ::recv(client.get(), buffer, sizeof buffer, MSG_DONTWAIT);
            if (count > 0) answer.append(buffer, static_cast<std::size_t>(count));
            return count == 0 || (count < 0 && errno != EAGAIN);
        })) << "hangs up in time";
        return answer;
    }

    TemporaryDirectory home;
    std::string lockFile = home.at("state/application.lock");
    std::string socketPath = home.at("run/fleetwise.socket");
    std::vector<std::string> messages;
    SingleInstance first{lockFile, socketPath};
};

TEST_F(SingleInstanceTest, laterStartsHandOverWhatTheyAreFor) {
    EXPECT_EQ(startLater(""), StartOutcome::handedOver);
    EXPECT_EQ(startLater("fleetwise://session/ä"), StartOutcome::handedOver);
    EXPECT_EQ(startLater("--nonsense"), StartOutcome::handedOver);
    EXPECT_EQ(startLater("fleetwise://" + std::string(20'000, 'x')), StartOutcome::handedOver);
    EXPECT_THAT(messages, ElementsAre("", "fleetwise://session/ä", "", ""));

    struct ::stat status {};
    ASSERT_EQ(::stat(socketPath.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0077U, 0U) << "for this user only";
}

TEST_F(SingleInstanceTest, dropsGarbage) {
    const std::vector<std::pair<std::string, std::string>> rows{
        {"a word", "hello\n"},
        {"a request of another kind", "GET / HTTP/1.1\r\n\r\n"},
        {"broken UTF-8", "fleetwise://\xff\n"},
        {"a control character", "fleetwise://a\tb\n"},
        {"no end", std::string(100'000, 'x')},
        {"silence", ""},
    };
    for (const auto& [name, bytes] : rows)
        EXPECT_EQ(answerTo(bytes), "") << name;
    EXPECT_TRUE(messages.empty());
    EXPECT_EQ(answerTo("fleetwise://a\nfleetwise://b\n"), "ok\n");
    EXPECT_THAT(messages, ElementsAre("fleetwise://a")) << "one message for each start";
}

TEST_F(SingleInstanceTest, servesStartsBesideClientsThatSayNothing) {
    std::vector<FileDescriptor> silent;
    for (int index = 0; index < 30; ++index) {
        silent.push_back(connectTo(socketPath));
        letPass(1);
    }
    const auto isThere = [&] { return startLater("") == StartOutcome::handedOver; };
    EXPECT_TRUE(isThere() || isThere()) << "at the latest when the silent ones are sent away";
}

TEST_F(SingleInstanceTest, saysWhereTheFirstOneDoesNotAnswer) {
    // The loop that would answer does not run meanwhile.
    SingleInstance later(lockFile, socketPath);
    EXPECT_EQ(later.tryBecomeFirst("", {}), StartOutcome::unreachable);
}

TEST_F(SingleInstanceTest, staysTheOnlyOneWhenItsLockIsRemoved) {
    std::filesystem::remove(lockFile);
    EXPECT_EQ(startLater(""), StartOutcome::handedOver);
    EXPECT_THAT(messages, ElementsAre(""));
}

TEST_F(SingleInstanceTest, isFoundByAStartWithAnotherRuntimeFolder) {
    socketPath = home.at("elsewhere/fleetwise.socket");
    EXPECT_EQ(startLater("fleetwise://x"), StartOutcome::handedOver);
}

class CrashedInstanceTest : public EventLoopTest {};

TEST_F(CrashedInstanceTest, losesItsPlace) {
    const TemporaryDirectory home;
    const std::string socketPath = home.at("fleetwise.socket");
    {
        const FileDescriptor abandoned(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        ::sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, socketPath.c_str(), sizeof address.sun_path - 1);
        const void* raw = &address;
        ASSERT_EQ(::bind(abandoned.get(), static_cast<const ::sockaddr*>(raw), sizeof address), 0);
    }
    ASSERT_TRUE(std::filesystem::exists(socketPath));
    SingleInstance instance(home.write("application.lock", "an older place"), socketPath);
    EXPECT_EQ(instance.tryBecomeFirst("", {}), StartOutcome::first);
}

}  // namespace
}  // namespace fleetwise::testing
