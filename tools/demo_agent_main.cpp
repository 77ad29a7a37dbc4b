// fleetwise-demo-agent: stands in for an agent's program. It does nothing until its input ends,
// which it does when the demo ends, however that comes about.

#include <unistd.h>

#include <array>
#include <cerrno>

int main() {
    std::array<char, 64> ignored{};
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, ignored.data(), ignored.size());
        if (count == 0 || (count < 0 && errno != EINTR)) return 0;
    }
}
