#include "ui/mark/artwork.h"

#include "foundation/atomic_file.h"
#include "support/temporary_directory.h"
#include "ui/mark/artwork_images.h"

#include <QPainter>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>

namespace fleetwise::testing {
namespace {

QImage pictureWith(const QRect& area, const QColor& colour) {
    QImage image = diskImageBackground();
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(area, colour);
    return image;
}

TEST(Artwork, writesEveryPictureAtItsSize) {
    const TemporaryDirectory folder;
    ASSERT_TRUE(writeIconset(folder.at("new/icons.iconset")));
    for (const int side : {16, 32, 128, 256, 512}) {
        const QString name = QString("/new/icons.iconset/icon_%1x%1").arg(side);
        const QString path = QString::fromStdString(folder.path()) + name;
        EXPECT_EQ(QImage(path + ".png").size(), QSize(side, side));
        EXPECT_EQ(QImage(path + "@2x.png").size(), 2 * QSize(side, side));
    }
    const std::string social = folder.at("social.png");
    ASSERT_TRUE(writeSocialImage(social));
    ASSERT_TRUE(writeSocialImage(social)) << "over the one that is there";
    EXPECT_EQ(QImage(QString::fromStdString(social)).size(), QSize(1200, 630));
    struct ::stat status {};
    ASSERT_EQ(::stat(social.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0644U);
}

TEST(Artwork, namesTheFileThatItCannotWrite) {
    const TemporaryDirectory folder;
    const std::string link = folder.at("link.png");
    std::filesystem::create_symlink(folder.at("target"), link);
    ASSERT_TRUE(writeFileAtomically(folder.at("file"), "kept"));
    for (const std::string& path : {link, folder.path(), folder.at("missing/a.png")}) {
        const auto written = writeDiskImageBackground(path);
        ASSERT_FALSE(written) << path;
        EXPECT_TRUE(written.error().starts_with(path + ": ")) << written.error();
    }
    EXPECT_FALSE(writeIconset(folder.at("file")));
    EXPECT_EQ(contentsOf(folder.at("file")), "kept");
    EXPECT_FALSE(std::filesystem::exists(folder.at("target")));
}

TEST(DiskImageBackground, passesItsOwnCheck) {
    const TemporaryDirectory folder;
    ASSERT_TRUE(writeDiskImageBackground(folder.at("a.png")));
    const auto checked = checkDiskImageBackground(folder.at("a.png"));
    EXPECT_TRUE(checked) << checked.error();
    EXPECT_EQ(diskImageLayout(), "600 400 128 150 185 450 185");
}

TEST(DiskImageBackground, isCheckedForEveryFlaw) {
    struct Flawed {
        const char* name;
        QImage image;
        const char* reason;
    };
    QImage flat(600, 400, QImage::Format_RGB32);
    flat.fill(QColor(0xF5, 0xF5, 0xF7));
    const Flawed pictures[] = {
        {"flat", flat, "nichts gezeichnet"},
        {"small", diskImageBackground().scaled(300, 200), "nicht die Größe"},
        {"holed", pictureWith({0, 0, 1, 1}, QColor(255, 255, 255, 254)), "deckend"},
        {"dark", pictureWith({86, 121, 128, 172}, Qt::black), "zu dunkel"},
        {"dark name", pictureWith({450, 270, 10, 10}, QColor(90, 90, 90)), "zu dunkel"},
    };
    const TemporaryDirectory folder;
    for (const auto& [name, image, reason] : pictures) {
        const std::string path = folder.at(name);
        ASSERT_TRUE(image.save(QString::fromStdString(path), "PNG"));
        const auto checked = checkDiskImageBackground(path);
        ASSERT_FALSE(checked) << name;
        EXPECT_NE(checked.error().find(path), std::string::npos);
        EXPECT_NE(checked.error().find(reason), std::string::npos) << checked.error();
    }
}

TEST(DiskImageBackground, isCheckedForBeingAPicture) {
    const TemporaryDirectory folder;
    ASSERT_TRUE(writeDiskImageBackground(folder.at("a.png")));
    const std::string whole = contentsOf(folder.at("a.png"));
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{5}, std::size_t{40}, whole.size() / 2}) {
        ASSERT_TRUE(writeFileAtomically(folder.at("cut.png"), whole.substr(0, length)));
        EXPECT_FALSE(checkDiskImageBackground(folder.at("cut.png"))) << length;
    }
    EXPECT_FALSE(checkDiskImageBackground(folder.at("missing.png")));
    EXPECT_FALSE(checkDiskImageBackground(folder.path()));
}

}  // namespace
}  // namespace fleetwise::testing
