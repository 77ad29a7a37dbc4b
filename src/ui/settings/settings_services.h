#pragma once

#include "cost/price_feed.h"
#include "cost/price_settings.h"
#include "monitor/feed_update.h"
#include "reactions/action_runner.h"
#include "reactions/login_start.h"
#include "reactions/sound_player.h"
#include "reactions/webhook.h"

#include <functional>
#include <string>
#include <vector>

namespace fleetwise {

/// What the about page tells of the program.
struct ProgramFacts {
    struct Place {
        std::string path;
        std::string purpose;  ///< in the interface language
    };
    struct Part {
        std::string name;     ///< of a library, and its version where it is known
        std::string licence;  ///< its SPDX identifier
    };

    std::string version;
    std::vector<Place> read;     ///< files and folders of the agents
    std::vector<Place> written;  ///< files and folders of our own, and the agent's settings
    std::vector<Part> parts;
};

/// What the settings window needs of the program besides the monitor. All outlives it.
struct SettingsServices {
    const ActionRunner& actions;
    SoundPlayer& sounds;
    Webhook& webhook;
    PriceSettings& prices;
    const PriceFeed& priceFeed;
    const FeedUpdate& feedUpdate;
    LoginStart& loginStart;
    /// The programs of the terminals that are installed, the preferred one first.
    std::function<std::vector<std::string>()> terminals;
    std::function<ProgramFacts()> facts;  ///< in the interface language of the moment
    /// The user's own backups of the agent's settings, the latest first; full paths.
    std::function<std::vector<std::string>()> settingsBackups;
    std::function<Date()> now;
};

}  // namespace fleetwise
