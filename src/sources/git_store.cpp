#include "sources/git_store.h"

#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "foundation/text.h"

namespace fleetwise {

namespace {

constexpr std::size_t maximumBytes = 4096;
constexpr std::size_t maximumPathLength = 4096;
constexpr std::size_t shortHashLength = 7;
constexpr Seconds placeMaxAge = std::chrono::seconds(30);

std::string_view firstLine(std::string_view contents) {
    return trimmed(contents.substr(0, contents.find('\n')));
}

/// What follows `key` in `line`, nothing where the line is another one.
std::optional<std::string_view> valueAfter(std::string_view key, std::string_view line) {
    if (!line.starts_with(key)) return {};
    return trimmed(line.substr(key.size()));
}

/// "gitdir: <path>" in the file `.git` of a work tree or submodule, relative to its folder.
std::string headOfGitFile(const std::string& folder, const std::string& gitFile) {
    const auto contents = readRegularFile(gitFile, maximumBytes);
    if (!contents) return {};
    const auto place = valueAfter("gitdir:", trimmed(*contents));
    if (!place || place->empty()) return {};
    const std::string gitFolder =
        place->front() == '/' ? std::string(*place) : joinPath(folder, *place);
    return joinPath(gitFolder, "HEAD");
}

/// The path of the file HEAD of the repository around `cwd`; empty where there is none.
std::string findHead(std::string_view cwd) {
    if (!cwd.starts_with('/') || cwd.size() > maximumPathLength) return {};
    while (true) {
        const std::string folder(cwd.empty() ? "/" : cwd);
        const std::string git = joinPath(folder, ".git");
        if (const auto entry = inspectFile(git)) {
            if (entry->kind == FileKind::regular) return headOfGitFile(folder, git);
            // Whatever a link names is not followed, but it is not a repository further out either.
            if (entry->kind != FileKind::directory) return {};
            // A folder of that name without a head is no repository; git looks further out, too.
            std::string head = joinPath(git, "HEAD");
            if (inspectFile(head)) return head;
        }
        if (cwd.empty()) return {};
        cwd = cwd.substr(0, cwd.rfind('/'));
    }
}

/// Nothing where nothing stands under that name.
std::optional<FileStamp> stampAt(const std::string& path) {
    const auto entry = inspectFile(path);
    return entry ? std::optional(entry->stamp) : std::nullopt;
}

bool isHash(std::string_view text) {
    const bool hasLengthOfHash = text.size() == 40 || text.size() == 64;  // SHA-1, SHA-256
    return hasLengthOfHash && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::optional<std::string> branchIn(std::string_view contents) {
    const std::string_view line = firstLine(contents);
    if (isHash(line)) return std::string(line.substr(0, shortHashLength));
    const auto ref = valueAfter("ref:", line);
    if (!ref) return {};
    auto name = valueAfter("refs/heads/", *ref);
    if (!name) name = valueAfter("refs/", *ref);
    // No ref's name begins with a dot: ".invalid" stands there where refs are kept in a table.
    if (!name || name->empty() || name->front() == '.') return {};
    return printable(*name);
}

}  // namespace

std::optional<std::string> GitStore::branch(const std::string& cwd, Date now) {
    Head known;
    {
        const std::lock_guard guard(lock);
        if (const auto found = heads.find(cwd); found != heads.end()) known = found->second;
    }
    if (!known.watched.empty() && now - known.foundAt < placeMaxAge &&
        stampAt(known.watched) == known.stamp) {
        return known.branch;
    }
    Head head = lookUp(cwd, known, now);
    const std::lock_guard guard(lock);
    return heads.insert_or_assign(cwd, std::move(head)).first->second.branch;
}

void GitStore::retain(const std::set<std::string>& cwds) {
    const std::lock_guard guard(lock);
    std::erase_if(heads, [&](const auto& head) { return !cwds.contains(head.first); });
}

GitStore::Head GitStore::lookUp(const std::string& cwd, const Head& known, Date now) {
    Head head{.watched = findHead(cwd), .stamp = {}, .foundAt = now, .branch = {}};
    const bool isRepository = !head.watched.empty();
    if (!isRepository) head.watched = joinPath(cwd, ".git");
    // The stamp is taken before the contents: a change in between shows at the next call.
    head.stamp = stampAt(head.watched);
    if (!isRepository || !head.stamp) return head;
    if (head.watched == known.watched && head.stamp == known.stamp) {
        head.branch = known.branch;
    } else if (const auto contents = readRegularFile(head.watched, maximumBytes)) {
        head.branch = branchIn(*contents);
    }
    return head;
}

}  // namespace fleetwise
