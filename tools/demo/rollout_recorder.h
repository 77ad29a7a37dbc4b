#pragma once

#include "demo/codex_scenes.h"
#include "foundation/json.h"
#include "generator/books.h"
#include "generator/random.h"

#include <string>

namespace fleetwise::demo {

/// Writes a Codex session's rollout as Codex would while the session is at work.
class RolloutRecorder {
public:
    /// Begins the file of the session that `book` describes by its first fields. `inherited` are
    /// the whole lines copied from its parent's.
    RolloutRecorder(generator::RolloutBook book, std::string_view inherited, std::uint64_t seed);

    void append(const CodexStep& step, Date now);

    const generator::RolloutBook& book() const { return session; }

private:
    void appendMove(const CodexStep& step);
    void beginTurn(std::string_view prompt);
    void callTool(std::string_view name, const Json& arguments);
    void receive(std::string_view output);
    void answer(std::string_view message);
    void countTokens();
    void message(std::string_view role, std::string_view said);
    void event(Json payload);
    void item(const Json& payload);
    void completed(Json done);
    void line(std::string_view type, const std::string& payload);
    void write();

    generator::RolloutBook session;
    generator::Random random;
    Date time;
    int ordinal = 0;
    std::string turnId;
    std::string callId;
    std::string command;  ///< the one that runs
    std::string text;     ///< what is to be appended
};

}  // namespace fleetwise::demo
