#include "fleet/prompt_history.h"

#include "cost/prompt_text.h"
#include "cost/transcript_lines.h"
#include "fleet/archive_entry.h"
#include "foundation/json_reader.h"

#include <optional>

namespace fleetwise {

namespace {

void addPrompt(JsonReader& json, std::string_view line, PromptHistory::Prompts& prompts) {
    json.readObject(line, [&](JsonObject& entry) {
        const auto display = memberIfPresent<std::string_view>(entry, "display");
        const auto prompt = display ? PromptText::typedByUser(*display) : std::nullopt;
        if (!prompt || prompt->starts_with('/')) return;
        const auto id = memberIfPresent<std::string_view>(entry, "sessionId");
        if (!id || id->empty()) return;
        TypedPrompt& known = prompts[std::string(*id)];
        known.text = archiveText(*prompt);
        const auto project = memberIfPresent<std::string_view>(entry, "project");
        if (project) known.cwd = *project;
    });
}

template <typename Source>
tl::expected<PromptHistory::Prompts, FileError> promptsOf(const Source& source, std::uint64_t begin,
                                                          std::uint64_t end) {
    PromptHistory::Prompts prompts;
    JsonReader json;
    // A line cut at its beginning is no JSON.
    const auto got = LineSplitter(source).forEachLine(
        begin, end, [&](std::string_view line, std::uint64_t) { addPrompt(json, line, prompts); });
    if (!got) return tl::unexpected(got.error());
    return prompts;
}

}  // namespace

std::optional<PromptHistory::Prompts> PromptHistory::read(const std::string& path,
                                                          SkipTally& skipped) {
    const auto file = RegularFile::open(path);
    if (!file) {
        skipped.count(file.error());
        return {};
    }
    const auto size = static_cast<std::uint64_t>(file->stamp().sizeBytes);
    auto prompts = promptsOf(*file, size > window ? size - window : 0, size);
    if (prompts) return *std::move(prompts);
    skipped.count(prompts.error());
    return {};
}

PromptHistory::Prompts PromptHistory::parse(std::string_view lines) {
    return promptsOf(MemoryBytes(lines), 0, lines.size()).value_or(Prompts());
}

}  // namespace fleetwise
