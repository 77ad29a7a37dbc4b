#include "sources/file_failure.h"

namespace fleetwise {

namespace {

std::errc systemError(FileError error) {
    switch (error) {
        case FileError::missing:
            return std::errc::no_such_file_or_directory;
        case FileError::notRegular:
            return std::errc::operation_not_supported;
        case FileError::tooLarge:
            return std::errc::file_too_large;
        case FileError::unreadable:
            break;
    }
    return std::errc::permission_denied;
}

}  // namespace

FileFailure FileFailure::ofReading(std::string path, FileError error) {
    return {std::move(path), std::make_error_code(systemError(error))};
}

std::string FileFailure::text() const {
    return path + ": " + code.message();
}

}  // namespace fleetwise
