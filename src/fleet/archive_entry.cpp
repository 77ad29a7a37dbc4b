#include "fleet/archive_entry.h"

#include "fleet/folder_name.h"
#include "foundation/text.h"

#include <algorithm>

namespace fleetwise {

namespace {

constexpr std::size_t longestName = 80;
constexpr std::size_t idDigits = 8;
constexpr std::size_t longestText = 400;
/// As many bytes as the longest text can have, and blanks that fall away.
constexpr std::size_t mostBytes = 4096;

}  // namespace

std::string archiveText(std::string_view text) {
    std::string line = printable(trimmed(text).substr(0, mostBytes));
    const auto gone = std::ranges::unique(
        line, [](char left, char right) { return left == ' ' && right == ' '; });
    line.erase(gone.begin(), gone.end());
    return shortenedText(line, longestText);
}

std::string ArchiveEntry::displayName() const {
    for (const std::string* text : {&title, &prompt}) {
        if (!text->empty()) return shortenedText(*text, longestName);
    }
    std::string project = projectName();
    return project.empty() ? printable(id.substr(0, idDigits)) : project;
}

std::string ArchiveEntry::projectName() const {
    return printable(folderName(cwd));
}

void ArchiveEntry::makeSearchText() {
    std::string all = displayName();
    for (const auto& text : {title, prompt, cwd, id, agent.label(), model.value_or("")})
        all += '\n' + text;
    searchText = caseFolded(all);
}

Session ArchiveEntry::asSession() const {
    Session session;
    session.id = id;
    session.agent = agent;
    session.origin = origin;
    session.state = SessionState::dormant;
    if (!cwd.empty()) session.cwd = cwd;
    if (!title.empty()) session.title = title;
    session.model = model;
    session.lastActivityAt = lastActivityAt;
    return session;
}

}  // namespace fleetwise
