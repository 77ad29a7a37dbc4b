#pragma once

#include "foundation/date.h"
#include "foundation/file_descriptor.h"

#include <tl/expected.hpp>

#include <cstdint>
#include <string>
#include <system_error>

namespace fleetwise::generator {

/// Why a home could not be written.
struct GeneratorError {
    enum class Kind {
        occupied,    ///< `path` is there already: nothing was written
        unwritable,  ///< `path` could not be written, for the reason `code`
    };
    Kind kind = Kind::unwritable;
    std::string path;
    std::error_code code;
};

/// A new file, mode 0600, written from the front through one buffer. Text is appended to `text`;
/// faults are kept and come out at close().
class OutputFile {
public:
    /// Makes the folders on the way to the file.
    explicit OutputFile(std::string path);

    /// What is to follow in the file: append to it, then call endLine().
    std::string text;

    void endLine();

    /// How long the file is so far, counting what still stands in the buffer.
    std::int64_t size() const { return flushed + static_cast<std::int64_t>(text.size()); }

    /// Writes the rest and dates the file. Gives its size.
    tl::expected<std::int64_t, GeneratorError> close(Date modified);

private:
    void flush();
    void fail();

    std::string filePath;
    FileDescriptor descriptor;
    std::int64_t flushed = 0;
    std::error_code fault;
};

/// A whole small file: `contents` under `path`, dated `modified`.
tl::expected<void, GeneratorError> writeFile(const std::string& path, std::string_view contents,
                                             Date modified);

}  // namespace fleetwise::generator
