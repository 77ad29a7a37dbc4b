#include "usage/window_reset_watch.h"

#include "quota_samples.h"

#include <gmock/gmock.h>

namespace fleetwise::testing {
namespace {

struct Look {
    double now;
    QuotaValues values;
    std::optional<int> told;  ///< what it stood at
    std::optional<std::string> org = {};
    std::optional<double> toldEnd = {};
};

TEST(WindowResetWatch, tellsRealDropsOnce) {
    const auto high = values({{-600, 50}});
    struct Row {
        const char* name;
        std::vector<Look> looks;
    };
    const Row rows[] = {
        {"ten points", {{0, high, {}}, {0, values({{-600, 50}, {-300, 40}}), 50}}},
        {"nine points", {{0, high, {}}, {0, values({{-600, 50}, {-300, 41}}), {}}}},
        {"rise and tie", {{0, high, {}}, {0, values({{-600, 50}, {-300, 90}, {0, 90}}), {}}}},
        {"the first look", {{0, values({{-600, 50}, {-300, 0}}), {}}}},
        {"first nothing", {{0, {}, {}}, {0, values({{-600, 50}, {-300, 0}}), {}}}},
        {"between two looks", {{0, high, {}}, {0, values({{-600, 50}, {-300, 2}, {0, 30}}), 50}}},
        {"the same values again",
         {{0, high, {}}, {0, values({{0, 0}}), 50}, {0, values({{-600, 50}, {0, 0}}), {}}}},
        {"a sample of the future",
         {{0, high, {}}, {0, values({{-600, 50}, {61, 0}}), {}}, {1, values({{61, 0}}), 50}}},
        {"five hours apart", {{0, high, {}}, {17'400, values({{17'400, 0}}), 50}}},
        {"across the night", {{0, high, {}}, {17'401, values({{17'401, 0}}), {}}}},
        {"older than the window",
         {{0, high, {}}, {17'701, values({{-600, 50}, {-300, 0}, {17'700, 3}}), {}}}},
        {"as old as the window", {{0, high, {}}, {17'700, values({{-600, 50}, {-300, 0}}), 50}}},
        {"another account",
         {{0, high, {}, "a"},
          {0, values({{0, 0}}), {}, "b"},
          {60, values({{60, 20}}), {}, "b"},
          {120, values({{120, 9}}), 20, "b"}}},
        {"an account unnamed for a while",
         {{0, high, {}, "a"}, {0, values({{-600, 50}}), {}}, {60, values({{60, 0}}), 50, "a"}}},
        {"a torn read between",
         {{0, high, {}},
          {0, {}, {}},
          {0, values({{-600, 50}, {0, 0}}), 50},
          {0, {}, {}},
          {0, values({{-600, 50}, {0, 0}}), {}}}},
        {"the other source, measured before",
         {{0, high, {}},
          {0, values({{-600, 50}, {0, 3}}), 50},
          {60, values({{-600, 50}, {-200, 1}, {0, 3}}), {}}}},
        {"the other source, still with the old figure",
         {{0, high, {}},
          {0, values({{0, 3}}), 50},
          {60, values({{0, 3}, {60, 50}}), {}},
          {360, values({{60, 50}, {360, 4}}), {}}}},
        {"the next reset",
         {{0, high, {}},
          {0, values({{0, 3}}), 50},
          {1'700, values({{1'700, 60}}), {}},
          {1'800, values({{1'800, 2}}), 60}}},
        {"before the told end, of another account",
         {{0, high, {}, {}, 3'600},
          {60, values({{60, 5}}), {}, {}, 18'000},
          {18'000, values({{120, 30}, {17'700, 4}}), 30}}},
        {"at the told end, by a clock that is behind",
         {{0, high, {}, {}, 660}, {60, values({{60, 5}}), 50, {}, 18'000}}},
        {"a clock set back",
         {{90'000, values({{90'000, 50}}), {}}, {0, high, {}}, {60, values({{60, 0}}), 50}}},
    };
    for (const Row& row : rows) {
        WindowResetWatch watch;
        for (const Look& look : row.looks) {
            const auto toldEnd = look.toldEnd ? std::optional(at(*look.toldEnd)) : std::nullopt;
            EXPECT_EQ(watch.observe(look.values, look.org, at(look.now), toldEnd), look.told)
                << row.name;
        }
    }
}

}  // namespace
}  // namespace fleetwise::testing
