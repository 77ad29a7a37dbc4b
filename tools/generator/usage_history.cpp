#include "generator/usage_history.h"

#include "generator/random.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace fleetwise::generator {

namespace {

constexpr double interval = 300;
constexpr double hour = 3600;
constexpr double day = 86'400;
constexpr double fiveHours = 5 * hour;
constexpr double week = 7 * day;

struct Account {
    std::string org;
    double fiveHour = 0;  ///< percent
    double sevenDay = 0;
    double weekEnd = 0;  ///< seconds since 1970, as below
    std::optional<double> windowEnd;
};

std::vector<Account> newAccounts(const Plan& plan, double begin, Random& random) {
    std::vector<Account> accounts(static_cast<std::size_t>(std::max(plan.accounts, 1)));
    for (Account& account : accounts) {
        account.org = random.uuid();
        account.sevenDay = static_cast<double>(random.between(0, 60));
        account.weekEnd = begin + interval * static_cast<double>(random.between(1, 2015));
    }
    return accounts;
}

void passTime(Account& account, double now) {
    if (account.windowEnd && now >= *account.windowEnd) {
        account.windowEnd.reset();
        account.fiveHour = 0;
    }
    while (now >= account.weekEnd) {
        account.weekEnd += week;
        account.sevenDay = 0;
    }
}

/// Much by day, little in the evening, nothing at night.
void use(Account& account, double now, Random& random) {
    const double clock = std::fmod(now, day) / hour;
    if (clock < 7) return;
    const bool isAtWork = random.chance(clock < 19 ? 70 : 25);
    const double points = random.fraction() * 3.4;
    if (!isAtWork || account.fiveHour + points > 100) return;
    if (!account.windowEnd) account.windowEnd = now + fiveHours;
    account.fiveHour += points;
    account.sevenDay = std::min(account.sevenDay + points / 14, 100.0);
}

/// The others have the hours 9, 13, 17 … to themselves.
std::size_t accountInUse(double now, std::size_t count) {
    const auto clock = static_cast<std::size_t>(std::fmod(now, day) / hour);
    for (std::size_t other = 1; other < count; ++other) {
        if (clock == (5 + 4 * other) % 24) return other;
    }
    return 0;
}

}  // namespace

tl::expected<void, GeneratorError> writeUsageHistory(const Plan& plan, const std::string& path) {
    // Numbers of its own, so that everything else is the same with this file and without.
    Random random(plan.seed ^ 0x7573616765ULL);
    const double end = secondsSince1970(plan.now);
    const auto steps = static_cast<std::int64_t>(std::max(plan.usageDays, 0.0) * day / interval);
    const double begin = end - interval * static_cast<double>(steps);
    std::vector<Account> accounts = newAccounts(plan, begin, random);
    std::string samples;
    for (std::int64_t step = 0; step <= steps; ++step) {
        const double now = begin + interval * static_cast<double>(step);
        for (Account& account : accounts)
            passTime(account, now);
        Account& account = accounts[accountInUse(now, accounts.size())];
        use(account, now, random);
        const bool isNight = std::fmod(now, day) < 6 * hour;
        if (isNight && static_cast<std::int64_t>(now / day) % 3 == 0 && step < steps) continue;
        samples += fmt::format(R"({}{{"t":{},"u":{{"fh":{},"sd":{}}},"org":"{}"}})",
                               samples.empty() ? "" : ",", std::llround(now * 1000),
                               static_cast<int>(account.fiveHour),
                               static_cast<int>(account.sevenDay), account.org);
    }
    return writeFile(path, fmt::format(R"({{"samples":[{}]}})", samples), plan.now);
}

}  // namespace fleetwise::generator
