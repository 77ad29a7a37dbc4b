#include "reactions/webhook.h"

#include "foundation/text.h"
#include "foundation/web_address.h"
#include "localisation/localisation.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

namespace fleetwise {

namespace {

using FourNumbers = std::array<std::uint8_t, 4>;

/// Nothing but four decimal numbers of one byte each. Zeros in front, which some take for the mark
/// of octal numbers, are refused.
std::optional<FourNumbers> fourNumbers(std::string_view text) {
    FourNumbers numbers{};
    for (std::size_t index = 0; index < numbers.size(); ++index) {
        const bool isLast = index + 1 == numbers.size();
        const std::string_view part = text.substr(0, text.find('.'));
        const char* const end = part.data() + part.size();
        const auto [stopped, error] = std::from_chars(part.data(), end, numbers[index]);
        if (error != std::errc() || stopped != end) return {};
        if (part.size() > 1 && part.front() == '0') return {};
        if (isLast != (part.size() == text.size())) return {};
        if (!isLast) text.remove_prefix(part.size() + 1);
    }
    return numbers;
}

Json document(std::string_view event, Date at) {
    return {{"event", event}, {"source", "Fleetwise"}, {"at", internetDate(at)}};
}

}  // namespace

Webhook::Webhook(HttpPoster& givenPoster, std::string givenVersion, std::function<Date()> givenNow)
    : poster(givenPoster), version(std::move(givenVersion)), now(std::move(givenNow)) {}

void Webhook::react(const FleetChange& change) {
    if (trimmed(change.rules.webhookURL).empty()) return;
    for (const Transition& transition : change.transitions)
        send(*transition.session, transition.previous, change.rules.webhookURL);
}

std::optional<Webhook::AddressError> Webhook::validate(std::string_view address) {
    const std::string_view text = trimmed(address);
    if (text.empty()) return AddressError::missing;
    const auto parsed = WebAddress::parse(text);
    if (!parsed) return AddressError::incomplete;
    if (parsed->scheme == "https") return {};
    if (parsed->scheme == "http" && isLocal(parsed->host)) return {};
    return AddressError::unencryptedAbroad;
}

std::string Webhook::message(AddressError error) {
    switch (error) {
        case AddressError::missing:
            return localised("Keine Adresse eingetragen."_text);
        case AddressError::incomplete:
            return localised("Das ist keine vollständige Adresse."_text);
        case AddressError::unencryptedAbroad:
            break;
    }
    return localised("Unverschlüsselt nur im eigenen Netz — sonst https."_text);
}

bool Webhook::isLocal(std::string_view host) {
    const std::string name = asciiLowercased(host);
    if (name == "localhost" || name == "::1" || name.ends_with(".local")) return true;
    const auto numbers = fourNumbers(name);
    if (!numbers) return false;
    const auto [first, second, third, fourth] = *numbers;
    return first == 10 || first == 127 || (first == 172 && second >= 16 && second <= 31) ||
           (first == 192 && second == 168);
}

Json Webhook::payload(const Session& session, std::optional<SessionState> previous, Date at) {
    Json described{
        {"id", session.id}, {"name", session.displayName()}, {"state", rawValue(session.state)}};
    if (previous) described["previous"] = rawValue(*previous);
    if (const auto project = session.projectName(); !project.empty())
        described["project"] = project;
    if (session.hostApp) described["application"] = *session.hostApp;
    Json whole = document("state_changed", at);
    whole["session"] = std::move(described);
    return whole;
}

Json Webhook::testPayload(const std::string& version, Date at) {
    Json whole = document("test", at);
    whole["version"] = version;
    return whole;
}

void Webhook::send(const Session& session, std::optional<SessionState> previous,
                   const std::string& address) {
    if (const auto error = validate(address)) {
        record(false, message(*error));
        return;
    }
    const Date at = now();
    // What lies in the future is from before the clock was set back.
    std::erase_if(recent, [&](Date sent) { return sent > at || at - sent > rateWindow; });
    if (recent.size() >= maximumPerWindow) {
        record(false, localised("Zu viele Meldungen — verworfen."_text));
        return;
    }
    recent.push_back(at);
    post(address, payload(session, previous, at), {});
}

void Webhook::test(const std::string& address, Completion completion) {
    if (const auto error = validate(address)) return completion(record(false, message(*error)));
    post(address, testPayload(version, now()), std::move(completion));
}

void Webhook::post(const std::string& address, const Json& body, Completion completion) {
    const HttpPost request{
        .address = std::string(trimmed(address)),
        .headers = {{"Content-Type", "application/json"}, {"User-Agent", "Fleetwise/" + version}},
        .body = encodeJson(body),
        .timeLimit = timeLimit};
    const std::weak_ptr<bool> alive = aliveToken;
    poster.post(request, [this, alive,
                          completion = std::move(completion)](const HttpPoster::Result& result) {
        if (alive.expired()) return;
        const bool isSuccess = result && *result >= 200 && *result < 300;
        const Outcome ended =
            record(isSuccess, result ? "HTTP " + std::to_string(*result) : result.error());
        if (completion) completion(ended);
    });
}

Webhook::Outcome Webhook::record(bool isSuccess, std::string detail) {
    outcome = Outcome{now(), isSuccess, std::move(detail)};
    return *outcome;
}

}  // namespace fleetwise
