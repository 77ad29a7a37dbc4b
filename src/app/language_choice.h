#pragma once

#include <string>
#include <vector>

namespace fleetwise {

/// The language of the interface and what decided it.
struct LanguageChoice {
    std::vector<std::string> preferred;  ///< of the user, the preferred one first
    std::string setting;                 ///< "system", or a language such as "de"
    std::string language;                ///< one of interfaceLanguages
};

/// Chooses the language by the setting and the environment, and makes it and its table those of
/// the interface.
LanguageChoice chooseLanguage(const std::string& setting);

}  // namespace fleetwise
