// Any event on any old status file: a first line with the event's name, a second with the file, and
// the payload behind it. What is written the application reads, and the hook reads it as the same.

#include "foundation/json_reader.h"
#include "hook/hook_event_reader.h"
#include "hook/parser_padding.h"
#include "hook/state_rules.h"
#include "hook/status_file.h"
#include "hook/status_text.h"
#include "sources/status_store.h"

#include <string>
#include <vector>

namespace {

using namespace fleetwise;

/// The next line, or all that is left of the text, with what a parser needs behind it.
std::vector<char> take(std::string_view& text, bool wholeRest) {
    const std::string_view part = wholeRest ? text : text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), part.size() + 1));
    std::vector<char> padded(part.begin(), part.end());
    padded.resize(part.size() + hook::parserPadding);
    return padded;
}

std::span<char> contents(std::vector<char>& padded) {
    return std::span(padded).first(padded.size() - hook::parserPadding);
}

std::string written(const hook::StatusRecord& record) {
    static std::vector<char> space(hook::statusTextLimit);
    return std::string(hook::writeStatusText(record, space));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(data, data + size);
    std::string_view rest = input;
    std::vector<char> name = take(rest, false);
    std::vector<char> file = take(rest, false);
    std::vector<char> payload = take(rest, true);

    hook::HookEvent event{.name = {name.data(), contents(name).size()}};
    if (!hook::readHookEvent(contents(payload), event)) return 0;
    if (!hook::isUsableSessionId(event.sessionId)) return 0;
    std::optional<hook::StatusRecord> old;
    if (!hook::readStatusText(contents(file), old.emplace())) old.reset();
    const auto record = hook::recordAfter(old, event, 1'795'226'700);
    if (!record) return 0;

    const std::string text = written(*record);
    std::string padded = text;
    padded.reserve(text.size() + jsonPadding);
    const auto decoded = StatusStore::decode(padded);
    if (!decoded || decoded->sessionId != event.sessionId) __builtin_trap();

    std::vector<char> again(text.begin(), text.end());
    again.resize(text.size() + hook::parserPadding);
    hook::StatusRecord reread;
    if (!hook::readStatusText(contents(again), reread)) __builtin_trap();
    if (written(reread) != text) __builtin_trap();
    return 0;
}
