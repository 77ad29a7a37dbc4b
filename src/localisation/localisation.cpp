#include "localisation/localisation.h"

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
    const auto found = current->table.find(text.german);
    return found == current->table.end() ? std::string(text.german) : found->second;
}

std::string localisedPattern(Text text) {
    const auto german = textPattern(text.german);
    if (!german) return std::string(text.german);
    const auto translated = textPattern(localised(text));
    const bool fits = translated && translated->placeholders == german->placeholders;
    return fits ? translated->printfForm : german->printfForm;
}

std::string localisedWith(Text text, fmt::printf_args arguments) {
    try {
        return fmt::vsprintf(fmt::string_view(localisedPattern(text)), arguments);
    } catch (const fmt::format_error&) {
        return std::string(text.german);
    }
}

}  // namespace fleetwise
