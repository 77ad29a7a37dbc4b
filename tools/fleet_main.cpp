// fleetwise-fleet: writes a home folder full of agent sessions and prints the books of it.

#include "generator/generate.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace fleetwise::generator;

constexpr std::string_view usage =
    "usage: fleetwise-fleet HOME [OPTION VALUE]...\n"
    "Writes the files of a fleet of agent sessions into the folder HOME and prints what it wrote.\n"
    "  --sessions N    Claude Code sessions (300)\n"
    "  --megabytes M   size of all transcripts together (50)\n"
    "  --live N        sessions that are running (20)\n"
    "  --desktop N     how many of the Claude Code sessions the desktop app has (0)\n"
    "  --rollouts N    Codex sessions (0)\n"
    "  --subagents N   sub-agents of these Codex sessions (0)\n"
    "  --forks N       forks of these Codex sessions (0)\n"
    "  --compressed N  old Codex sessions whose files are compressed (0)\n"
    "  --claude-forks N  forks of the Claude Code sessions, beyond --sessions and --megabytes (0)\n"
    "  --projects N    working directories (12)\n"
    "  --days D        how far back ended sessions reach (20 hours)\n"
    "  --usage DAYS    how far back the desktop app's usage history reaches (0: there is none)\n"
    "  --accounts N    accounts in the usage history (1)\n"
    "  --seed S        the same seed gives the same files (1)\n"
    "  --pid P         process that running sessions claim (1)\n"
    "  --now SECONDS   the present, in seconds since 1970 (the clock)\n";

template <typename Number>
bool readNumber(std::string_view text, Number& number) {
    const char* end = text.data() + text.size();
    Number read{};
    const auto result = std::from_chars(text.data(), end, read);
    if (result.ec != std::errc() || result.ptr != end || read < Number{}) return false;
    number = read;
    return true;
}

bool readOption(std::string_view option, std::string_view value, Plan& plan) {
    if (option == "--sessions") return readNumber(value, plan.sessions);
    if (option == "--megabytes") return readNumber(value, plan.megabytes);
    if (option == "--live") return readNumber(value, plan.live);
    if (option == "--desktop") return readNumber(value, plan.desktop);
    if (option == "--rollouts") return readNumber(value, plan.rollouts);
    if (option == "--subagents") return readNumber(value, plan.subagentRollouts);
    if (option == "--forks") return readNumber(value, plan.forkedRollouts);
    if (option == "--compressed") return readNumber(value, plan.compressedRollouts);
    if (option == "--claude-forks") return readNumber(value, plan.forkedSessions);
    if (option == "--projects") return readNumber(value, plan.projects);
    if (option == "--days") return readNumber(value, plan.days);
    if (option == "--usage") return readNumber(value, plan.usageDays);
    if (option == "--accounts") return readNumber(value, plan.accounts);
    if (option == "--seed") return readNumber(value, plan.seed);
    if (option == "--pid") return readNumber(value, plan.pid);
    if (option != "--now") return false;
    double seconds = 0;
    if (!readNumber(value, seconds)) return false;
    plan.now = fleetwise::dateFromSeconds(seconds);
    return true;
}

std::string describe(const GeneratorError& error) {
    switch (error.kind) {
        case GeneratorError::Kind::occupied:
            return fmt::format("{} is there already; choose an empty folder", error.path);
        case GeneratorError::Kind::unwritable:
            break;
    }
    return fmt::format("cannot write {}: {}", error.path, error.code.message());
}

}  // namespace

int main(int argumentCount, char** arguments) {
    Plan plan;
    bool isUnderstood = argumentCount >= 2 && argumentCount % 2 == 0 && arguments[1][0] != '-';
    for (int index = 2; isUnderstood && index < argumentCount; index += 2)
        isUnderstood = readOption(arguments[index], arguments[index + 1], plan);
    if (!isUnderstood) {
        fmt::print(stderr, "{}", usage);
        return 2;
    }
    const auto books = generate(plan, arguments[1]);
    if (!books) {
        fmt::print(stderr, "fleetwise-fleet: {}\n", describe(books.error()));
        return 1;
    }
    fmt::print("{}\n", fleetwise::encodeJson(encodeBooks(*books)));
    return 0;
}
