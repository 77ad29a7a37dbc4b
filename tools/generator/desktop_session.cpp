#include "generator/desktop_session.h"

#include "generator/agent_models.h"
#include "generator/filler.h"

#include <fmt/format.h>

#include <array>
#include <filesystem>

namespace fleetwise::generator {

namespace {

constexpr std::array<std::string_view, 3> efforts{"low", "medium", "high"};

std::int64_t millisecondsSince1970(Date date) {
    return static_cast<std::int64_t>(secondsSince1970(date) * 1000);
}

}  // namespace

std::string newDesktopFolder(const std::string& home, Random& random) {
    const std::string account = random.uuid();
    const std::string organisation = random.uuid();
    return fmt::format("{}/Library/Application Support/Claude/claude-code-sessions/{}/{}", home,
                       account, organisation);
}

DesktopBook newDesktopBook(const std::string& folder, int number, Random& random) {
    DesktopBook book;
    book.path = fmt::format("{}/local_{}.json", folder, random.uuid());
    book.title = Filler::phrase(random, 5);
    book.isArchived = number % 5 == 4;
    if (number % 7 == 6) book.error = "rate_limit";
    return book;
}

tl::expected<void, GeneratorError> writeDesktopSession(const SessionBook& book, Random& random) {
    const DesktopBook& desktop = *book.desktop;
    const std::int64_t lastActivityAt = millisecondsSince1970(book.lastActivityAt);
    Json metadata{{"sessionId", std::filesystem::path(desktop.path).stem().string()},
                  {"cliSessionId", book.id},
                  {"title", desktop.title},
                  {"cwd", book.cwd},
                  {"model", book.model.starts_with('<') ? agentModels.front().name : book.model},
                  {"effort", random.pick(efforts)},
                  {"permissionMode", book.permissionMode},
                  {"createdAt", millisecondsSince1970(book.startedAt)},
                  {"lastActivityAt", lastActivityAt},
                  {"isArchived", desktop.isArchived}};
    if (desktop.error) {
        metadata["error"] = *desktop.error;
        metadata["errorAt"] = lastActivityAt;
    }
    return writeFile(desktop.path, encodeJson(metadata), book.lastActivityAt);
}

}  // namespace fleetwise::generator
