#include "demo/player.h"

#include "demo/claude_actor.h"
#include "demo/codex_actor.h"

#include <array>
#include <string_view>

namespace fleetwise::demo {

namespace {

/// The Codex sessions that play, by the names their users gave them.
constexpr std::array<std::string_view, 2> codexNames{"Slow queries", ""};

}  // namespace

Player::Player(const DemoHome& givenHome, const std::string& hookProgram, std::uint64_t givenSeed)
    : home(givenHome), hook(hookProgram, home.path()), seed(givenSeed) {
    auto entries = RegistryFile::of(home.path() + "/.claude/sessions");
    for (const generator::SessionBook& book : home.books().sessions) {
        const auto entry = entries.find(book.id);
        if (entry == entries.end()) continue;
        actors.push_back(std::make_unique<ClaudeActor>(book, std::move(entry->second),
                                                       actors.size(), seed, hook));
    }
}

tl::expected<void, std::string> Player::addCodex(const std::string& standIn) {
    for (std::size_t number = 0; number < codexNames.size(); ++number) {
        auto actor = CodexActor::start({.home = home.path(),
                                        .standIn = standIn,
                                        .cwd = home.books().sessions[number].cwd,
                                        .name = std::string(codexNames[number]),
                                        .firstScene = number,
                                        .seed = seed + 3 * actors.size()});
        if (!actor) return tl::unexpected(actor.error());
        actors.push_back(*std::move(actor));
    }
    return {};
}

tl::expected<void, std::string> Player::playNext() {
    // No rest is longer than this.
    for (std::size_t tries = 0; tries < actors.size() * 100; ++tries) {
        const auto hasActed = actors[turn++ % actors.size()]->act();
        if (!hasActed) return tl::unexpected(hasActed.error());
        if (*hasActed) return {};
    }
    return tl::unexpected(std::string("there is no session to play"));
}

}  // namespace fleetwise::demo
