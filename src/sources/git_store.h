#pragma once

#include "foundation/date.h"
#include "foundation/file_stamp.h"

#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>

namespace fleetwise {

/// Which git branch a working directory is on, read from the repository's files (gitrepository-
/// layout(5)); no process is started. Any thread.
class GitStore {
public:
    /// The branch checked out in the repository around `cwd`, such as "feature/x"; another ref
    /// without its "refs/"; of a detached head the first seven digits. Nothing outside of
    /// repositories and where the head cannot be understood. Where the repository lies is looked
    /// up anew after 30 s; in between an unchanged directory costs one system call.
    std::optional<std::string> branch(const std::string& cwd, Date now);

    /// Forgets all other working directories.
    void retain(const std::set<std::string>& cwds);

private:
    struct Head {
        std::string watched;  ///< the file HEAD; without a repository ".git" in the directory
        std::optional<FileStamp> stamp;  ///< of what is watched; nothing where it is missing
        Date foundAt;
        std::optional<std::string> branch;
    };

    static Head lookUp(const std::string& cwd, const Head& known, Date now);

    std::mutex lock;
    std::unordered_map<std::string, Head> heads;  ///< by working directory; guarded by `lock`
};

}  // namespace fleetwise
