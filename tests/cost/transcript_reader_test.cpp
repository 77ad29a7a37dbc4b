#include "cost/transcript_reader.h"

#include "cost/transcript_samples.h"
#include "foundation/directory.h"
#include "sources/project_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <thread>

namespace fleetwise::testing {
namespace {

constexpr std::size_t wholeLimit = TranscriptReader::fullScanLimit;

class TranscriptReaderTest : public ::testing::Test {
protected:
    TranscriptFile listed() const { return {path, inspectFile(path)->stamp}; }

    /// Runs `job` and returns how many bytes it read.
    template <typename Job>
    static std::uint64_t bytesReadBy(Job job) {
        const auto before = readCounts().bytes;
        job();
        return readCounts().bytes - before;
    }

    TemporaryDirectory folder;
    const std::string path = folder.at("projects/-work/s1.jsonl");
    TranscriptReader reader{folder.at("projects")};

    void write(std::string_view contents) const {
        folder.write("projects/-work/s1.jsonl", contents);
    }
    void append(std::string_view contents) const {
        folder.append("projects/-work/s1.jsonl", contents);
    }
};

TEST_F(TranscriptReaderTest, countsAHalfWrittenLineOnceItIsWhole) {
    const std::string last = reply("two", 5);
    write(reply("one", 3) + last.substr(0, 40));
    EXPECT_EQ(reader.stats(path)->outputTokens, 3);
    append(last.substr(40, last.size() - 41));
    EXPECT_EQ(reader.stats(path)->outputTokens, 3) << "all but the newline";
    append("\n");
    EXPECT_EQ(reader.stats(path)->outputTokens, 8);
    EXPECT_EQ(reader.stats(path)->outputTokens, 8);
    EXPECT_EQ(reader.stats(path)->lastReply, "two");
}

TEST_F(TranscriptReaderTest, readsOnlyWhatWasAppended) {
    const std::string title = R"({"type":"ai-title","aiTitle":"t"})"
                              "\n";
    write(prompt("p") + title + filler(500'000) + reply("one"));
    EXPECT_TRUE(reader.stats(path)->countsAreComplete);
    EXPECT_EQ(reader.label(path).text(), "t");
    EXPECT_EQ(bytesReadBy([&] {
                  (void)reader.stats(path);
                  (void)reader.label(path);
              }),
              0U);
    const std::string more = reply("two") + prompt("q");
    append(more);
    EXPECT_EQ(bytesReadBy([&] { EXPECT_EQ(reader.stats(path)->assistantTurns, 2); }), more.size());
    EXPECT_EQ(bytesReadBy([&] { EXPECT_EQ(reader.label(path).lastPrompt, "q"); }), more.size());
    EXPECT_EQ(reader.label(path).text(), "t");

    reader.retain({});
    EXPECT_GT(bytesReadBy([&] { (void)reader.stats(path); }), 500'000U) << "forgotten";
}

TEST_F(TranscriptReaderTest, startsAnewWithAnotherOrAShorterFile) {
    const std::string title = R"({"type":"custom-title","customTitle":"old"})"
                              "\n";
    write(title + prompt("old") + reply("a", 3) + reply("b", 3));
    EXPECT_EQ(reader.stats(path)->outputTokens, 6);
    EXPECT_EQ(reader.label(path).text(), "old");

    write(prompt("new") + reply("c", 1));
    EXPECT_EQ(reader.stats(path)->outputTokens, 1) << "shorter";
    EXPECT_EQ(reader.label(path).text(), "new");

    const std::string other = folder.write("other", reply("x", 7) + reply("y", 7) + prompt("z"));
    std::filesystem::rename(other, path);
    EXPECT_EQ(reader.stats(path)->outputTokens, 14) << "longer, but another file";
    EXPECT_EQ(reader.label(path), (TranscriptLabel{{}, "z", "/work"}));

    write("");
    EXPECT_FALSE(reader.stats(path));
    EXPECT_EQ(reader.label(path), TranscriptLabel());
    append(reply("again", 2) + filler(1000));
    EXPECT_EQ(reader.stats(path)->outputTokens, 2);
    std::filesystem::remove(path);
    EXPECT_FALSE(reader.stats(path));
    EXPECT_EQ(reader.takeSkipped(), SkipTally());
}

TEST_F(TranscriptReaderTest, readsOnlyTheEndOfAnOversizedFile) {
    const std::string mark = prompt("<!-- fleetwise:verbund=f -->");
    const std::string first = mark + reply("first", 3);
    const std::string last = reply("last", 4);
    write(first + filler(wholeLimit - first.size() - last.size()) + last);
    auto stats = reader.stats(path);
    EXPECT_TRUE(stats->countsAreComplete);
    EXPECT_EQ(stats->outputTokens, 7);

    append("\n");
    EXPECT_EQ(bytesReadBy([&] { stats = reader.stats(path); }), TranscriptReader::tailWindow);
    EXPECT_FALSE(stats->countsAreComplete);
    EXPECT_EQ(stats->outputTokens, 4);
    EXPECT_EQ(stats->cwd, std::nullopt) << "stands before the window";
    EXPECT_EQ(reader.read(listed())->federationId, "f") << "what was known stays true";

    std::filesystem::resize_file(path, wholeLimit);
    EXPECT_TRUE(reader.stats(path)->countsAreComplete);
    EXPECT_EQ(reader.stats(path)->outputTokens, 7) << "read whole again";
}

TEST_F(TranscriptReaderTest, isNotExhaustedByAGiantLine) {
    write(reply("before", 3) + filler(20'000'000) + reply("after", 4));
    EXPECT_EQ(reader.stats(path)->outputTokens, 4);
    write(reply("before", 3) + filler(10'000'000) + reply("after", 4));
    EXPECT_EQ(reader.stats(path)->outputTokens, 7);
    write(prompt("first") + filler(20'000'000));
    EXPECT_LE(bytesReadBy([&] { EXPECT_EQ(reader.label(path).text(), "first"); }),
              TranscriptReader::labelTailWindow + TranscriptReader::labelHeadWindow);
}

TEST_F(TranscriptReaderTest, looksForLabelsInTwoWindows) {
    const std::string title = R"({"type":"custom-title","customTitle":"t"})"
                              "\n";
    const struct {
        const char* name;
        std::string contents;
        TranscriptLabel label;
    } rows[] = {
        {"prompt in the head only", prompt("p") + filler(400'000), {{}, "p", "/work"}},
        {"title in the head only", title + filler(400'000) + prompt("p"), {"t", "p", "/work"}},
        {"between the windows", filler(150'000) + title + prompt("p") + filler(300'000), {}},
        {"behind the head, before the end", filler(100'000) + prompt("p") + filler(262'144), {}},
        {"first in the tail",
         filler(100'000) + prompt("p") + filler(262'144 - 200),
         {{}, "p", "/work"}},
        {"prompt across the head's end", filler(98'304 - 10) + prompt("p") + filler(300'000), {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        write(row.contents);
        EXPECT_EQ(TranscriptReader("").label(path), row.label);
    }
}

TEST_F(TranscriptReaderTest, keepsALabelThatLeavesTheWindow) {
    write(filler(150'000) +
          R"({"type":"ai-title","aiTitle":"t"})"
          "\n" +
          prompt("p"));
    EXPECT_EQ(reader.label(path), (TranscriptLabel{"t", "p", "/work"}));
    append(filler(1'000'000));
    EXPECT_EQ(bytesReadBy([&] {
                  EXPECT_EQ(reader.label(path), (TranscriptLabel{"t", "p", "/work"}));
              }),
              TranscriptReader::labelTailWindow);
    append(prompt("q"));
    EXPECT_EQ(reader.label(path).lastPrompt, "q");
}

// Whatever the pieces in which a file is appended to, figures and label are those of the whole.
TEST_F(TranscriptReaderTest, tellsTheSameInPiecesAsAtOnce) {
    std::mt19937 random(20261121);
    for (int round = 0; round < 40; ++round) {
        std::string contents;
        for (int part = 0; part < 3; ++part) {
            contents += recorded(recordedTranscripts[random() % std::size(recordedTranscripts)]);
            if (round % 4 == 0) contents += filler(30 + random() % 70'000);
        }
        write(contents.substr(0, 1));
        std::size_t written = 1;
        while (written < contents.size()) {
            const auto piece = std::min<std::size_t>(contents.size() - written, random() % 20'000);
            append(std::string_view(contents).substr(written, piece));
            written += piece;
            const auto reading = reader.read(listed());
            const auto label = reader.label(listed());
            TranscriptReader fresh("");
            ASSERT_EQ(reading, fresh.read(listed())) << "round " << round << ", byte " << written;
            ASSERT_EQ(label, fresh.label(listed())) << "round " << round << ", byte " << written;
        }
        ASSERT_TRUE(reader.stats(path)->countsAreComplete);
    }
}

TEST_F(TranscriptReaderTest, opensNothingButRegularFiles) {
    write(reply("known", 3));
    const TranscriptFile known = listed();
    EXPECT_EQ(reader.stats(path)->outputTokens, 3);
    std::filesystem::rename(path, folder.at("moved"));
    folder.makeLink("projects/-work/s1.jsonl", folder.at("moved"));
    const TranscriptFile grown{path, {.modifiedNanoseconds = 1, .sizeBytes = 9999}};
    EXPECT_EQ(reader.read(grown)->stats.outputTokens, 3) << "what was known of it";
    EXPECT_FALSE(reader.stats(path));
    EXPECT_EQ(reader.label(path), TranscriptLabel());
    EXPECT_FALSE(reader.stats(folder.makeFifo("fifo.jsonl")));
    EXPECT_FALSE(reader.stats(folder.makeDirectory("folder.jsonl")));
    EXPECT_FALSE(TranscriptReader("").read(grown));
    EXPECT_EQ(reader.takeSkipped(), (SkipTally{.notRegular = 3}));
    EXPECT_EQ(reader.takeSkipped(), SkipTally());
}

TEST_F(TranscriptReaderTest, findsTheTranscriptOfASession) {
    const std::string expected = folder.write("projects/-home-a-b/s2.jsonl", "x");
    const std::string elsewhere = folder.write("projects/cut-name-7f/s3.jsonl", "x");
    folder.makeLink("projects/-home-a-b/s4.jsonl", elsewhere);
    folder.makeDirectory("projects/-home-a-b/s5.jsonl");
    folder.write("outside/s6.jsonl", "x");
    folder.makeLink("projects/linked", folder.at("outside"));
    EXPECT_EQ(reader.transcriptURL("s2", "/home/a.b"), expected);
    EXPECT_EQ(reader.transcriptURL("s2", "/gone"), expected);
    EXPECT_EQ(reader.transcriptURL("s3", {}), elsewhere);
    for (const char* id : {"", "..", "../outside/s6", "-home-a-b/s2", "s4", "s5", "s6", "none"}) {
        EXPECT_FALSE(reader.transcriptURL(id, "/home/a.b")) << id;
    }
}

TEST_F(TranscriptReaderTest, searchesOnceForASession) {
    const std::string later = folder.write("projects/b/s1.jsonl", "x");
    EXPECT_EQ(reader.transcriptURL("s1", {}), later);
    // A new search might find this one: the order of a listing is the file system's.
    for (int index = 0; index < 20; ++index)
        folder.write("projects/a" + std::to_string(index) + "/s1.jsonl", "x");
    EXPECT_EQ(reader.transcriptURL("s1", {}), later);
    std::filesystem::remove(later);
    EXPECT_NE(reader.transcriptURL("s1", {}).value_or(later), later) << "gone: searched again";

    const std::string told = folder.write("elsewhere/s2.jsonl", "x");
    reader.remember("s2", told);
    EXPECT_EQ(reader.transcriptURL("s2", {}), told);
    reader.retain({});
    EXPECT_FALSE(reader.transcriptURL("s2", {}));
}

TEST_F(TranscriptReaderTest, servesThreadsWhileTheFileGrows) {
    constexpr int replies = 300;
    write(prompt("p"));
    const auto follow = [&] {
        std::int64_t turns = 0;
        while (turns < replies) {
            const auto seen = reader.stats(path)->assistantTurns;
            EXPECT_EQ(reader.label(path).text(), "p");
            EXPECT_LE(seen, replies);
            turns = std::max(turns, seen);
        }
    };
    std::thread first(follow);
    std::thread second(follow);
    for (int index = 0; index < replies; ++index) {
        const std::string line = reply("x");
        append(line.substr(0, 30));
        append(line.substr(30));
    }
    first.join();
    second.join();
    EXPECT_EQ(reader.stats(path)->outputTokens, replies);
}

}  // namespace
}  // namespace fleetwise::testing
