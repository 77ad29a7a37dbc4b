#pragma once

#include "foundation/file_descriptor.h"

#include <array>
#include <span>
#include <string_view>

namespace fleetwise::hook {

/// Whether the session's id can name a file: letters, digits, ".", "_" and "-", at most 128, and
/// no dot in front.
bool isUsableSessionId(std::string_view id);

/// One session's status file below the state folder, held for this process alone while the object
/// lives. Folders that are missing are made, mode 0700.
class StatusFile {
public:
    /// Waits at most half a second for other processes, then goes on without the lock. `id` must
    /// be usable.
    StatusFile(std::string_view home, std::string_view id);

    explicit operator bool() const { return static_cast<bool>(folder); }

    /// The file's text in `space`, of which parserPadding bytes behind it are zero; empty where
    /// there is no file, or one that no hook wrote.
    std::span<char> read(std::span<char> space);

    /// After read, puts `text` in the file's place as a whole: whoever reads it, and whenever this
    /// process is killed, finds the old text or the new. Whether that worked.
    bool replace(std::string_view text);

    /// Leaves no lock file behind, once all is written: for a session that has ended.
    void removeLock();

private:
    using Name = std::array<char, 192>;

    void lock();
    bool writeTemporary(std::string_view text) const;
    bool putInPlace() const;

    FileDescriptor folder;  ///< the state folder
    FileDescriptor lockFile;
    Name statusName{};
    Name lockName{};
    Name temporaryName{};
    bool stands = false;    ///< something has the status file's name
    bool isFolder = false;  ///< and it is a folder, which is not ours to remove
};

}  // namespace fleetwise::hook
