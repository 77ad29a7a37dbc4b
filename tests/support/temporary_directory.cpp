#include "support/temporary_directory.h"

#include "foundation/directory.h"
#include "foundation/json_reader.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace fleetwise::testing {

namespace {

std::string writeWith(const std::string& path, std::string_view contents, std::ios::openmode mode) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream stream(path, std::ios::binary | mode);
    stream.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    stream.close();
    if (!stream) ADD_FAILURE() << "cannot write " << path;
    return path;
}

}  // namespace

TemporaryDirectory::TemporaryDirectory()
    : root((std::filesystem::temp_directory_path() / "fleetwise-test-XXXXXX").string()) {
    if (::mkdtemp(root.data()) == nullptr) ADD_FAILURE() << "cannot make " << root;
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}

std::string TemporaryDirectory::at(std::string_view name) const {
    return joinPath(root, name);
}

std::string TemporaryDirectory::write(std::string_view name, std::string_view contents) const {
    return writeWith(at(name), contents, std::ios::trunc);
}

std::string TemporaryDirectory::append(std::string_view name, std::string_view contents) const {
    return writeWith(at(name), contents, std::ios::app);
}

std::string TemporaryDirectory::makeDirectory(std::string_view name) const {
    std::filesystem::create_directories(at(name));
    return at(name);
}

std::string TemporaryDirectory::makeLink(std::string_view name, const std::string& target) const {
    std::filesystem::create_directories(std::filesystem::path(at(name)).parent_path());
    std::filesystem::create_symlink(target, at(name));
    return at(name);
}

std::string TemporaryDirectory::makeFifo(std::string_view name) const {
    std::filesystem::create_directories(std::filesystem::path(at(name)).parent_path());
    if (::mkfifo(at(name).c_str(), 0600) != 0) ADD_FAILURE() << "cannot make " << at(name);
    return at(name);
}

void setModificationDate(const std::string& path, Date date) {
    const double seconds = std::floor(secondsSince1970(date));
    timespec times[2];
    times[0].tv_sec = times[1].tv_sec = static_cast<time_t>(seconds);
    times[0].tv_nsec = times[1].tv_nsec =
        static_cast<long>((secondsSince1970(date) - seconds) * 1e9);
    if (::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0) {
        ADD_FAILURE() << "cannot date " << path;
    }
}

std::string dataPath(std::string_view name) {
    return joinPath(sourceDirectory() + "/tests/data", name);
}

std::string sourceDirectory() {
    return FLEETWISE_SOURCE_DIRECTORY;
}

std::string contentsOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) ADD_FAILURE() << "cannot read " << path;
    std::ostringstream contents;
    contents << stream.rdbuf();
    return contents.str();
}

std::string padded(std::string text) {
    text.reserve(text.size() + jsonPadding);
    return text;
}

}  // namespace fleetwise::testing
