#pragma once

#include "cost/prices.h"
#include "foundation/user_defaults.h"

#include <array>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace fleetwise {

/// Decides which prices are in use: the built-in ones or those that were last fetched, with the
/// user's own on top of them, or one rate of the user's in place of all. Whatever changes installs
/// the book (Prices::install) and publishes it. Any thread, but for what reads or writes the
/// settings store, which belongs to the main thread: `load`, `setOverride`, `setFlatRate`, `reset`.
class PriceSettings {
public:
    /// US dollars per million tokens by "family.price", such as "opus.cacheRead": the families of
    /// Prices::knownFamilies with the members of Prices::TokenPrice.
    using Overrides = std::map<std::string, double, std::less<>>;

    /// Told the book in use, on the thread that changed it.
    using Published = std::function<void(const Prices::Book&)>;

    /// One of a family's prices, and what it is called in a key of Overrides.
    struct Member {
        std::string_view name;
        double Prices::TokenPrice::*price;
    };
    static constexpr std::array<Member, 5> members{{
        {"input", &Prices::TokenPrice::input},
        {"output", &Prices::TokenPrice::output},
        {"cacheRead", &Prices::TokenPrice::cacheRead},
        {"cacheWrite5m", &Prices::TokenPrice::cacheWrite5m},
        {"cacheWrite1h", &Prices::TokenPrice::cacheWrite1h},
    }};

    /// The key of a family's price in Overrides.
    static std::string keyOf(std::string_view family, const Member& member);

    static constexpr const char* overridesKey = "priceOverrides";  ///< dictionary like Overrides
    static constexpr const char* flatRateKey = "priceFlatRate";    ///< number

    /// `pricesFile` holds the block of prices that was last taken over (see parsePriceBlock).
    PriceSettings(UserDefaults& defaults, std::string pricesFile, Published published);

    /// Reads the file and the settings. What is no price, and a file that is no block, counts as
    /// not there.
    Prices::Book load();

    /// Takes over these prices as the ones last fetched.
    Prices::Book reapply(Prices::Book fetched);

    /// Sets one price of the user's, or gives it up. A key that does not exist and a price that is
    /// not possible change nothing.
    Prices::Book setOverride(std::optional<double> usdPerMillion, const std::string& key);

    /// Sets the one rate for everything, or gives it up. A rate that is not possible changes
    /// nothing.
    Prices::Book setFlatRate(std::optional<double> usdPerMillion);

    /// Gives up all of the user's own prices.
    Prices::Book reset();

    /// Puts the book together, installs and publishes it. A family that the fetched or built-in
    /// book does not have is in it only when all its prices are the user's: a price that nobody
    /// knows must not count as 0.
    Prices::Book resolve();

    Overrides custom() const;
    std::optional<double> flat() const;
    std::optional<Prices::Book> fetched() const;

private:
    Prices::Book bookLocked() const;
    void saveOverrides(const Overrides& overrides);

    UserDefaults& defaults;
    const std::string file;
    const Published publish;

    mutable std::mutex lock;                  ///< taken before that of Prices
    Overrides overrides;                      ///< guarded by `lock`
    std::optional<double> flatRate;           ///< guarded by `lock`
    std::optional<Prices::Book> fetchedBook;  ///< guarded by `lock`
};

}  // namespace fleetwise
