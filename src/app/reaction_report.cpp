#include "app/reaction_report.h"

#include "foundation/text.h"
#include "foundation/web_address.h"
#include "reactions/webhook.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace fleetwise {

namespace {

using Output = std::back_insert_iterator<std::string>;

std::string notificationsText(const ReactionRules& rules) {
    if (!rules.notificationsEnabled) return "aus";
    std::vector<std::string> states;
    for (const SessionState state : rules.notifyingStates)
        states.push_back(shortLabel(state));
    std::string text =
        states.empty() ? "für keinen Zustand" : fmt::format("für {}", fmt::join(states, ", "));
    const auto silent = std::ranges::count(rules.overrides, false,
                                           &NotificationPolicy::Overrides::value_type::second);
    const auto telling = std::ssize(rules.overrides) - silent;
    text += rules.newSessionsNotify ? "" : ", neue Sitzungen stumm";
    if (silent > 0) text += fmt::format(", {} stummgeschaltet", silent);
    if (telling > 0) text += fmt::format(", {} eigens eingeschaltet", telling);
    return text + (rules.isMuted ? " – zur Zeit stumm" : "");
}

/// Without what it is called with.
std::string programOf(const StateAction& action) {
    const auto words = StateAction::split(action.command);
    return words && !words->empty() ? words->front() : "?";
}

/// What stands in the way of the action; "bereit" where nothing does.
std::string conditionOf(const StateAction& action) {
    const auto plan = action.plan(StateAction::lookAtDisk);
    return plan ? "bereit" : plan.error().text();
}

std::string webhookText(const std::string& address) {
    if (trimmed(address).empty()) return "aus";
    if (const auto error = Webhook::validate(address)) return Webhook::message(*error);
    const auto parsed = WebAddress::parse(trimmed(address));
    return fmt::format("{}://{}", parsed->scheme, parsed->host);
}

}  // namespace

std::string reactionReport(const Diagnostics& diagnostics) {
    const ReactionRules& rules = diagnostics.reactions;
    std::string report;
    const Output out(report);
    const auto line = [&](std::string_view label, std::string_view value) {
        fmt::format_to(out, "{:<11}{}\n", fmt::format("{}:", label), printable(value));
    };
    line("Melden", notificationsText(rules));
    line("Klänge", fmt::format("fertig {}, wartet {}", rules.doneSound, rules.waitingSound));
    line("Aktionen",
         rules.stateActions.empty() ? "keine" : fmt::format("{}", rules.stateActions.size()));
    for (const StateAction& action : rules.stateActions) {
        fmt::format_to(out, "           {}: {} – {}\n", shortLabel(action.state),
                       printable(programOf(action)), conditionOf(action));
    }
    line("Webhook", webhookText(rules.webhookURL));
    const std::string found = fmt::format("{}", fmt::join(diagnostics.terminals, ", "));
    line("Terminal", fmt::format("{}gefunden: {}",
                                 diagnostics.terminal.empty() ? "" : diagnostics.terminal + "; ",
                                 found.empty() ? "keines" : found));
    line("Wach", rules.staysAwake ? "an" : "aus");
    return report;
}

}  // namespace fleetwise
