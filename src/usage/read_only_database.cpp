#include "usage/read_only_database.h"

#include "foundation/directory.h"
#include "foundation/file_descriptor.h"
#include "foundation/regular_file.h"

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace fleetwise {

namespace {

constexpr std::string_view logSuffix = "-wal";
constexpr std::size_t block = 256 * 1024;

/// Steps of the database's machine between two calls of the handler, and how many calls may come.
constexpr int stepsPerCall = 10'000;
constexpr int mostCalls = 500;

constexpr int longestValue = 1024 * 1024;
/// Of all databases of this process together.
constexpr sqlite3_int64 mostMemory = 64 * 1024 * 1024;

/// The bytes that SQLite locks (https://www.sqlite.org/fileformat2.html, "the lock-byte page").
constexpr off_t firstLockByte = 0x40000000;
constexpr off_t lockBytes = 512;

std::string uriPath(const std::string& path) {
    std::string escaped;
    for (const char character : path) {
        const bool isPlain = ('a' <= character && character <= 'z') ||
                             ('A' <= character && character <= 'Z') ||
                             ('0' <= character && character <= '9') || character == '/' ||
                             character == '-' || character == '_' || character == '.';
        if (isPlain) {
            escaped += character;
            continue;
        }
        std::array<char, 4> code{};
        std::snprintf(code.data(), code.size(), "%%%02X", static_cast<unsigned char>(character));
        escaped += code.data();
    }
    return escaped;
}

/// Whether another process holds a lock under which the file must not be read.
bool isLocked(const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.get() < 0) return false;
    struct flock lock {};
    lock.l_type = F_RDLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = firstLockByte;
    lock.l_len = lockBytes;
    return ::fcntl(file.get(), F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

std::int64_t sizeOf(const std::string& path) {
    const auto found = inspectFile(path);
    return found && found->kind == FileKind::regular ? found->stamp.sizeBytes : -1;
}

/// Whether the whole file was copied, into one that only its owner can read.
bool copyFile(const std::string& from, const std::string& to) {
    const auto source = RegularFile::open(from);
    if (!source || source->stamp().sizeBytes > ReadOnlyDatabase::largest) return false;
    const FileDescriptor target(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (target.get() < 0) return false;
    std::vector<char> buffer(block);
    const auto size = static_cast<std::uint64_t>(source->stamp().sizeBytes);
    for (std::uint64_t done = 0; done < size;) {
        const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(block, size - done));
        const auto got = source->read(done, {buffer.data(), wanted});
        if (!got || *got == 0) return false;
        if (::write(target.get(), buffer.data(), *got) != static_cast<ssize_t>(*got)) return false;
        done += *got;
    }
    return true;
}

}  // namespace

void ReadOnlyDatabase::Closer::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

ReadOnlyDatabase::Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

ReadOnlyDatabase::ReadOnlyDatabase(const std::string& uri, std::unique_ptr<Folder> copy)
    : folder(std::move(copy)) {
    constexpr int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_PRIVATECACHE;
    sqlite3_hard_heap_limit64(mostMemory);
    sqlite3* opened = nullptr;
    const int outcome = sqlite3_open_v2(uri.c_str(), &opened, flags, nullptr);
    connection.reset(opened);
    if (outcome != SQLITE_OK) connection.reset();
    if (!connection) return;
    sqlite3_busy_timeout(opened, 0);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_limit(opened, SQLITE_LIMIT_LENGTH, longestValue);
    sqlite3_limit(opened, SQLITE_LIMIT_SQL_LENGTH, longestValue);
    sqlite3_limit(opened, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(opened, SQLITE_LIMIT_TRIGGER_DEPTH, 1);
    sqlite3_exec(opened,
                 "PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0; PRAGMA temp_store = MEMORY",
                 nullptr, nullptr, nullptr);
}

std::unique_ptr<ReadOnlyDatabase::Folder> ReadOnlyDatabase::copyWithLog(const std::string& path) {
    std::error_code failed;
    std::string pattern =
        (std::filesystem::temp_directory_path(failed) / "fleetwise-XXXXXX").string();
    if (failed || ::mkdtemp(pattern.data()) == nullptr) return nullptr;
    auto folder = std::make_unique<Folder>(pattern);
    const std::string copy = joinPath(folder->path, "copy.sqlite");
    const std::string log = path + std::string(logSuffix);
    const auto stamps = [&] { return std::pair(inspectFile(path), inspectFile(log)); };
    const auto before = stamps();
    if (!copyFile(path, copy) || !copyFile(log, copy + std::string(logSuffix))) return nullptr;
    // A copy of two states at once would be damaged.
    const auto after = stamps();
    const bool isWhole = before.first && before.second && after.first && after.second &&
                         before.first->stamp == after.first->stamp &&
                         before.second->stamp == after.second->stamp;
    return isWhole ? std::move(folder) : nullptr;
}

std::optional<ReadOnlyDatabase> ReadOnlyDatabase::open(const std::string& path) {
    const std::int64_t size = sizeOf(path);
    if (size <= 0 || size > largest || isLocked(path)) return {};
    if (sizeOf(path + std::string(logSuffix)) > 0) {
        // Without what stands in the log it would tell of a state long past.
        auto copy = copyWithLog(path);
        if (!copy) return {};
        const std::string uri = "file:" + uriPath(joinPath(copy->path, "copy.sqlite"));
        ReadOnlyDatabase database(uri, std::move(copy));
        if (!database.connection) return {};
        return database;
    }
    ReadOnlyDatabase database("file:" + uriPath(path) + "?immutable=1");
    if (!database.connection) return {};
    return database;
}

bool ReadOnlyDatabase::query(const std::string& sql, const std::function<void(const Row&)>& visit) {
    int calls = 0;
    const auto countCall = [](void* count) {
        return ++*static_cast<int*>(count) > mostCalls ? 1 : 0;
    };
    sqlite3_progress_handler(connection.get(), stepsPerCall, countCall, &calls);
    sqlite3_stmt* prepared = nullptr;
    int outcome = sqlite3_prepare_v2(connection.get(), sql.c_str(), -1, &prepared, nullptr);
    if (outcome == SQLITE_OK) {
        while ((outcome = sqlite3_step(prepared)) == SQLITE_ROW)
            visit(Row(*prepared));
    }
    sqlite3_finalize(prepared);
    sqlite3_progress_handler(connection.get(), 0, nullptr, nullptr);
    return outcome == SQLITE_DONE;
}

std::optional<std::string> ReadOnlyDatabase::Row::text(int column) const {
    if (sqlite3_column_type(statement, column) != SQLITE_TEXT) return {};
    const auto* bytes = static_cast<const void*>(sqlite3_column_text(statement, column));
    if (bytes == nullptr) return {};
    const int length = std::min(sqlite3_column_bytes(statement, column), longestText);
    return std::string(static_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

std::optional<std::int64_t> ReadOnlyDatabase::Row::integer(int column) const {
    if (sqlite3_column_type(statement, column) != SQLITE_INTEGER) return {};
    return sqlite3_column_int64(statement, column);
}

std::optional<double> ReadOnlyDatabase::Row::number(int column) const {
    const int type = sqlite3_column_type(statement, column);
    if (type != SQLITE_INTEGER && type != SQLITE_FLOAT) return {};
    return sqlite3_column_double(statement, column);
}

}  // namespace fleetwise
