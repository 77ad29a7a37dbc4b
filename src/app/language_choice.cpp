#include "app/language_choice.h"

#include "app/environment.h"
#include "localisation/language.h"
#include "localisation/localisation.h"

namespace fleetwise {

LanguageChoice chooseLanguage(const std::string& setting) {
    LanguageChoice choice{.preferred = preferredLanguages(environmentVariable), .setting = setting};
    choice.language = interfaceLanguage(setting, choice.preferred);
    StringsTable table;
    if (const auto tables = programResource("share/fleetwise")) {
        table = loadStringsTable(*tables, choice.language);
    }
    setInterfaceLanguage(choice.language, std::move(table));
    return choice;
}

}  // namespace fleetwise
