#include "ui/mark/artwork.h"

#include "foundation/atomic_file.h"
#include "foundation/regular_file.h"
#include "localisation/localisation.h"
#include "sources/file_failure.h"
#include "ui/mark/artwork_images.h"

#include <QBuffer>
#include <QImageReader>
#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <optional>

namespace fleetwise {

namespace {

constexpr unsigned fileMode = 0644;
constexpr std::size_t largestPicture = 16 << 20;
/// In lightness from 0 to 255: under a name in black, within the ground of an icon, and from the
/// ground to what is drawn on it.
constexpr int darkestGround = 150;
constexpr int widestGround = 32;
constexpr int slightestDrawing = 48;

ArtworkResult failure(std::string path, std::error_code code) {
    return tl::unexpected(FileFailure{std::move(path), code}.text());
}

ArtworkResult writePng(const std::string& path, const QImage& image) {
    std::error_code code;
    const auto status = std::filesystem::symlink_status(path, code);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        return failure(path, std::make_error_code(std::errc::operation_not_supported));
    }
    QByteArray png;
    QBuffer buffer(&png);
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, "PNG")) {
        return failure(path, std::make_error_code(std::errc::io_error));
    }
    const std::string_view bytes(png.constData(), static_cast<std::size_t>(png.size()));
    if (auto written = writeFileAtomically(path, bytes, fileMode); !written) {
        return failure(path, written.error());
    }
    return {};
}

/// The darkest and the lightest pixel.
struct Lightness {
    Lightness(const QImage& image, const QRect& area) {
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                const int gray = qGray(image.pixel(x, y));
                darkest = std::min(darkest, gray);
                lightest = std::max(lightest, gray);
            }
        }
    }

    int range() const { return lightest - darkest; }

    int darkest = 255;
    int lightest = 0;
};

bool isOpaque(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 255) return false;
        }
    }
    return true;
}

/// The icon and its name below.
QRect iconPlace(const DiskImageLayout& layout, const QPoint& middle) {
    const int side = layout.iconSide;
    return {middle - QPoint(side / 2, side / 2), QSize(side, side + layout.labelHeight)};
}

bool suitsIcon(const QImage& image, const QRect& place) {
    const Lightness ground(image, place);
    return ground.darkest >= darkestGround && ground.range() <= widestGround;
}

/// What is wrong with the picture; nothing where it will do.
std::optional<Text> flaw(const QImage& image, const DiskImageLayout& layout) {
    const QRect from = iconPlace(layout, layout.application);
    const QRect to = iconPlace(layout, layout.applications);
    if (!isOpaque(image)) return "Das Bild ist nicht überall deckend."_text;
    if (!suitsIcon(image, from) || !suitsIcon(image, to))
        return "Unter den Symbolen ist das Bild zu dunkel oder zu unruhig."_text;
    const QRect between(from.topRight() + QPoint(1, 0), to.bottomLeft() - QPoint(1, 0));
    if (Lightness(image, between).range() < slightestDrawing)
        return "Zwischen den Symbolen ist nichts gezeichnet."_text;
    return {};
}

}  // namespace

ArtworkResult writeIconset(const std::string& folder) {
    std::error_code code;
    std::filesystem::create_directories(folder, code);
    if (code) return failure(folder, code);
    for (const int side : {16, 32, 128, 256, 512}) {
        const std::string name = fmt::format("{}/icon_{}x{}", folder, side, side);
        if (auto result = writePng(name + ".png", applicationIcon(side)); !result) return result;
        if (auto result = writePng(name + "@2x.png", applicationIcon(2 * side)); !result)
            return result;
    }
    return {};
}

ArtworkResult writeSocialImage(const std::string& path) {
    return writePng(path, socialImage());
}

ArtworkResult writeDiskImageBackground(const std::string& path) {
    return writePng(path, diskImageBackground());
}

ArtworkResult checkDiskImageBackground(const std::string& path) {
    const auto contents = readRegularFile(path, largestPicture);
    if (!contents) return tl::unexpected(FileFailure::ofReading(path, contents.error()).text());
    QByteArray bytes(contents->data(), static_cast<qsizetype>(contents->size()));
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "png");
    const auto failed = [&](Text reason) {
        return tl::unexpected(path + ": " + localised(reason));
    };
    const DiskImageLayout layout;
    if (!reader.canRead()) return failed("Das ist kein PNG-Bild."_text);
    if (reader.size() != layout.window)
        return failed("Das Bild hat nicht die Größe des Fensters."_text);
    QImage image;
    if (!reader.read(&image)) return failed("Das PNG-Bild ist beschädigt."_text);
    if (const auto reason = flaw(image, layout)) return failed(*reason);
    return {};
}

std::string diskImageLayout() {
    const DiskImageLayout layout;
    return fmt::format("{} {} {} {} {} {} {}", layout.window.width(), layout.window.height(),
                       layout.iconSide, layout.application.x(), layout.application.y(),
                       layout.applications.x(), layout.applications.y());
}

}  // namespace fleetwise
