#include "reactions/state_action.h"

#include "foundation/sha256.h"
#include "foundation/text.h"
#include "localisation/localisation.h"

#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace fleetwise {

namespace {

constexpr std::size_t longestSessionId = 256;

std::optional<StateAction> decoded(const Json& entry) {
    auto id = member<std::string>(entry, "id");
    const auto state = sessionStateFrom(member<std::string>(entry, "state").value_or(""));
    auto command = member<std::string>(entry, "command");
    if (!id || id->empty() || !state || !command) return {};
    return StateAction{*std::move(id), *state, *std::move(command),
                       member<std::string>(entry, "confirmed")};
}

/// Collects the words of a command line, character by character.
class WordSplitter {
public:
    void take(char character) {
        if (openQuote != '\0') {
            if (character == openQuote) {
                openQuote = '\0';
            } else {
                word += character;
            }
        } else if (character == '"' || character == '\'') {
            openQuote = character;
            isInWord = true;
        } else if (character == ' ' || character == '\t') {
            endWord();
        } else {
            word += character;
            isInWord = true;
        }
    }

    tl::expected<std::vector<std::string>, StateActionError> result() && {
        if (openQuote != '\0')
            return tl::unexpected(StateActionError{StateActionError::Kind::unbalancedQuote, {}});
        endWord();
        return std::move(words);
    }

private:
    void endWord() {
        if (isInWord) words.push_back(std::exchange(word, {}));
        isInWord = false;
    }

    std::vector<std::string> words;
    std::string word;
    char openQuote = '\0';
    bool isInWord = false;  ///< also in an empty one, which quotes began
};

}  // namespace

std::string StateActionError::text() const {
    switch (kind) {
        case Kind::notAbsolute:
            return localised("Kein absoluter Pfad — beginnen Sie mit /"_text);
        case Kind::missing:
            return localised("Dort liegt keine Datei"_text);
        case Kind::notExecutable:
            return localised("Das ist kein ausführbares Programm"_text);
        case Kind::empty:
            return localised("Kein Befehl eingetragen"_text);
        case Kind::notConfirmed:
            return localised("Noch nicht freigegeben"_text);
        case Kind::unbalancedQuote:
            break;
    }
    return localised("Ein Anführungszeichen ist nicht geschlossen"_text);
}

tl::expected<std::vector<std::string>, StateActionError> StateAction::split(
    std::string_view command) {
    WordSplitter splitter;
    for (const char character : command)
        splitter.take(character);
    return std::move(splitter).result();
}

std::string StateAction::fingerprint(std::string_view command) {
    return sha256OfText(command).value_or("");
}

bool StateAction::isArmed() const {
    return confirmed && !confirmed->empty() && *confirmed == fingerprint(command);
}

StateAction StateAction::armed() const {
    StateAction released = *this;
    released.confirmed = fingerprint(command);
    return released;
}

tl::expected<StateAction::Plan, StateActionError> StateAction::plan(
    const FileSystem& fileSystem) const {
    using Kind = StateActionError::Kind;
    const auto failure = [](Kind kind, std::string path = {}) {
        return tl::unexpected(StateActionError{kind, std::move(path)});
    };
    if (trimmed(command).empty()) return failure(Kind::empty);
    if (!isArmed()) return failure(Kind::notConfirmed);
    auto words = split(command);
    if (!words) return tl::unexpected(words.error());
    if (words->empty() || words->front().empty()) return failure(Kind::empty);
    std::string executable = std::move(words->front());
    if (!executable.starts_with('/')) return failure(Kind::notAbsolute, std::move(executable));
    const FileState file = fileSystem(executable);
    if (!file.exists) return failure(Kind::missing, std::move(executable));
    if (!file.isExecutable) return failure(Kind::notExecutable, std::move(executable));
    words->erase(words->begin());
    return Plan{std::move(executable), *std::move(words)};
}

StateAction::FileState StateAction::lookAtDisk(const std::string& path) {
    struct ::stat status {};
    if (path.find('\0') != std::string::npos || ::stat(path.c_str(), &status) != 0) return {};
    const bool isExecutable = S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
    return {.exists = true, .isExecutable = isExecutable};
}

std::map<std::string, std::string> StateAction::environment(SessionState state,
                                                            const std::string& sessionId) {
    std::map<std::string, std::string> variables{{"FLEETWISE_STATE", std::string(rawValue(state))}};
    const bool isFit = !sessionId.empty() && sessionId.size() <= longestSessionId &&
                       printable(sessionId) == sessionId;
    if (isFit) variables.emplace("FLEETWISE_SESSION", sessionId);
    return variables;
}

std::vector<StateAction> StateAction::decode(const Json& setting) {
    if (setting.is_string()) {
        const auto document = parseJson(setting.get_ref<const std::string&>());
        return document && document->is_array() ? decode(*document) : std::vector<StateAction>();
    }
    std::vector<StateAction> actions;
    if (!setting.is_array()) return actions;
    for (const Json& entry : setting) {
        if (auto action = decoded(entry)) actions.push_back(*std::move(action));
    }
    return actions;
}

std::string StateAction::encode(const std::vector<StateAction>& actions) {
    using OrderedJson = nlohmann::ordered_json;
    OrderedJson list = OrderedJson::array();
    for (const StateAction& action : actions) {
        OrderedJson entry{
            {"id", action.id}, {"state", rawValue(action.state)}, {"command", action.command}};
        if (action.confirmed) entry["confirmed"] = *action.confirmed;
        list.push_back(std::move(entry));
    }
    return list.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

}  // namespace fleetwise
