#include "hook/payload.h"

#include "hook/alarm.h"

#include <poll.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace fleetwise::hook {

namespace {

constexpr std::size_t firstCapacity = 64 << 10;

/// A full pipe hands over its contents in pieces of this size.
constexpr int widePipe = 1 << 20;

/// Where standard input does not block by itself.
bool waitForMore() {
    ::pollfd input{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
    return ::poll(&input, 1, -1) > 0;
}

}  // namespace

Payload::~Payload() {
    std::free(data);
}

bool Payload::grow() {
    const std::size_t wanted = capacity == 0 ? firstCapacity : capacity * 4;
    if (wanted > sizeLimit) return false;
    auto* grown = static_cast<char*>(std::realloc(data, wanted + parserPadding));
    if (grown == nullptr) return false;
#ifdef F_SETPIPE_SZ
    if (capacity != 0) ::fcntl(STDIN_FILENO, F_SETPIPE_SZ, widePipe);
#endif
    data = grown;
    capacity = wanted;
    return true;
}

bool Payload::read(std::chrono::seconds patience) {
    const Alarm alarm(patience);
    for (;;) {
        if (size == capacity && !grow()) return false;
        const ssize_t got = ::read(STDIN_FILENO, data + size, capacity - size);
        if (got < 0 && errno == EAGAIN && waitForMore()) continue;
        // Whoever leaves the pipe open may have written all the same.
        if (got == 0 || (got < 0 && errno == EINTR)) break;
        if (got < 0) return false;
        size += static_cast<std::size_t>(got);
    }
    std::memset(data + size, 0, parserPadding);
    return true;
}

}  // namespace fleetwise::hook
