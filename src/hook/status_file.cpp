// The new text is written to a temporary file outside the status folder. Where a status file
// stands already, the two names are exchanged and the old file is removed under the temporary
// name: on some file systems a rename over an existing file waits until that is written back.
// Nothing is synced to the disk, since the next event writes the file again.

#include "hook/status_file.h"

#include "foundation/brand.h"
#include "hook/alarm.h"
#include "hook/exchange_names.h"
#include "hook/parser_padding.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace fleetwise::hook {

namespace {

constexpr std::size_t longestId = 128;
constexpr std::chrono::milliseconds lockPatience(500);
constexpr mode_t privateFile = 0600;
constexpr mode_t privateFolder = 0700;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

bool isIdCharacter(char character) {
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || character == '.' || character == '_' ||
           character == '-';
}

/// The folder `name` in `parent`, made where it is missing, be it by another event's program at
/// the same moment.
FileDescriptor openFolder(int parent, const char* name) {
    FileDescriptor folder(::openat(parent, name, folderFlags));
    if (folder || errno != ENOENT) return folder;
    if (::mkdirat(parent, name, privateFolder) != 0 && errno != EEXIST) return folder;
    return FileDescriptor(::openat(parent, name, folderFlags));
}

FileDescriptor openStateFolder(std::string_view home) {
    std::array<char, 4096> path{};
    const auto print = [&](const char* separator, const char* name) {
        const int length =
            std::snprintf(path.data(), path.size(), "%.*s/.claude%s%s",
                          static_cast<int>(home.size()), home.data(), separator, name);
        return length > 0 && static_cast<std::size_t>(length) < path.size();
    };
    const char* name = Brand::stateDirName.data();
    if (!print("/", name)) return {};
    FileDescriptor folder(::open(path.data(), folderFlags));
    if (folder || errno != ENOENT) return folder;
    print("", "");
    const FileDescriptor parent = openFolder(AT_FDCWD, path.data());
    return parent ? openFolder(parent.get(), name) : FileDescriptor();
}

/// Opens a file of the state folder for writing, with the folder `directory` that it lies in.
FileDescriptor create(int folder, const char* directory, const char* name, int flags) {
    const int all = flags | O_CREAT | O_CLOEXEC | O_NOFOLLOW;
    FileDescriptor file(::openat(folder, name, all, privateFile));
    if (!file && errno == ENOENT && openFolder(folder, directory)) {
        file = FileDescriptor(::openat(folder, name, all, privateFile));
    }
    return file;
}

/// Whether the exchange of two names failed only because it cannot be done here.
bool exchangeIsImpossible() {
    return errno == EINVAL || errno == ENOSYS || errno == ENOTSUP || errno == ENOENT;
}

}  // namespace

bool isUsableSessionId(std::string_view id) {
    return !id.empty() && id.size() <= longestId && id.front() != '.' &&
           std::all_of(id.begin(), id.end(), isIdCharacter);
}

StatusFile::StatusFile(std::string_view home, std::string_view id) : folder(openStateFolder(home)) {
    const auto print = [&](Name& name, const char* format) {
        std::snprintf(name.data(), name.size(), format, static_cast<int>(id.size()), id.data());
    };
    print(statusName, "status/%.*s.json");
    print(lockName, "locks/%.*s.lock");
    print(temporaryName, "locks/%.*s.new");
    if (folder) lock();
    if (lockFile) return;
    // Others may be at work on the same session.
    std::snprintf(temporaryName.data(), temporaryName.size(), "locks/%.*s.%d.new",
                  static_cast<int>(id.size()), id.data(), static_cast<int>(::getpid()));
}

void StatusFile::lock() {
    FileDescriptor file = create(folder.get(), "locks", lockName.data(), O_RDWR);
    if (!file) return;
    bool isLocked = ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
    if (!isLocked) {
        const Alarm alarm(lockPatience);
        isLocked = ::flock(file.get(), LOCK_EX) == 0;
    }
    if (!isLocked) return;
    struct ::stat status {};
    const bool wasRemoved = ::fstat(file.get(), &status) == 0 && status.st_nlink == 0;
    if (wasRemoved) return lock();  // by the end of the session; others may hold the next one
    lockFile = std::move(file);
}

void StatusFile::removeLock() {
    if (lockFile) ::unlinkat(folder.get(), lockName.data(), 0);
}

std::span<char> StatusFile::read(std::span<char> space) {
    const FileDescriptor file(
        ::openat(folder.get(), statusName.data(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    stands = file || errno != ENOENT;
    struct ::stat status {};
    if (!file || ::fstat(file.get(), &status) != 0) return {};
    isFolder = S_ISDIR(status.st_mode);
    if (!S_ISREG(status.st_mode)) return {};
    const std::size_t room = space.size() - parserPadding;
    std::size_t size = 0;
    while (size < room) {
        const ssize_t got = ::read(file.get(), space.data() + size, room - size);
        if (got < 0) return {};
        if (got == 0) break;
        size += static_cast<std::size_t>(got);
    }
    std::memset(space.data() + size, 0, parserPadding);
    return space.first(size == room ? 0 : size);
}

bool StatusFile::writeTemporary(std::string_view text) const {
    const auto createNew = [&] {
        return create(folder.get(), "locks", temporaryName.data(), O_WRONLY | O_EXCL);
    };
    FileDescriptor file = createNew();
    if (!file && errno == EEXIST) {
        ::unlinkat(folder.get(), temporaryName.data(), 0);  // left by one that was killed
        file = createNew();
    }
    while (file && !text.empty()) {
        const ssize_t written = ::write(file.get(), text.data(), text.size());
        if (written < 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return static_cast<bool>(file);
}

bool StatusFile::putInPlace() const {
    const int state = folder.get();
    const auto rename = [&] {
        return ::renameat(state, temporaryName.data(), state, statusName.data()) == 0;
    };
    if (stands) {
        if (exchangeNames(state, temporaryName.data(), statusName.data())) return true;
        if (!exchangeIsImpossible()) return false;
    }
    return rename() || (errno == ENOENT && openFolder(state, "status") && rename());
}

bool StatusFile::replace(std::string_view text) {
    if (isFolder) return false;
    const bool isInPlace = writeTemporary(text) && putInPlace();
    // After an exchange this is the old file.
    ::unlinkat(folder.get(), temporaryName.data(), 0);
    return isInPlace;
}

}  // namespace fleetwise::hook
