#include "demo/player.h"

#include "demo/programs.h"

#include <fmt/format.h>

namespace fleetwise::demo {

Player::Player(const DemoHome& home, std::string givenHookProgram, std::uint64_t seed)
    : hookProgram(std::move(givenHookProgram)), environment(environmentIn(home.path())) {
    auto entries = RegistryFile::of(home.path() + "/.claude/sessions");
    for (const generator::SessionBook& book : home.books().sessions) {
        const auto entry = entries.find(book.id);
        if (entry == entries.end()) continue;
        const std::size_t number = actors.size();
        actors.push_back({.play = SessionPlay(book, number, seed + 2 * number),
                          .transcript = TranscriptTail(book, seed + 2 * number + 1),
                          .registry = std::move(entry->second)});
    }
}

tl::expected<void, std::string> Player::playNext() {
    // No rest is longer than this.
    for (std::size_t tries = 0; tries < actors.size() * 100; ++tries) {
        Actor& actor = actors[turn++ % actors.size()];
        if (const Step* step = actor.play.next()) return perform(actor, *step);
    }
    return tl::unexpected(std::string("there is no session to play"));
}

tl::expected<void, std::string> Player::perform(Actor& actor, const Step& step) {
    const Date now = currentDate();
    const Json payload = actor.play.payload(step, now);
    if (!step.event.empty()) {
        const auto status =
            run({hookProgram, std::string(step.event)}, environment, encodeJson(payload));
        if (!status)
            return tl::unexpected(
                fmt::format("cannot run {}: {}", hookProgram, status.error().message()));
        actor.transcript.append(actor.play.scene(), payload, now);
    }
    if (std::exchange(actor.standing, step.standing) != step.standing)
        actor.registry.update(step.standing, currentDate());
    return {};
}

}  // namespace fleetwise::demo
