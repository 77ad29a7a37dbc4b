#include "monitor/archive_index.h"

#include "foundation/virtual_main_loop.h"

#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

class ArchiveIndexTest : public ::testing::Test, protected ArchiveIndex::Observer {
protected:
    ArchiveIndexTest() { index.addObserver(*this); }
    ~ArchiveIndexTest() override { index.removeObserver(*this); }

    void archiveChanged() override { ++changes; }

    void has(const std::string& id, double age, bool isComplete = false) {
        ArchiveEntry entry;
        entry.id = id;
        entry.lastActivityAt = loop.now() - Seconds(age);
        entry.isComplete = isComplete;
        there.push_back(std::move(entry));
    }
    std::vector<std::string> ids() const {
        std::vector<std::string> listed;
        for (const ArchiveEntry& entry : index.entries())
            listed.push_back(entry.id);
        return listed;
    }

    VirtualMainLoop loop{dateFromSeconds(1'795'226'700)};
    std::vector<ArchiveEntry> there;
    std::vector<std::size_t> portions;
    int changes = 0;
    ArchiveIndex index{loop,
                       {.list = [this](Date) { return there; },
                        .complete =
                            [this](std::vector<ArchiveEntry> portion) {
                                portions.push_back(portion.size());
                                std::erase_if(portion, [](const ArchiveEntry& entry) {
                                    return entry.id == "subagent";
                                });
                                for (ArchiveEntry& entry : portion)
                                    entry.title = "Title of " + entry.id;
                                return portion;
                            }}};
};

TEST_F(ArchiveIndexTest, listsFirstAndThenReadsTitles) {
    has("old", 50, true);
    has("b", 10);
    has("a", 10);
    has("subagent", 20);
    has("a", 70);
    EXPECT_FALSE(index.hasListed());
    index.refresh();
    index.refresh();
    loop.finishBackground();
    EXPECT_EQ(ids(), (std::vector<std::string>{"a", "b", "subagent", "old"}));
    EXPECT_EQ(index.entry("a")->title, "");
    loop.finishBackground();  // the second wish is one more listing
    EXPECT_EQ(index.progress(), (ArchiveIndex::Progress{0, 3}));
    EXPECT_EQ(changes, 1) << "the second one brought nothing new";
    loop.finishBackground();
    EXPECT_EQ(ids(), (std::vector<std::string>{"a", "b", "old"}));
    EXPECT_EQ(index.entry("b")->title, "Title of b");
    EXPECT_NE(index.entry("b")->searchText.find("title of b"), std::string::npos);
    EXPECT_EQ(index.entry("subagent"), nullptr);
    EXPECT_EQ(index.entry("old")->id, "old");
    EXPECT_EQ(index.progress(), std::nullopt);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(loop.backgroundJobs(), 0U);
}

TEST_F(ArchiveIndexTest, readsInPortionsBetweenWhichAListingMayCome) {
    for (int number = 0; number < 250; ++number)
        has(std::to_string(number), number);
    index.refresh();
    loop.finishBackground();
    loop.finishBackground();
    EXPECT_EQ(index.progress(), (ArchiveIndex::Progress{100, 250}));
    EXPECT_EQ(changes, 1) << "titles that trickle in are told now and then";
    loop.advance(Seconds(1));
    EXPECT_EQ(changes, 2);
    there.resize(120);
    for (ArchiveEntry& entry : there)
        entry.isComplete = true;
    index.refresh();
    while (loop.finishBackground() > 0) {
    }
    EXPECT_EQ(portions, (std::vector<std::size_t>{100, 100}));
    EXPECT_EQ(index.entries().size(), 120U);
    EXPECT_EQ(index.progress(), std::nullopt);
}

}  // namespace
}  // namespace fleetwise::testing
