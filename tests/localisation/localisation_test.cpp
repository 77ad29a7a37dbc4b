#include "localisation/localisation.h"

#include "localisation/day_format.h"
#include "localisation/duration_format.h"
#include "localisation/language.h"
#include "localisation/money_format.h"
#include "localisation/number_format.h"
#include "localisation/text_pattern.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <thread>

namespace fleetwise {
namespace {

/// Leaves the interface German, as it found it.
class Localisation : public ::testing::Test {
protected:
    ~Localisation() override { setInterfaceLanguage("de", {}); }
};

TEST(TextPattern, knowsThePlacesForValues) {
    using Kinds = std::map<int, char>;
    const struct {
        std::string wording;
        std::string printfForm;
        std::optional<Kinds> placeholders;
    } rows[] = {
        {"Ruhend", "Ruhend", Kinds{}},
        {"%@: %d, %.1f %%", "%s: %d, %.1f %%", Kinds{{1, '@'}, {2, 'd'}, {3, 'f'}}},
        {"%%@ 100 %%", "%%@ 100 %%", Kinds{}},
        {"%2$@ of %1$d", "%2$s of %1$d", Kinds{{1, 'd'}, {2, '@'}}},
        {"%1$@ and %1$@", "%1$s and %1$s", Kinds{{1, '@'}}},
        {"%1$@ and %1$d", "", {}},
        {"%1$@ and %d", "", {}},
        {"%d and %1$@", "", {}},
        {"%0$@", "", {}},
        {"%*d", "", {}},
        {"%.1d", "", {}},
        {"%s", "", {}},
        {"100 %", "", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.wording);
        const auto pattern = textPattern(row.wording);
        ASSERT_EQ(pattern.has_value(), row.placeholders.has_value());
        if (!pattern) continue;
        EXPECT_EQ(pattern->printfForm, row.printfForm);
        EXPECT_EQ(pattern->placeholders, *row.placeholders);
    }
}

TEST_F(Localisation, looksTextsUpInTheCurrentTable) {
    EXPECT_EQ(interfaceLanguageInUse(), "de");
    EXPECT_EQ(localised("Arbeitet"_text), "Arbeitet");
    setInterfaceLanguage("en", {{"Arbeitet", "Working"}});
    EXPECT_EQ(interfaceLanguageInUse(), "en");
    EXPECT_EQ(localised("Arbeitet"_text), "Working");
    EXPECT_EQ(localised("Ruhend"_text), "Ruhend");
}

TEST_F(Localisation, passesOverTranslationsWhosePlaceholdersDoNotFit) {
    const struct {
        const char* name;
        std::string translation;
        std::string expected;
    } rows[] = {
        {"same order", "%@ has %d agents", "Lab has 3 agents"},
        {"other order", "%2$d agents in %1$@", "3 agents in Lab"},
        {"one twice", "%1$@: %2$d in %1$@", "Lab: 3 in Lab"},
        {"kinds swapped", "%d agents in %@", "Agenten von Lab: 3"},
        {"one missing", "Agents of %@", "Agenten von Lab: 3"},
        {"one too many", "%@: %d %d", "Agenten von Lab: 3"},
        {"numbers beyond the arguments", "%2$@: %3$d", "Agenten von Lab: 3"},
        {"no form at all", "%@: %d, 100 %", "Agenten von Lab: 3"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        setInterfaceLanguage("en", {{"Agenten von %@: %d", row.translation}});
        EXPECT_EQ(localisedFormat("Agenten von %@: %d"_text, std::string("Lab"), 3), row.expected);
    }
    EXPECT_EQ(localisedFormat("%d"_text, "three"), "%d");
}

TEST_F(Localisation, countsInTheFormsOfTheLanguage) {
    const StringsTable polish{
        {"%d Sitzung", "%d sesja"}, {"%d Sitzungen", "%d sesji"}, {"%d Sitzungen|few", "%d sesje"}};
    const StringsTable french{{"%d Sitzung", "%d session"}, {"%d Sitzungen", "%d sessions"}};
    const struct {
        const char* language;
        StringsTable table;
        std::int64_t count;
        const char* expected;
    } rows[] = {
        {"de", {}, 0, "0 Sitzungen"},
        {"de", {}, 1, "1 Sitzung"},
        {"de", {}, 2, "2 Sitzungen"},
        {"fr", french, 0, "0 session"},
        {"fr", french, 1, "1 session"},
        {"fr", french, 2, "2 sessions"},
        {"pl", polish, 0, "0 sesji"},
        {"pl", polish, 1, "1 sesja"},
        {"pl", polish, 4, "4 sesje"},
        {"pl", polish, 5, "5 sesji"},
        {"pl", polish, 12, "12 sesji"},
        {"pl", polish, 21, "21 sesji"},
        {"pl", polish, 22, "22 sesje"},
        {"pl", polish, 114, "114 sesji"},
        {"pl", {}, 3, "3 Sitzungen"},
        {"pl", {{"%d Sitzungen|few", "%@ sesje"}}, 3, "3 Sitzungen"},
    };
    for (const auto& row : rows) {
        setInterfaceLanguage(row.language, row.table);
        EXPECT_EQ(localisedCount(row.count, "%d Sitzung"_text, "%d Sitzungen"_text), row.expected)
            << row.language << " " << row.count;
    }
}

TEST_F(Localisation, hasALanguageThatShowsWhatIsCutOrNotLookedUp) {
    setInterfaceLanguage(interfaceLanguage("x-pseudo", {}), {});
    EXPECT_EQ(localised("Arbeitet"_text), "[Årbéîtét··]");
    EXPECT_EQ(localisedFormat("%@ von %@, %.1f %%"_text, "eins", "zwei", 0.5),
              "[eins vøn zwei, 0.5 %····]");
}

TEST_F(Localisation, mayChangeWhileOthersLookUp) {
    std::thread changing([] {
        for (int round = 0; round < 2000; ++round) {
            setInterfaceLanguage("en", {{"%d T", "%d d"}});
            setInterfaceLanguage("de", {});
        }
    });
    for (int round = 0; round < 2000; ++round) {
        const std::string text = localisedFormat("%d T"_text, 3);
        ASSERT_TRUE(text == "3 T" || text == "3 d") << text;
    }
    changing.join();
}

TEST(Language, isPreferredByTheEnvironment) {
    using Environment = std::map<std::string, std::string>;
    using Tags = std::vector<std::string>;
    const struct {
        const char* name;
        Environment environment;
        Tags expected;
    } rows[] = {
        {"nothing set", {}, {}},
        {"language, region, encoding, modifier", {{"LANG", "de_AT.UTF-8@euro"}}, {"de-AT"}},
        {"modifier without encoding", {{"LANG", "ca@valencia"}}, {"ca"}},
        {"LC_MESSAGES before LANG", {{"LANG", "de_DE"}, {"LC_MESSAGES", "pl_PL"}}, {"pl-PL"}},
        {"LC_ALL before all", {{"LC_ALL", "it"}, {"LC_MESSAGES", "pl"}, {"LANG", "de"}}, {"it"}},
        {"empty counts as not set", {{"LC_ALL", ""}, {"LANG", "fr_FR.UTF-8"}}, {"fr-FR"}},
        {"list before the locale",
         {{"LANGUAGE", "de_CH:fr::en"}, {"LANG", "it_CH"}},
         {"de-CH", "fr", "en"}},
        {"list alone", {{"LANGUAGE", "pl"}}, {"pl"}},
        {"empty list", {{"LANGUAGE", ""}, {"LANG", "it_CH"}}, {"it-CH"}},
        {"C in a list", {{"LANGUAGE", "C:en"}, {"LANG", "it_CH"}}, {"en"}},
        {"C", {{"LANG", "C"}}, {}},
        {"POSIX", {{"LC_ALL", "POSIX"}, {"LANG", "de_DE"}}, {}},
        {"C before the list", {{"LANGUAGE", "fr"}, {"LC_ALL", "C.UTF-8"}}, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto tags = preferredLanguages([&](const std::string& name) {
            const auto found = row.environment.find(name);
            return found == row.environment.end() ? std::nullopt : std::optional(found->second);
        });
        EXPECT_EQ(tags, row.expected);
    }
}

TEST(Language, isChosenBySettingThenPreference) {
    const struct {
        const char* setting;
        std::vector<std::string> preferred;
        const char* expected;
    } rows[] = {
        {"system", {}, "de"},        {"system", {"ja-JP", "pt", "fr-CA", "en"}, "fr"},
        {"system", {"EN-gb"}, "en"}, {"system", {"eng", "enx-US"}, "de"},
        {"pl", {"fr"}, "pl"},        {"ja", {"fr"}, "fr"},
        {"", {"it"}, "it"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(interfaceLanguage(row.setting, row.preferred), row.expected) << row.setting;
    }
}

TEST_F(Localisation, writesDurationsInTheirLargestUnits) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double seconds;
        const char* german;
    } rows[] = {
        {0, "0 s"},
        {-5, "0 s"},
        {59.9, "59 s"},
        {60, "1 min"},
        {359, "5 min"},
        {3599, "59 min"},
        {3600, "1 h"},
        {7500, "2 h 5 min"},
        {86399, "23 h 59 min"},
        {86400, "1 T"},
        {86400 + 60, "1 T"},
        {3 * 86400 + 4 * 3600.0, "3 T 4 h"},
        {std::nan(""), "0 s"},
        {-infinity, "0 s"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(durationText(Seconds(row.seconds)), row.german) << row.seconds;
    }
    EXPECT_TRUE(durationText(Seconds(infinity)).find(" T") != std::string::npos);
    setInterfaceLanguage("en", {{"%d T", "%d d"}});
    EXPECT_EQ(durationText(Seconds(2 * 86400.0)), "2 d");
}

TEST_F(Localisation, groupsTheDigitsOfNumbers) {
    const struct {
        const char* language;
        std::int64_t number;
        const char* expected;
    } rows[] = {
        {"de", 0, "0"},
        {"de", 999, "999"},
        {"de", 1000, "1.000"},
        {"de", 200'000, "200.000"},
        {"de", -999, "-999"},
        {"de", -1'000'000, "-1.000.000"},
        {"de", std::numeric_limits<std::int64_t>::min(), "-9.223.372.036.854.775.808"},
        {"en", 200'000, "200,000"},
        {"es", 200'000, "200.000"},
        {"it", 200'000, "200.000"},
        {"fr", 1'200'000, "1\u202F200\u202F000"},
        {"pl", 200'000, "200\u00A0000"},
        {"pl", 1234, "1234"},
        {"es", -1234, "-1234"},
        {"es", 12'345, "12.345"},
    };
    for (const auto& row : rows) {
        setInterfaceLanguage(row.language, {});
        EXPECT_EQ(groupedNumber(row.number), row.expected) << row.language;
    }
}

TEST_F(Localisation, shortensCounts) {
    const struct {
        const char* language;
        std::int64_t count;
        const char* expected;
    } rows[] = {
        {"de", 0, "0"},
        {"de", 999, "999"},
        {"de", 1000, "1 Tsd."},
        {"de", 12'349, "12,3 Tsd."},
        {"de", 99'960, "100 Tsd."},
        {"de", 999'499, "999 Tsd."},
        {"de", 999'500, "1 Mio."},
        {"en", 4'520'000'000, "4.5 Mrd."},
        {"de", std::numeric_limits<std::int64_t>::max(), "9.223.372 Bio."},
    };
    for (const auto& row : rows) {
        setInterfaceLanguage(row.language, {});
        EXPECT_EQ(shortNumber(row.count), row.expected) << row.language << " " << row.count;
    }
}

TEST_F(Localisation, writesSizesInTheLargestUnit) {
    const struct {
        const char* language;
        std::uint64_t bytes;
        const char* expected;
    } rows[] = {
        {"de", 0, "< 1 MB"},
        {"de", 999'999, "< 1 MB"},
        {"de", 1'000'000, "1 MB"},
        {"de", 412'499'999, "412 MB"},
        {"de", 999'499'999, "999 MB"},
        {"de", 999'500'000, "1,0 GB"},
        {"de", 1'234'567'890, "1,2 GB"},
        {"en", 1'234'567'890'000, "1,234.6 GB"},
        {"de", std::numeric_limits<std::uint64_t>::max(), "18.446.744.073,7 GB"},
    };
    for (const auto& row : rows) {
        setInterfaceLanguage(row.language, {});
        EXPECT_EQ(byteCountText(row.bytes), row.expected) << row.bytes;
    }
}

TEST_F(Localisation, writesMoneyInTheShortFormOfTheLanguage) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* language;
        double usd;
        const char* expected;
    } rows[] = {
        {"de", 0, "0,00 $"},
        {"de", 0.42, "0,42 $"},
        {"de", 1e-9, "< 0,01 $"},
        {"de", 0.00499, "< 0,01 $"},
        {"de", 0.005, "0,01 $"},
        {"de", 0.125, "0,13 $"},
        {"de", 12.4, "12,40 $"},
        {"de", 999.99, "999,99 $"},
        {"de", 999.996, "1.000 $"},
        {"de", 1234.5, "1.235 $"},
        {"de", 1'234'567.2, "1.234.567 $"},
        {"de", -0.42, "-0,42 $"},
        {"de", -1234, "-1.234 $"},
        {"de", -0.001, "0,00 $"},
        {"de", std::nan(""), "0,00 $"},
        {"de", infinity, "1.000.000.000.000 $"},
        {"en", 0.42, "$0.42"},
        {"en", 0.001, "< $0.01"},
        {"en", -1234, "-$1,234"},
        {"fr", 0.42, "0,42\u00A0$US"},
        {"fr", 1234, "1\u202F234\u00A0$US"},
        {"es", 0.42, "0,42 US$"},
        {"it", 1234, "1.234 USD"},
        {"pl", 1234, "1234\u00A0USD"},
        {"pl", 12345, "12\u00A0345\u00A0USD"},
    };
    for (const auto& row : rows) {
        setInterfaceLanguage(row.language, {});
        EXPECT_EQ(moneyText(row.usd), row.expected) << row.language << " " << row.usd;
    }
}

TEST_F(Localisation, writesDaysInTheFormOfTheLanguage) {
    const struct {
        const char* language;
        const char* day;
        const char* expected;
    } rows[] = {
        {"de", "2026-08-27", "27.08.2026"},
        {"en", "2026-08-07", "Aug 7, 2026"},
        {"fr", "2026-08-27", "27/08/2026"},
        {"pl", "2026-08-27", "27.08.2026"},
        {"en", "2026-13-01", "2026-13-01"},
        {"de", "2026-08-27T10:00:00", "2026-08-27T10:00:00"},
        {"de", "", ""},
    };
    for (const auto& row : rows) {
        setInterfaceLanguage(row.language, {});
        EXPECT_EQ(dayText(row.day), row.expected) << row.language << " " << row.day;
    }
    setInterfaceLanguage("de", {});
    EXPECT_EQ(shortDayText("2026-08-07"), "07.08.");
    setInterfaceLanguage("en", {});
    EXPECT_EQ(shortDayText("2026-08-07"), "Aug 7");
    EXPECT_EQ(shortDayText("x"), "x");
}

}  // namespace
}  // namespace fleetwise
