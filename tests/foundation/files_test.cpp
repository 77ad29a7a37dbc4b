#include "foundation/atomic_file.h"
#include "foundation/directory.h"
#include "foundation/regular_file.h"
#include "foundation/sha256.h"
#include "support/temporary_directory.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace fleetwise::testing {
namespace {

TEST(RegularFile, opensNothingButRegularFiles) {
    const TemporaryDirectory folder;
    const std::string file = folder.write("file", "text");
    const struct {
        const char* name;
        std::string path;
        FileError error;
    } rows[] = {
        {"missing", folder.at("missing"), FileError::missing},
        {"below a file", file + "/x", FileError::missing},
        {"folder", folder.makeDirectory("folder"), FileError::notRegular},
        {"link to a file", folder.makeLink("link", file), FileError::notRegular},
        {"dangling link", folder.makeLink("dangling", folder.at("missing")), FileError::notRegular},
        {"FIFO without a writer", folder.makeFifo("fifo"), FileError::notRegular},
        {"device", "/dev/null", FileError::notRegular},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto opened = RegularFile::open(row.path);
        ASSERT_FALSE(opened);
        EXPECT_EQ(opened.error(), row.error);
    }
}

TEST(RegularFile, readsRangesAndCountsThem) {
    const TemporaryDirectory folder;
    const std::string path = folder.write("file", "0123456789");
    const auto file = RegularFile::open(path);
    ASSERT_TRUE(file);
    const ReadCounts before = readCounts();
    char buffer[6] = {};
    EXPECT_EQ(file->read(7, buffer), 3U);
    EXPECT_EQ(std::string_view(buffer, 3), "789");
    EXPECT_EQ(readCounts().bytes - before.bytes, 3U);
    EXPECT_EQ(readRegularFile(path, 10).value(), "0123456789");
    EXPECT_EQ(readRegularFile(path, 9).error(), FileError::tooLarge);
}

TEST(Directory, judgesEachEntryItself) {
    const TemporaryDirectory folder;
    const std::string file = folder.write("a.json", "{}");
    folder.write("b.jsonl", "{}");
    folder.makeDirectory("c.json");
    folder.makeLink("d.json", file);
    folder.makeFifo("e.json");
    std::map<std::string, FileKind> kinds;
    for (const auto& entry : listDirectory(folder.path(), ".json"))
        kinds[entry.name] = entry.kind;
    EXPECT_THAT(kinds,
                ::testing::UnorderedElementsAre(::testing::Pair("a.json", FileKind::regular),
                                                ::testing::Pair("c.json", FileKind::directory),
                                                ::testing::Pair("d.json", FileKind::link),
                                                ::testing::Pair("e.json", FileKind::other)));
    EXPECT_TRUE(listDirectory(folder.at("missing")).empty());
    EXPECT_EQ(inspectFile(folder.at("d.json"))->kind, FileKind::link);
    EXPECT_FALSE(inspectFile(folder.at("missing")));
}

TEST(AtomicFile, replacesTheWholeFileAndLeavesNothingBehind) {
    const TemporaryDirectory folder;
    const std::string path = folder.write("own.json", "a longer text than the new one");
    ASSERT_TRUE(writeFileAtomically(path, "new"));
    EXPECT_EQ(contentsOf(path), "new");
    struct ::stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_EQ(listDirectory(folder.path()).size(), 1U);

    folder.write("occupied/file", "x");
    EXPECT_FALSE(writeFileAtomically(folder.at("occupied"), "new"));
    EXPECT_FALSE(writeFileAtomically(folder.at("missing/own.json"), "new"));
    EXPECT_EQ(listDirectory(folder.path()).size(), 2U);
}

TEST(AtomicFile, makesPrivateDirectoriesWithTheirParents) {
    const TemporaryDirectory folder;
    ASSERT_TRUE(makePrivateDirectory(folder.at("a/b/c")));
    ASSERT_TRUE(makePrivateDirectory(folder.at("a/b/c")));
    struct ::stat status {};
    ASSERT_EQ(::stat(folder.at("a/b").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);
    const std::string file = folder.write("file", "");
    EXPECT_FALSE(makePrivateDirectory(file));
}

TEST(Sha256, digestsFilesAndTextsAsHexadecimal) {
    const TemporaryDirectory folder;
    // The test vectors of FIPS 180-4.
    const std::string ofAbc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    EXPECT_EQ(sha256OfFile(folder.write("abc", "abc")), ofAbc);
    EXPECT_EQ(sha256OfText("abc"), ofAbc);
    EXPECT_EQ(sha256OfFile(folder.write("million", std::string(1'000'000, 'a'))),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
    EXPECT_FALSE(sha256OfFile(folder.at("missing")));
}

}  // namespace
}  // namespace fleetwise::testing
