// Bytes of a Codex rollout: no line of them may do harm or tell impossible figures, and reading
// them in two pieces must tell the same as reading them at once. The first byte chooses the cut.

#include "foundation/json_reader.h"
#include "sources/plain_file_name.h"
#include "sources/rollout_head.h"
#include "sources/rollout_prompt.h"
#include "sources/rollout_tail.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace fleetwise;

std::string padded(std::string_view text) {
    std::string copy;
    copy.reserve(text.size() + jsonPadding);
    copy = text;
    return copy;
}

void expect(bool isTrue) {
    if (!isTrue) std::abort();
}

void checkHead(const RolloutHead& head) {
    expect(head.contextWindow.value_or(1) > 0);
    expect(!head.sessionId || isPlainFileName(*head.sessionId));
    expect(!head.parentId ||
           (head.parentId != head.sessionId && head.kind != RolloutKind::session));
}

void checkTail(const RolloutTail& tail) {
    expect(tail.contextTokens.value_or(0) >= 0);
    expect(tail.outputTokens.value_or(0) >= 0);
    expect(tail.contextWindow.value_or(1) > 0);
    expect(!tail.failure || tail.state == SessionState::failed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::string text = padded(std::string(data + 1, data + size));
    if (const auto head = RolloutHead::parse(text)) checkHead(*head);
    const RolloutTail tail = RolloutTail::parse(text);
    checkTail(tail);
    expect(lastRolloutPrompt(text, [](std::string_view) { return true; }).value_or("?") != "");

    const std::size_t cut = text.find('\n', text.size() * data[0] / 255);
    if (cut == std::string::npos) return 0;
    const RolloutTail earlier = RolloutTail::parse(padded(text.substr(0, cut + 1)));
    expect(earlier.followedBy(RolloutTail::parse(padded(text.substr(cut + 1)))) == tail);
    return 0;
}
