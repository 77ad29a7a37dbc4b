#include "localisation/localisation.h"

#include "localisation/pseudo_language.h"
#include "localisation/text_pattern.h"

#include <memory>
#include <mutex>
#include <utility>

namespace fleetwise {

namespace {

/// Language and table belong together: they are replaced as one and never changed.
struct InterfaceLanguage {
    std::string language = "de";
    StringsTable table;
};

class CurrentLanguage {
public:
    static CurrentLanguage& shared() {
        static CurrentLanguage instance;
        return instance;
    }

    std::shared_ptr<const InterfaceLanguage> get() const {
        const std::lock_guard lock(mutex);
        return current;
    }

    void set(std::shared_ptr<const InterfaceLanguage> next) {
        const std::lock_guard lock(mutex);
        current = std::move(next);
    }

private:
    mutable std::mutex mutex;
    std::shared_ptr<const InterfaceLanguage> current =
        std::make_shared<InterfaceLanguage>();  ///< guarded by mutex, never null
};

enum class PluralForm { one, few, other };

/// Unicode CLDR 42, cardinal rules; of those for Polish "many" and "other" are one here, since
/// whole numbers take only the first. The form for millions in French, Italian and Spanish is left
/// out: it does not differ in what we count.
PluralForm pluralForm(std::string_view language, std::int64_t count) {
    const std::int64_t last = count % 10;
    const std::int64_t lastTwo = count % 100;
    if (count == 1 || (count == 0 && language == "fr")) return PluralForm::one;
    const bool isFew = language == "pl" && last >= 2 && last <= 4 && (lastTwo < 12 || lastTwo > 14);
    return isFew ? PluralForm::few : PluralForm::other;
}

/// The wording in the form that printf takes. A translation whose placeholders are not those of
/// the German wording is passed over in favour of that.
std::string patternOf(std::string_view german, const std::string& wording) {
    const auto source = textPattern(german);
    if (!source) return std::string(german);
    const auto translated = textPattern(wording);
    const bool fits = translated && translated->placeholders == source->placeholders;
    return fits ? translated->printfForm : source->printfForm;
}

std::string filled(Text text, const std::string& pattern, fmt::printf_args arguments) {
    try {
        return fmt::vsprintf(fmt::string_view(pattern), arguments);
    } catch (const fmt::format_error&) {
        return std::string(text.german);
    }
}

}  // namespace

void setInterfaceLanguage(std::string language, StringsTable table) {
    CurrentLanguage::shared().set(std::make_shared<InterfaceLanguage>(
        InterfaceLanguage{std::move(language), std::move(table)}));
}

std::string interfaceLanguageInUse() {
    return CurrentLanguage::shared().get()->language;
}

std::string localised(Text text) {
    const auto current = CurrentLanguage::shared().get();
    if (current->language == pseudoLanguage) return pseudoWording(text.german);
    const auto found = current->table.find(text.german);
    return found == current->table.end() ? std::string(text.german) : found->second;
}

std::string localisedPattern(Text text) {
    return patternOf(text.german, localised(text));
}

std::string localisedCount(std::int64_t count, Text one, Text several) {
    const auto current = CurrentLanguage::shared().get();
    const PluralForm form = pluralForm(current->language, count);
    const Text text = form == PluralForm::one ? one : several;
    std::string wording = localised(text);
    if (form == PluralForm::few) {
        const auto few = current->table.find(std::string(text.german) + "|few");
        if (few != current->table.end()) wording = few->second;
    }
    return filled(text, patternOf(text.german, wording), fmt::make_printf_args(count));
}

std::string localisedWith(Text text, fmt::printf_args arguments) {
    return filled(text, localisedPattern(text), arguments);
}

}  // namespace fleetwise
