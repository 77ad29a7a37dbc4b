#include "usage/file_tail.h"

#include "foundation/json_reader.h"

#include <algorithm>

namespace fleetwise {

tl::expected<std::string, FileError> readFileTail(const std::string& path, std::size_t longest) {
    const auto file = RegularFile::open(path);
    if (!file) return tl::unexpected(file.error());
    const auto size =
        static_cast<std::uint64_t>(std::max<std::int64_t>(file->stamp().sizeBytes, 0));
    // The byte before tells whether a line begins right behind it.
    const bool isWhole = size <= longest;
    const std::uint64_t begin = isWhole ? 0 : size - longest - 1;
    std::string text;
    text.reserve(static_cast<std::size_t>(size - begin) + jsonPadding);
    text.resize(static_cast<std::size_t>(size - begin));
    const auto length = file->read(begin, text);
    if (!length) return tl::unexpected(length.error());
    text.resize(*length);
    if (!isWhole) {
        const std::size_t end = text.find('\n');
        text.erase(0, end == std::string::npos ? end : end + 1);
    }
    return text;
}

}  // namespace fleetwise
