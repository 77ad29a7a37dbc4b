#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace fleetwise {

/// Another program's SQLite database, opened for reading. Nothing of it is changed, no file
/// appears beside it, nobody is waited for, and neither a hostile file nor a damaged one takes more
/// than a bounded time and memory. One thread at a time.
class ReadOnlyDatabase {
public:
    /// A database, or what its write-ahead log holds, that is larger is not read.
    static constexpr std::int64_t largest = 64 * 1024 * 1024;

    /// Where the database has a write-ahead log, it is read with it, as a private copy of both in a
    /// temporary folder, since reading it in place would write beside it. Otherwise, and where the
    /// copy fails, it is read in place as a file that does not change. Nothing where there is no
    /// regular file, where somebody writes to it, or where it is too large.
    static std::optional<ReadOnlyDatabase> open(const std::string& path);

    ReadOnlyDatabase(ReadOnlyDatabase&&) noexcept = default;
    ReadOnlyDatabase& operator=(ReadOnlyDatabase&&) = delete;

    /// One row of a result; columns are counted from 0.
    class Row {
    public:
        /// Nothing where the column holds no text: cut behind `longestText` bytes.
        std::optional<std::string> text(int column) const;
        /// Nothing where the column holds no whole number.
        std::optional<std::int64_t> integer(int column) const;
        /// Nothing where the column holds no number.
        std::optional<double> number(int column) const;

    private:
        friend class ReadOnlyDatabase;
        explicit Row(sqlite3_stmt& givenStatement) : statement(&givenStatement) {}

        sqlite3_stmt* statement;
    };

    static constexpr int longestText = 4096;

    /// Calls `visit` for each row of the result. False where the query failed, at once or behind
    /// some of the rows.
    bool query(const std::string& sql, const std::function<void(const Row&)>& visit);

private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    /// A folder that goes with what is in it.
    struct Folder {
        explicit Folder(std::string givenPath) : path(std::move(givenPath)) {}
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
        ~Folder();

        const std::string path;
    };

    explicit ReadOnlyDatabase(const std::string& uri, std::unique_ptr<Folder> copy = nullptr);

    static std::unique_ptr<Folder> copyWithLog(const std::string& path);

    std::unique_ptr<Folder> folder;  ///< that the copy stands in; outlives the connection
    std::unique_ptr<sqlite3, Closer> connection;
};

}  // namespace fleetwise
