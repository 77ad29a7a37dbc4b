#include "demo/options.h"

#include <charconv>
#include <string_view>

namespace fleetwise::demo {

namespace {

bool readNumber(std::string_view text, auto& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && number >= 0;
}

/// Whether it is an option with a number, and the number could be read.
bool readOption(Options& options, std::string_view name, std::string_view value) {
    if (name == "--rate") return readNumber(value, options.rate);
    if (name == "--seconds") return readNumber(value, options.seconds);
    if (name == "--events") return readNumber(value, options.events);
    if (name == "--pid") return readNumber(value, options.pid);
    return name == "--seed" && readNumber(value, options.seed);
}

}  // namespace

std::optional<Options> readOptions(int count, char** arguments) {
    Options options;
    for (int index = 1; index < count; ++index) {
        const std::string_view argument = arguments[index];
        if (argument == "--keep") {
            options.isKept = true;
        } else if (argument == "--no-app") {
            options.startsApplication = false;
        } else if (!argument.starts_with('-') && options.home.empty()) {
            options.home = argument;
        } else if (++index == count || !readOption(options, argument, arguments[index])) {
            return {};
        }
    }
    return options;
}

}  // namespace fleetwise::demo
