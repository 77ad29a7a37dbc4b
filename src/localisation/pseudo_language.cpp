#include "localisation/pseudo_language.h"

#include <array>
#include <cstddef>
#include <utility>

namespace fleetwise {

namespace {

constexpr std::array<std::pair<char, std::string_view>, 10> accented{{{'a', "å"},
                                                                      {'e', "é"},
                                                                      {'i', "î"},
                                                                      {'o', "ø"},
                                                                      {'u', "ü"},
                                                                      {'A', "Å"},
                                                                      {'E', "É"},
                                                                      {'I', "Î"},
                                                                      {'O', "Ø"},
                                                                      {'U', "Û"}}};

/// Placeholders end with one of these; no letter of theirs may change.
constexpr std::string_view placeholderEnds = "@df%";

/// How many bytes of `text`, which begins with a per cent sign, are the placeholder's.
std::size_t placeholderLength(std::string_view text) {
    const std::size_t end = text.find_first_of(placeholderEnds, 1);
    return end == std::string_view::npos ? text.size() : end + 1;
}

}  // namespace

std::string pseudoWording(std::string_view german) {
    // Translations grow by about two fifths.
    constexpr std::size_t lettersPerAddition = 5;
    constexpr std::string_view addition = "··";
    std::string wording = "[";
    std::size_t letters = 0;
    for (std::string_view rest = german; !rest.empty();) {
        std::size_t length = rest.front() == '%' ? placeholderLength(rest) : 1;
        std::string_view shown = rest.substr(0, length);
        for (const auto& [plain, accent] : accented) {
            if (length == 1 && rest.front() == plain) shown = accent;
        }
        wording += shown;
        rest.remove_prefix(length);
        ++letters;
    }
    for (std::size_t added = 0; added < letters / lettersPerAddition; ++added)
        wording += addition;
    return wording + "]";
}

}  // namespace fleetwise
