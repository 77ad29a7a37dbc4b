#pragma once

#include "foundation/file_descriptor.h"
#include "foundation/file_stamp.h"

#include <tl/expected.hpp>

#include <cstdint>
#include <span>
#include <string>

namespace fleetwise {

enum class FileError {
    missing,     ///< nothing stands under that name
    notRegular,  ///< a link, folder, FIFO, socket or device
    tooLarge,    ///< larger than the reader accepts
    unreadable,  ///< permission or input/output error
};

/// A regular file opened for reading. Links are not followed and FIFOs do not block: the kind is
/// judged on the opened file itself, so nothing that replaces it after a listing is ever read.
class RegularFile {
public:
    static tl::expected<RegularFile, FileError> open(const std::string& path);

    /// Stamp and identity as they were when the file was opened.
    const FileStamp& stamp() const { return openedStamp; }
    const FileIdentity& identity() const { return openedIdentity; }

    /// Fills `into` from the byte `offset` on and returns how many bytes there were: fewer than
    /// asked for only at the end of the file.
    tl::expected<std::size_t, FileError> read(std::uint64_t offset, std::span<char> into) const;

private:
    FileDescriptor descriptor;
    FileStamp openedStamp;
    FileIdentity openedIdentity;
};

/// The whole file, if it is regular and at most `maximumBytes` long. The string's buffer has room
/// for the JSON parser's padding behind its end.
tl::expected<std::string, FileError> readRegularFile(const std::string& path,
                                                     std::size_t maximumBytes);

/// What this process has read through RegularFile since it started: diagnostics and tests hold
/// the readers to "only what was appended" by it.
struct ReadCounts {
    std::uint64_t opens = 0;
    std::uint64_t bytes = 0;
};
ReadCounts readCounts();

}  // namespace fleetwise
