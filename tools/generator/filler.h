#pragma once

#include "generator/random.h"

#include <string>
#include <string_view>

namespace fleetwise::generator {

/// Text for records. Long text is cut from one block made beforehand, since a gigabyte of it must
/// take seconds.
class Filler {
public:
    static constexpr std::size_t maximumBytes = 400'000;

    explicit Filler(Random& random);

    /// The inside of a JSON string, escapes included, of about `bytes` bytes (at least 64, at most
    /// maximumBytes). The view lives as long as the filler.
    std::string_view escapedText(Random& random, std::size_t bytes) const;

    /// `words` plain words, lower-case ASCII letters, with blanks between them.
    static std::string phrase(Random& random, int words);

    /// A phrase with a full stop.
    static std::string sentence(Random& random, int words);

    /// One plain word, fit for a file name.
    static std::string_view word(Random& random);

private:
    std::string block;
};

}  // namespace fleetwise::generator
