#include "demo/claude_actor.h"

#include <utility>

namespace fleetwise::demo {

ClaudeActor::ClaudeActor(const generator::SessionBook& book, RegistryFile registryFile,
                         std::size_t number, std::uint64_t seed, const HookProgram& hookProgram)
    : hook(hookProgram),
      play(book, number, seed + 2 * number),
      transcript(book, seed + 2 * number + 1),
      registry(std::move(registryFile)) {
    if (book.desktop) desktop.emplace(book.desktop->path);
}

tl::expected<bool, std::string> ClaudeActor::act() {
    const Step* step = play.next();
    if (step == nullptr) return false;
    return perform(*step).map([] { return true; });
}

tl::expected<void, std::string> ClaudeActor::perform(const Step& step) {
    const Date now = currentDate();
    const Json payload = play.payload(step, now);
    if (!step.event.empty()) {
        if (auto done = hook.run(step.event, payload); !done) return done;
        transcript.append(play.scene(), payload, now);
        if (desktop) desktop->update(play.scene().title, now);
    }
    if (std::exchange(standing, step.standing) != step.standing)
        registry.update(step.standing, currentDate());
    return {};
}

}  // namespace fleetwise::demo
