#pragma once

#include <tl/expected.hpp>

#include <string>

namespace fleetwise {

/// Nothing, or in the interface language which file could not be dealt with and why. All of these
/// need a QGuiApplication. Files are written whole with mode 0644; what stands there already is
/// replaced only if it is a regular file.
using ArtworkResult = tl::expected<void, std::string>;

/// The program's icon as ten PNG files, icon_16x16.png to icon_512x512@2x.png, in this folder,
/// which is created where it is missing.
ArtworkResult writeIconset(const std::string& folder);

/// The picture that a link to the program shows, as PNG.
ArtworkResult writeSocialImage(const std::string& path);

/// The background of the disk image, as PNG.
ArtworkResult writeDiskImageBackground(const std::string& path);

/// Whether the file can serve as that background: a PNG of the window's size without holes, with
/// something drawn between the two icons and a light, even ground under the icons and their names.
ArtworkResult checkDiskImageBackground(const std::string& path);

/// The disk image's layout as numbers with blanks between them: width and height of the window,
/// side of the icons, x and y of the program's icon, x and y of the applications folder's.
std::string diskImageLayout();

}  // namespace fleetwise
