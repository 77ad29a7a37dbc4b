#include "quota_samples.h"
#include "support/temporary_directory.h"
#include "usage/claude_configuration.h"
#include "usage/codex_quota.h"
#include "usage/own_sample_store.h"
#include "usage/quota_notice.h"
#include "usage/usage_history_store.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

using Store = UsageHistoryStore;

std::optional<UsageSamples> decoded(const std::string& text) {
    return Store::decode(padded(text));
}

UsageSamples entries(const std::string& text) {
    return decoded(R"({"version":1,"samples":[)" + text + "]}").value_or(UsageSamples());
}

TEST(UsageHistory, isReadEntryByEntry) {
    const UsageSamples read = entries(
        R"({"t":1795348800500,"u":{"fh":42.0,"sd":-3,"xu":1.5},"org":"a"},)"
        R"({"u":{"fh":1}},7,null,"x",{"t":"1795348800000"},{"t":1795348800000,"u":5},)"
        R"({"t":1795348800000,"u":{"fh":"9"}},{"t":1795348800000,"org":3},)"
        R"({"t":946684799999,"u":{"fh":1}},{"t":4102444800000,"u":{"fh":1}},{"t":1e300},)"
        R"({"t":1795348800000,"u":{"fh":null,"sd":123456789012,"new":[{}]},"org":null},{"t":1795348700000})");
    ASSERT_EQ(read.size(), 3);
    EXPECT_EQ(read[0], sample(at(-100), {}));
    EXPECT_EQ(read[1], sample(noon, {}, 10'000));
    UsageSample last = sample(at(0.5), 42, 0, "a");
    last.extraUsage = 1.5;
    EXPECT_EQ(read[2], last);
    EXPECT_EQ(decoded("{}"), UsageSamples());
    const std::string whole = R"({"samples":[{"t":1795348800000,"u":{"fh":1},"org":"a"}]})";
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    EXPECT_FALSE(decoded(R"({"samples":3})"));
    EXPECT_FALSE(decoded("[]"));
}

TEST(UsageHistory, isDecodedAgainOnlyWhereItChanged) {
    const TemporaryDirectory folder;
    Store store(folder.at("history.json"));
    EXPECT_TRUE(store.samples()->empty());
    folder.write("history.json", R"({"samples":[{"t":1795348800000,"u":{"fh":1}}]})");
    const auto first = store.samples();
    EXPECT_EQ(first->size(), 1);
    EXPECT_EQ(store.samples(), first);
    folder.write("history.json", "{\"samples\":[");
    EXPECT_TRUE(store.samples()->empty());
    std::filesystem::remove(folder.at("history.json"));
    folder.makeLink("history.json",
                    folder.write("other.json", R"({"samples":[{"t":1795348800000}]})"));
    EXPECT_TRUE(store.samples()->empty()) << "links are not followed";
}

TEST(UsageHistory, keepsTheLatestOfTooMany) {
    std::string text;
    for (std::size_t index = Store::mostSamples + 5; index > 0; --index)
        text += fmt::format(R"({{"t":{}}}{})", 1'795'348'800'000 + index, index > 1 ? "," : "");
    const UsageSamples read = entries(text);
    ASSERT_EQ(read.size(), Store::mostSamples);
    EXPECT_EQ(read.front().date, dateFromMilliseconds(1'795'348'800'006));
}

TEST(ClaudeConfiguration, readsPlanAndFiguresOnly) {
    const auto parse = [](const char* text) { return ClaudeConfiguration::parse(padded(text)); };
    const auto read = parse(
        R"({"projects":{"/x":[1]},"organizationType":"claude_pro","hasExtraUsageEnabled":false,)"
        R"("cachedUsageUtilization":{"fetchedAtMs":1795348800500,"utilization":{"five_hour":)"
        R"({"utilization":41.5,"resets_at":"2026-11-22T14:00:00+00:00"},"seven_day":)"
        R"({"utilization":17,"resets_at":null},"seven_day_opus":null}},"oauthAccount":)"
        R"({"emailAddress":"x","organizationType":"claude_max","organizationRateLimitTier":"t"}})");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->organizationType, "claude_max");
    EXPECT_EQ(read->rateLimitTier, "t");
    EXPECT_EQ(read->hasExtraUsage, false);
    EXPECT_EQ(read->utilization, sample(at(0.5), 42, 17));
    EXPECT_EQ(read->ends, (ToldWindowEnds{at(0.5), at(2 * hour), {}}));
    for (const char* text :
         {"{}", R"({"cachedUsageUtilization":{"fetchedAtMs":"x","utilization":7}})",
          R"({"cachedUsageUtilization":{"utilization":{"five_hour":{"utilization":1}}}})",
          R"({"oauthAccount":[],"organizationType":5,"cachedUsageUtilization":null})"}) {
        EXPECT_EQ(parse(text), ClaudeConfiguration()) << text;
    }
    EXPECT_FALSE(parse(R"({"organizationType":"claude_pro")"));
}

std::string tokenCount(const std::string& limits, const char* time = "2026-11-22T11:00:00.000Z") {
    return fmt::format(R"({{"timestamp":"{}","type":"event_msg","payload":{{"type":"token_count",)"
                       R"("info":null,"rate_limits":{}}}}})",
                       time, limits);
}

std::string slot(const char* name, double percent, const std::string& minutes) {
    return fmt::format(R"("{}":{{"used_percent":{},"window_minutes":{},"resets_at":1795352400}})",
                       name, percent, minutes);
}

TEST(CodexQuota, theLastRecordWithAWindowCounts) {
    const std::string both =
        "{" + slot("primary", 12, "10080") + "," + slot("secondary", 41.5, "300") +
        R"(,"credits":{"has_credits":true,"balance":" 12.50"},"plan_type":"plus"})";
    const std::vector<std::string> lines{
        tokenCount("{" + slot("primary", 99, "60") + "}"), tokenCount(both), tokenCount("null"),
        tokenCount(R"({"primary":null,"secondary":{},"plan_type":"pro"})"),
        R"({"type":"event_msg","payload":{"type":"agent_message","message":"\"rate_limits\""}})"};
    const auto quota = CodexQuota::parse(lines);
    ASSERT_TRUE(quota);
    EXPECT_EQ(quota->usedPercent, 12);
    EXPECT_EQ(quota->planType, "plus");
    EXPECT_EQ(quota->observedAt, at(-hour));
    const auto limits = CodexLimits::parse({lines.begin(), lines.end()});
    ASSERT_TRUE(limits && limits->windows.size() == 2);
    EXPECT_EQ(limits->windows[0].usedPercent, 42);
    EXPECT_EQ(limits->windows[0].windowMinutes, 300);
    EXPECT_EQ(limits->credits->balance, 12.5);
    EXPECT_FALSE(limits->windows[0].hasReset(at(hour - 1)));
    EXPECT_TRUE(limits->windows[0].hasReset(at(hour)));
    EXPECT_FALSE(limits->windows[0].isStale(at(4 * hour)));
    EXPECT_TRUE(limits->windows[0].isStale(at(4 * hour + 1)));
    EXPECT_FALSE(CodexQuota::parse({}));
    EXPECT_FALSE(CodexQuota::parse({lines[2], lines[3], lines[4], "{\"rate_limits\""}));
}

TEST(CodexQuota, figuresAndLabels) {
    struct Row {
        double percent;
        const char* minutes;
        int used;
        const char* label;
    };
    const Row rows[] = {
        {41.4, "300", 41, "5-Stunden-Fenster"}, {130, "90", 100, "90-Minuten-Fenster"},
        {-4, "60.0", 0, "1-Stunden-Fenster"},   {1, "null", 1, "Fenster unbekannt"},
        {0.5, "-60", 1, "Fenster unbekannt"},   {1, "59", 1, "59-Minuten-Fenster"}};
    for (const Row& row : rows) {
        const auto quota = CodexQuota::parse(
            {tokenCount("{" + slot("secondary", row.percent, row.minutes) + "}")});
        ASSERT_TRUE(quota) << row.minutes;
        EXPECT_EQ(quota->usedPercent, row.used) << row.minutes;
        EXPECT_EQ(quota->windowLabel(), row.label);
    }
}

TEST(CodexLimitsReader, theLatestObservationOfTheNewestRolloutsCounts) {
    const TemporaryDirectory home;
    const auto write = [&](int number, double percent, const char* time) {
        const auto path = home.write(fmt::format("sessions/2026/rollout-{}.jsonl", number),
                                     tokenCount("{" + slot("primary", percent, "300") + "}", time));
        setModificationDate(path, at(number));
    };
    CodexLimitsReader reader;
    EXPECT_FALSE(reader.read(home.path(), noon));
    write(0, 1, "2026-11-22T11:59:59Z");
    for (int number = 1; number <= 10; ++number) {
        const std::string name = fmt::format("sessions/rollout-x{}.jsonl", number);
        setModificationDate(home.write(name, "{}\n"), at(number));
    }
    write(11, 2, "2026-11-22T11:30:00Z");
    write(12, 3, "2026-11-22T11:20:00Z");
    const auto used = [&] { return reader.read(home.path(), noon)->windows.front().usedPercent; };
    EXPECT_EQ(used(), 2) << "the thirteenth is not looked at";
    const auto before = readCounts();
    EXPECT_EQ(used(), 2);
    EXPECT_EQ(readCounts().opens, before.opens);
    write(11, 4.25, "2026-11-22T12:01:01Z");
    EXPECT_EQ(used(), 3) << "the future does not count";
}

std::string noticeLine(const char* time, const std::string& resetsAt) {
    return fmt::format(R"({{"type":"assistant","timestamp":"{}","quotaLimits":)"
                       R"({{"resetsAt":{},"rateLimitType":"five_hour"}}}})"
                       "\n",
                       time, resetsAt);
}

TEST(QuotaNotice, theLatestBelowTheRootIsRemembered) {
    const TemporaryDirectory root;
    const std::string old =
        root.write("p/old.jsonl", noticeLine("2026-11-22T11:50:00Z", "1795352400"));
    setModificationDate(old, at(-5 * hour - 1));
    QuotaNotice notices;
    const auto latest = [&](double now) {
        const auto found = notices.aktuelle(root.path(), at(now), fiveHours);
        return found ? std::optional(found->resetsAt) : std::nullopt;
    };
    EXPECT_EQ(latest(0), std::nullopt);
    setModificationDate(old, at(-5 * hour));
    EXPECT_EQ(latest(59), std::nullopt) << "a minute's rest";
    setModificationDate(old, noon);
    EXPECT_EQ(latest(60), at(hour));
    const std::string lines =
        noticeLine("2026-11-22T11:55:00Z", "\"2026-11-22T14:00:00Z\"") +
        noticeLine("11:58:00", "1795363200") + noticeLine("2026-11-22T11:57:00Z", "3") +
        noticeLine("2026-11-22T13:00:00Z", "1795363200") + R"({"quotaLimits":)";
    setModificationDate(root.write("p/s/subagents/agent-1.jsonl", lines), noon);
    EXPECT_EQ(latest(120), at(2 * hour));
    EXPECT_EQ(latest(0), at(2 * hour)) << "the clock was set back";
    EXPECT_FALSE(notices.aktuelle(root.at("none"), noon, fiveHours));
}

TEST(QuotaNotice, theTailBeginsWithALine) {
    const TemporaryDirectory folder;
    const std::string line(99, 'x');
    std::string lines;
    while (lines.size() < 3 * QuotaNotice::tailSize)
        lines += line + "\n";
    struct Row {
        const char* name;
        std::size_t length;
        std::size_t tail;
    };
    const std::size_t whole = QuotaNotice::tailSize / 100 * 100;
    const Row rows[] = {{"empty", 0, 0},
                        {"shorter", 150, 150},
                        {"as long", QuotaNotice::tailSize, QuotaNotice::tailSize},
                        {"a byte longer", QuotaNotice::tailSize + 1, QuotaNotice::tailSize - 99},
                        {"from a line on", QuotaNotice::tailSize + 100, QuotaNotice::tailSize},
                        {"whole lines", 3 * whole, whole}};
    for (const Row& row : rows) {
        const std::string path = folder.write("t.jsonl", lines.substr(0, row.length));
        EXPECT_EQ(QuotaNotice::schwanz(path),
                  lines.substr(0, row.length).substr(row.length - row.tail))
            << row.name;
    }
    folder.write("t.jsonl", std::string(2 * QuotaNotice::tailSize, 'x'));
    EXPECT_EQ(QuotaNotice::schwanz(folder.at("t.jsonl")), "");
    EXPECT_EQ(QuotaNotice::schwanz(folder.makeFifo("fifo")), "");
}

TEST(OwnSamples, eachFetchIsKeptOnceForFourteenDays) {
    const TemporaryDirectory folder;
    const std::string path = folder.write("usage-samples.json", "{\"samples\":[{");
    OwnSampleStore store(path);
    EXPECT_TRUE(store.add({}, noon)->empty());
    EXPECT_EQ(contentsOf(path), "{\"samples\":[{") << "nothing new, nothing written";
    EXPECT_EQ(store.add(sample(at(0.25), 1, 2), noon)->size(), 1);
    EXPECT_EQ(contentsOf(path), R"({"samples":[{"t":1795348800250,"u":{"fh":1,"sd":2}}]})");
    EXPECT_EQ(store.add(sample(at(0.25), 9), noon)->size(), 1);
    EXPECT_EQ(store.add(sample(at(61), 9), noon)->size(), 1) << "of the future";
    EXPECT_EQ(store.add(sample(at(1), {}), noon)->size(), 1) << "without a figure";
    EXPECT_EQ(store.add(sample(at(-14 * day), 3), noon)->front().fiveHour, 3);
    EXPECT_EQ(*OwnSampleStore(path).add({}, noon), *store.add({}, noon));
    EXPECT_EQ(store.add(sample(at(-14 * day), 3), at(1))->size(), 1) << "too old";
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_EQ(store.add(sample(at(300), 4), at(300))->size(), 2) << "known, if not written";
}

TEST(OwnSamples, theDesktopAppsSampleWins) {
    const UsageSamples own{sample(at(-301), 1), sample(at(-300), 2), sample(at(600), 3),
                           sample(at(901), 4)};
    const UsageSamples history{sample(noon, 9), sample(at(250), {}), sample(at(601), 8)};
    EXPECT_EQ(OwnSampleStore::merged(history, own),
              (UsageSamples{own[0], history[0], history[1], history[2]}));
    EXPECT_EQ(OwnSampleStore::merged({}, own), own);
    EXPECT_EQ(OwnSampleStore::merged({sample(at(250), {})}, own).size(), 5) << "it has no figures";
}

}  // namespace
}  // namespace fleetwise::testing
