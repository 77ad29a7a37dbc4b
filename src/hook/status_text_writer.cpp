#include "foundation/utf8.h"
#include "hook/status_text.h"

#include <rapidjson/writer.h>

#include <algorithm>
#include <array>

namespace fleetwise::hook {

namespace {

constexpr std::size_t longestCharacter = 4;

/// Where a writer of RapidJSON puts its text.
class FixedStream {
public:
    using Ch = char;

    explicit FixedStream(std::span<char> target) : space(target) {}

    void Put(char character) {
        if (length < space.size()) space[length] = character;
        ++length;
    }
    void Flush() {}

    /// All that was put; empty where it did not fit.
    std::string_view text() const {
        return length > space.size() ? std::string_view() : std::string_view(space.data(), length);
    }

private:
    std::span<char> space;
    std::size_t length = 0;
};

/// A text as it may stand in the file.
class CutText {
public:
    explicit CutText(std::string_view text) {
        std::size_t end = 0;
        bool isWellFormed = true;
        for (std::size_t count = 0; count < characterLimit && end < text.size(); ++count) {
            const std::size_t length = utf8SequenceLength(text.substr(end));
            isWellFormed = isWellFormed && length > 0;
            end += std::max<std::size_t>(1, length);
        }
        cut = text.substr(0, end);
        if (isWellFormed) return;
        mended = wellFormedUtf8(cut);
        cut = mended;
    }
    CutText(const CutText&) = delete;
    CutText& operator=(const CutText&) = delete;

    std::string_view view() const { return cut; }

private:
    std::string_view cut;
    std::string mended;  // agents write UTF-8, so this is hardly ever filled
};

class StatusWriter {
public:
    explicit StatusWriter(std::span<char> space) : stream(space) {}

    void write(const StatusRecord& record) {
        writer.StartObject();
        text("session_id", record.sessionId);
        name("state", shownState(record));
        text("event", record.event);
        text("agent", record.agent);
        text("tool", record.tool);
        text("activity", record.activity);
        message(record);
        text("cwd", record.cwd);
        time("ts", record.eventTs);
        time("event_ts", record.eventTs);
        text("permission_mode", record.permissionMode);
        time("turn_started_at", record.turnStartedAt);
        time("done_at", record.doneAt);
        key("subagents");
        writer.Uint64(record.subagents.all().size());
        background(record);
        monitors(record);
        time("wakeup_at", record.wakeupAt);
        time("state_ts", shownStateTs(record));
        time("decided_ts", record.decidedAt);
        subagentIds(record);
        requests(record);
        text("error", record.error);
        writer.EndObject();
    }

    std::string_view text() const { return stream.text(); }

private:
    void key(std::string_view name) { writer.Key(name.data(), length(name)); }
    void string(std::string_view value) {
        const CutText cut(value);
        writer.String(cut.view().data(), length(cut.view()));
    }
    static rapidjson::SizeType length(std::string_view value) {
        return static_cast<rapidjson::SizeType>(value.size());
    }

    void text(std::string_view name, std::string_view value) {
        if (value.empty()) return;
        key(name);
        string(value);
    }
    void name(std::string_view key, SessionState state) { text(key, rawValue(state)); }
    void time(std::string_view name, std::optional<double> value) {
        if (!value) return;
        key(name);
        writer.Double(*value);
    }

    void message(const StatusRecord& record) {
        if (record.requests.isEmpty()) return text("message", record.message);
        const Request& request = record.requests.all().back();
        if (!request.message.empty()) return text("message", request.message);
        if (request.activity == request.tool) return text("message", request.tool);
        // The tool and what it is to do: two texts that stand in different places.
        const CutText tool(request.tool);
        const CutText activity(request.activity);
        std::array<char, 3 * characterLimit * longestCharacter> joined;
        auto end = std::copy(tool.view().begin(), tool.view().end(), joined.begin());
        *end++ = ':';
        *end++ = ' ';
        end = std::copy(activity.view().begin(), activity.view().end(), end);
        text("message", {joined.data(), static_cast<std::size_t>(end - joined.begin())});
    }

    void background(const StatusRecord& record) {
        if (record.background.isEmpty()) return;
        key("background");
        writer.StartObject();
        for (const Launch& launch : record.background.all()) {
            objectKey(launch.id);
            writer.StartObject();
            text("cmd", launch.command);
            time("at", launch.at);
            writer.EndObject();
        }
        writer.EndObject();
    }

    void monitors(const StatusRecord& record) {
        if (record.monitors.isEmpty()) return;
        key("monitors");
        writer.StartObject();
        for (const Watch& watch : record.monitors.all()) {
            objectKey(watch.id);
            writer.StartArray();
            string(watch.label);
            writer.Double(watch.since);
            writer.EndArray();
        }
        writer.EndObject();
    }

    void objectKey(std::string_view id) {
        const CutText cut(id);
        key(cut.view());
    }

    void subagentIds(const StatusRecord& record) {
        if (record.subagents.isEmpty()) return;
        key("subagent_ids");
        writer.StartArray();
        for (const std::string_view id : record.subagents.all())
            string(id);
        writer.EndArray();
    }

    void requests(const StatusRecord& record) {
        if (record.requests.isEmpty()) return;
        name("state_before", record.state);
        text("message_before", record.message);
        key("requests");
        writer.StartArray();
        for (const Request& request : record.requests.all()) {
            writer.StartObject();
            text("agent", request.agent);
            text("tool", request.tool);
            text("activity", request.activity);
            text("message", request.message);
            name("state", request.state);
            time("at", request.at);
            writer.EndObject();
        }
        writer.EndArray();
    }

    // The writer's stack of open objects and lists needs no heap.
    std::array<char, 1024> stack;
    rapidjson::MemoryPoolAllocator<> allocator{stack.data(), stack.size()};
    FixedStream stream;
    rapidjson::Writer<FixedStream, rapidjson::UTF8<>, rapidjson::UTF8<>,
                      rapidjson::MemoryPoolAllocator<>>
        writer{stream, &allocator};
};

}  // namespace

std::string_view writeStatusText(const StatusRecord& record, std::span<char> space) {
    StatusWriter writer(space);
    writer.write(record);
    return writer.text();
}

}  // namespace fleetwise::hook
