// The texts of a session's row.

#include "fleet/folder_name.h"
#include "fleet/session.h"
#include "foundation/text.h"
#include "localisation/duration_format.h"
#include "localisation/localisation.h"
#include "session/session_error.h"

namespace fleetwise {

namespace {

constexpr std::size_t titleLimit = 80;
constexpr std::size_t detailLimit = 160;

/// The first line of an optional text, fit for a row; empty where there is none.
std::string oneLine(const std::optional<std::string>& text) {
    if (!text) return {};
    return printable(TranscriptReader::Label::shortened(*text, detailLimit));
}

std::string oneLineOr(const std::optional<std::string>& text, Text fallback) {
    std::string line = oneLine(text);
    return line.empty() ? localised(fallback) : line;
}

std::string failureText(const Session& session) {
    for (const auto* code : {&session.desktopError, &session.lastMessage}) {
        if (!*code) continue;
        if (auto text = SessionError::label(**code)) return *std::move(text);
    }
    const auto& said = session.desktopError ? session.desktopError : session.lastMessage;
    return oneLineOr(said, "Der Turn wurde abgebrochen"_text);
}

std::string workText(const Session& session) {
    std::string line = oneLine(session.activity);
    if (line.empty()) line = oneLine(session.lastTool);
    if (line.empty() && session.subagentCount > 0) {
        line = localisedFormat("Hintergrund-Agenten: %d"_text, session.subagentCount);
    }
    return line;
}

/// For a session that does nothing now: who still works for it, else what it said last.
std::string restText(const Session& session) {
    if (session.subagentCount > 0 && session.isLive) {
        return localisedFormat("Hintergrund-Agenten: %d"_text, session.subagentCount);
    }
    if (session.stats && session.stats->lastReply) return oneLine(session.stats->lastReply);
    return oneLine(session.lastMessage);
}

}  // namespace

std::string Session::displayName() const {
    if (name && !trimmed(*name).empty()) return printable(trimmed(*name));
    if (title) {
        const std::string shortTitle = TranscriptReader::Label::shortened(*title, titleLimit);
        if (!shortTitle.empty()) return printable(shortTitle);
    }
    if (cwd && !cwd->empty()) return projectName();
    return printable(id.substr(0, 8));
}

std::string Session::projectName() const {
    return cwd ? printable(folderName(*cwd)) : std::string();
}

std::string Session::displayPath(const std::string& home) const {
    if (!cwd) return {};
    const bool isBelowHome = home.size() > 1 && cwd->starts_with(home) &&
                             (cwd->size() == home.size() || (*cwd)[home.size()] == '/');
    return printable(isBelowHome ? "~" + cwd->substr(home.size()) : *cwd);
}

std::string Session::detail(Date now, Calendar calendar) const {
    if (isStale(now)) {
        return localisedFormat("Seit %@ keine Meldung"_text, durationText(now - *lastEventAt));
    }
    switch (state) {
        case SessionState::decision:
            return oneLineOr(lastMessage, "Rückfrage mit Auswahl"_text);
        case SessionState::waiting:
            return oneLineOr(lastMessage, "Bestätigung erforderlich"_text);
        case SessionState::failed:
            return failureText(*this);
        case SessionState::working:
            return workText(*this);
        case SessionState::waitingForSubagents:
            return localisedFormat("Wartet auf Unteragenten: %d"_text, subagentCount);
        case SessionState::compacting:
            return localised("Verdichtet den Gesprächsverlauf"_text);
        case SessionState::scheduled:
            if (!wakeupAt) return {};
            return localisedFormat("Weckt um %@"_text, formatDate(*wakeupAt, calendar, "%H:%M"));
        case SessionState::done:
        case SessionState::idle:
        case SessionState::unknown:
        case SessionState::dormant:
            return restText(*this);
    }
    return {};
}

}  // namespace fleetwise
