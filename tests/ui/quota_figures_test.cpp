#include "ui/quota/quota_figures.h"

#include "ui/made_up_usage.h"
#include "ui/mark/mark_tooltip.h"
#include "ui/quota/quota_painting.h"

#include <QGuiApplication>
#include <gtest/gtest.h>

namespace fleetwise::testing {
namespace {

const Date now = dateFromSeconds(1'795'226'700);
const Calendar utc = ::date::locate_zone("Etc/UTC");

CodexQuota codexWindow(std::int64_t minutes, int percent, std::optional<Date> resetsAt,
                       Date observedAt = now) {
    CodexQuota quota;
    quota.usedPercent = percent;
    quota.windowMinutes = minutes;
    quota.resetsAt = resetsAt;
    quota.observedAt = observedAt;
    return quota;
}

std::vector<std::string> textsOf(const QuotaFigures& figures) {
    std::vector<std::string> texts;
    for (const auto& block : figures.blocks) {
        if (!block.title.isEmpty()) texts.push_back("# " + block.title.toStdString());
        for (const auto& line : block.lines)
            texts.push_back(line.text.toStdString());
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(QuotaFigures, tellWhatMattersMostFirst) {
    const auto figures = quotaFigures(usageOfOneAccount(now), now, utc);
    EXPECT_EQ(textsOf(figures), (Texts{"5 h 42 % · noch 1 h 50 min · am Ende 66 % · "
                                       "8,5 Punkte je Stunde",
                                       "7 d 17 % · Di 02:05"}));
    const auto& line = figures.blocks.at(0).lines.at(0);
    EXPECT_EQ(line.used, 0.42);
    EXPECT_EQ(line.projected, 0.66);
    EXPECT_TRUE(line.explanation.startsWith("Fenster\n5 h 42 %"));
    EXPECT_EQ(quotaFigures(UsageOverview(), now, utc), QuotaFigures());
}

TEST(QuotaFigures, greyWhatIsStale) {
    UsageOverview usage = usageOfOneAccount(now);
    usage.fiveHour->isStale = true;
    const auto figures = quotaFigures(usage, now + Seconds(3600), utc);
    const auto& line = figures.blocks.at(0).lines.at(0);
    EXPECT_TRUE(line.isStale);
    EXPECT_EQ(line.text, "5 h 42 % · vor 1 h gemessen · noch 50 min") << "nothing is foretold";
    EXPECT_EQ(line.projected, std::nullopt);
    EXPECT_FALSE(figures.blocks.at(0).lines.at(1).isStale);
}

TEST(QuotaFigures, nameSeveralAccountsAndCodex) {
    UsageOverview usage = usageOfOneAccount(now);
    const auto account = [&](const char* title, int percent) {
        UsageHistoryStore::Konto konto;
        konto.titel = title;
        konto.fuenfStunden = quotaWindow(percent, Seconds(3600), now);
        return konto;
    };
    usage.codex.emplace();
    usage.codex->windows = {codexWindow(300, 80, now - Seconds(60)),
                            codexWindow(10'080, 20, now + Seconds(600)),
                            codexWindow(90, 5, {}, now - Seconds(2 * 3600))};
    auto figures = quotaFigures(usage, now, utc);
    EXPECT_EQ(figures.blocks.at(0).title, "Claude Code");
    const auto& codex = figures.blocks.at(1).lines;
    EXPECT_EQ(codex.at(0).text, "5 h zurückgesetzt seit 1 min") << "not 80 %";
    EXPECT_EQ(codex.at(0).used, 0);
    EXPECT_EQ(codex.at(1).text, "7 d 20 % · noch 10 min");
    EXPECT_EQ(codex.at(2).text, "90-Minuten-Fenster 5 % · vor 2 h gemessen");
    EXPECT_TRUE(codex.at(0).isStale && !codex.at(1).isStale && codex.at(2).isStale);

    usage.codex.reset();
    usage.accounts = {account("Privat", 10), account("Weiteres Konto 1", 20)};
    EXPECT_EQ(
        textsOf(quotaFigures(usage, now, utc)),
        (Texts{"# Privat", "5 h 10 % · noch 1 h", "# Weiteres Konto 1", "5 h 20 % · noch 1 h"}));
    for (int more = 3; more <= 6; ++more)
        usage.accounts.push_back(account("Noch eines", more));
    figures = quotaFigures(usage, now, utc);
    EXPECT_EQ(figures.blocks.size(), 4U);
    EXPECT_EQ(figures.blocks.back(), (QuotaFigures::Block{"3 weitere Konten", {}}));
}

TEST(QuotaMark, showsOnlyWhatCanBeReliedOn) {
    const struct {
        const char* name;
        int percent;
        bool isStale;
        std::optional<Seconds> left;
        MarkFigures expected;
    } rows[] = {
        {"minutes", 42, false, Seconds(99 * 60), {.fiveHour = 0.42, .reset = "99 m"}},
        {"a minute begun is one", 42, false, Seconds(61), {.fiveHour = 0.42, .reset = "2 m"}},
        {"hours", 42, false, Seconds(99 * 60 + 1), {.fiveHour = 0.42, .reset = "2 h"}},
        {"nearest hour", 42, false, Seconds(4.4 * 3600), {.fiveHour = 0.42, .reset = "4 h"}},
        {"end unknown", 120, false, {}, {.fiveHour = 1.2}},
        {"end passed", 42, false, Seconds(0), {.fiveHour = 0.42}},
        {"stale", 42, true, Seconds(3600), {}},
    };
    for (const auto& row : rows) {
        UsageOverview usage;
        usage.fiveHour = quotaWindow(row.percent, row.left.value_or(Seconds(0)), now);
        if (!row.left) usage.fiveHour->windowEndsAt.reset();
        usage.fiveHour->isStale = row.isStale;
        MarkFigures figures = quotaMark(usage, now);
        figures.resetShare.reset();
        EXPECT_EQ(figures, row.expected) << row.name;
    }
    UsageOverview usage;
    usage.fiveHour = quotaWindow(1, Seconds(9000), now);
    EXPECT_EQ(quotaMark(usage, now).resetShare, 0.5);
    EXPECT_EQ(quotaMark(usage, now + Seconds(299)).resetShare, 0.5) << "not drawn anew yet";
    EXPECT_GT(quotaMark(usage, now + Seconds(301)).resetShare, 0.5);
}

TEST(QuotaMark, isToldInItsTooltip) {
    UsageOverview usage = usageOfOneAccount(now);
    usage.sevenDay->isStale = true;
    EXPECT_EQ(markTooltip({.quota = quotaTooltip(usage, now + Seconds(600), utc)}),
              "Fleetwise: alles ruhig\n5 h 42 % · noch 1 h 40 min\n"
              "7 d 17 % · Di 02:05 · vor 10 min gemessen");
}

TEST(QuotaPlaces, keepThePartsApartAndInside) {
    const auto block = [](const char* title, std::size_t lines) {
        return QuotaFigures::Block{title, std::vector<QuotaFigures::Line>(lines)};
    };
    const QuotaFigures each[] = {
        {{block("", 2)}},
        {{block("Claude Code", 2), block("Codex", 2)}},
        {{block("A rather long name of an account that somebody gave it", 2), block("B", 1),
          block("2 weitere Konten", 0), block("Codex", 3)}},
    };
    const QFontMetrics metrics(QGuiApplication::font());
    for (const auto& figures : each) {
        for (const int width : {120, 336, 800, 2500}) {
            for (const auto arrangement :
                 {QuotaArrangement::stacked, QuotaArrangement::sideBySide}) {
                SCOPED_TRACE(width);
                const auto places = quotaPlaces(figures, arrangement, width, metrics);
                ASSERT_EQ(places.blocks.size(), figures.blocks.size());
                const QRect whole(0, 0, width, places.height);
                std::vector<QRect> parts;
                for (std::size_t at = 0; at < places.blocks.size(); ++at) {
                    ASSERT_EQ(places.blocks[at].lines.size(), figures.blocks[at].lines.size());
                    EXPECT_EQ(places.blocks[at].title.isEmpty(),
                              figures.blocks[at].title.isEmpty());
                    parts.push_back(places.blocks[at].title);
                    for (const QRect& line : places.blocks[at].lines) {
                        EXPECT_GT(line.width(), width > 120 ? 60 : 0);
                        parts.push_back(line);
                    }
                }
                std::erase_if(parts, [](const QRect& part) { return part.isEmpty(); });
                for (std::size_t one = 0; one < parts.size(); ++one) {
                    EXPECT_TRUE(whole.contains(parts[one]));
                    for (std::size_t other = 0; other < one; ++other)
                        EXPECT_FALSE(parts[one].intersects(parts[other]));
                }
            }
        }
    }
    EXPECT_EQ(quotaPlaces({}, QuotaArrangement::stacked, 300, metrics).height, 0);
}

}  // namespace
}  // namespace fleetwise::testing
