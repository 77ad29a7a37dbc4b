#include "generator/output_file.h"

#include "foundation/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <filesystem>

namespace fleetwise::generator {

namespace {

constexpr std::size_t bufferBytes = 1 << 20;

timespec timespecOf(Date date) {
    const double seconds = std::floor(secondsSince1970(date));
    timespec time{};
    time.tv_sec = static_cast<time_t>(seconds);
    time.tv_nsec = static_cast<long>((secondsSince1970(date) - seconds) * 1e9);
    return time;
}

}  // namespace

OutputFile::OutputFile(std::string path) : filePath(std::move(path)) {
    const std::string folder = std::filesystem::path(filePath).parent_path().string();
    if (const auto made = makePrivateDirectory(folder); !made) {
        fault = made.error();
        return;
    }
    descriptor = FileDescriptor(
        ::open(filePath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!descriptor) fail();
}

void OutputFile::fail() {
    if (!fault) fault = {errno, std::generic_category()};
}

void OutputFile::endLine() {
    text += '\n';
    if (text.size() >= bufferBytes) flush();
}

void OutputFile::flush() {
    std::size_t done = 0;
    while (!fault && done < text.size()) {
        const ssize_t written = ::write(descriptor.get(), text.data() + done, text.size() - done);
        if (written >= 0) {
            done += static_cast<std::size_t>(written);
        } else if (errno != EINTR) {
            fail();
        }
    }
    flushed += static_cast<std::int64_t>(text.size());
    text.clear();
}

tl::expected<std::int64_t, GeneratorError> OutputFile::close(Date modified) {
    flush();
    const timespec times[2] = {timespecOf(modified), timespecOf(modified)};
    if (!fault && ::futimens(descriptor.get(), times) != 0) fail();
    descriptor = FileDescriptor();
    if (fault) {
        return tl::unexpected(GeneratorError{GeneratorError::Kind::unwritable, filePath, fault});
    }
    return flushed;
}

tl::expected<void, GeneratorError> writeFile(const std::string& path, std::string_view contents,
                                             Date modified) {
    OutputFile file(path);
    file.text = contents;
    return file.close(modified).map([](std::int64_t) {});
}

}  // namespace fleetwise::generator
