#include "app/program_checks.h"

#include "app/base64_url.h"
#include "foundation/atomic_file.h"
#include "foundation/date.h"
#include "foundation/directory.h"
#include "foundation/json.h"
#include "foundation/sha256.h"
#include "localisation/text_pattern.h"
#include "monitor/settings.h"
#include "session/permission_mode.h"
#include "session/session_agent.h"
#include "session/session_error.h"
#include "session/session_origin.h"
#include "session/session_state.h"
#include "usage/usage_history_store.h"
#include "usage/window_reset_watch.h"

#include <fmt/format.h>

#include <unistd.h>

#include <set>

namespace fleetwise {

namespace {

constexpr std::size_t registeredSettings = 22;

CheckResult checkStates() {
    Faults faults;
    std::size_t position = 0;
    for (const SessionState state : allSessionStates) {
        const std::string name(rawValue(state));
        faults.expect(static_cast<std::size_t>(state) == position, name + " am falschen Platz");
        faults.expect(sessionStateFrom(name) == state, name + " wird nicht wiedererkannt");
        faults.expect(!label(state).empty() && !shortLabel(state).empty(), name + " ohne Text");
        faults.expect(demandsAttention(state) == (position < 4), name + ": Aufmerksamkeit");
        faults.expect(isBusy(state) == (position >= 4 && position < 7), name + ": Arbeit");
        ++position;
    }
    faults.expect(!sessionStateFrom("Waiting"), "fremder Zustand gilt als bekannt");
    return faults.result();
}

CheckResult checkOrigins() {
    Faults faults;
    faults.expect(sessionOriginFrom("sdk-cli") == SessionOrigin::cli, "cli");
    faults.expect(sessionOriginFrom("claude-desktop") == SessionOrigin::desktop, "desktop");
    faults.expect(sessionOriginFrom({}) == SessionOrigin::unknown, "unknown");
    return faults.result();
}

CheckResult checkPermissionModes() {
    Faults faults;
    for (const char* mode : {"auto", "acceptEdits", "plan", "bypassPermissions"}) {
        const bool hasTexts = PermissionMode::label(mode) && PermissionMode::explanation(mode);
        faults.expect(hasTexts, std::string(mode) + " ohne Text");
    }
    faults.expect(!PermissionMode::label("default"), "default hat einen Text");
    return faults.result();
}

CheckResult checkAgents() {
    Faults faults;
    faults.expect(SessionAgent("").isClaude(), "ohne Namen nicht claude");
    faults.expect(SessionAgent(" Codex ").isCodex(), "Codex nicht erkannt");
    faults.expect(SessionAgent("two words").rawValue() == "?", "unbrauchbarer Name bleibt stehen");
    for (const char* name : {"claude", "codex", "gemini", "cursor", "aider", "other"}) {
        const SessionAgent agent(name);
        const bool isShown = !agent.label().empty() && !agent.symbol().empty();
        faults.expect(isShown, std::string(name) + " ohne Text oder Symbol");
    }
    return faults.result();
}

CheckResult checkErrors() {
    Faults faults;
    for (const char* code : {"rate_limit", "overloaded", "authentication_failed",
                             "oauth_org_not_allowed", "billing_error", "invalid_request",
                             "model_not_found", "server_error", "max_output_tokens", "unknown"}) {
        faults.expect(SessionError::label(code).has_value(), std::string(code) + " ohne Text");
    }
    faults.expect(!SessionError::label("quota"), "fremder Code hat einen Text");
    return faults.result();
}

/// The source language needs no table. A language that none was made for shows German texts.
CheckResult checkTexts(const InterfaceTexts& texts) {
    if (texts.englishTable.empty()) {
        return {.outcome = CheckOutcome::failed, .reason = "Tabellen nicht gefunden"};
    }
    if (texts.language == "de") return {};
    if (texts.table.empty()) {
        return {.outcome = CheckOutcome::noted,
                .reason = texts.language + " hat keine Tabelle, Texte bleiben deutsch"};
    }
    Faults faults;
    for (const auto& [german, ignored] : texts.englishTable) {
        faults.expect(texts.table.contains(german), "»" + german + "« fehlt");
    }
    for (const auto& [german, wording] : texts.table) {
        const auto expected = textPattern(german);
        const auto actual = textPattern(wording);
        const bool fits = expected.has_value() == actual.has_value() &&
                          (!expected || expected->placeholders == actual->placeholders);
        faults.expect(fits && !wording.empty(), "»" + german + "« mit anderen Platzhaltern");
    }
    return faults.result();
}

CheckResult checkSettings() {
    Faults faults;
    InMemoryUserDefaults defaults;
    const Settings settings(defaults);
    const auto registered = Settings::registeredDefaults();
    std::set<std::string> keys;
    for (const auto& [key, value] : registered) {
        keys.insert(key);
        faults.expect(defaults.value(key) == value, key + " ist nicht registriert");
    }
    faults.expect(keys.size() == registeredSettings,
                  fmt::format("{} statt {}", keys.size(), registeredSettings));
    return faults.result();
}

CheckResult checkDates() {
    Faults faults;
    const std::string text = "2026-11-21T02:05:29.783Z";
    const auto date = parseInternetDate(text);
    faults.expect(date == dateFromMilliseconds(1'795'226'729'783), "lesen");
    faults.expect(date && internetDate(*date) == text, "schreiben");
    faults.expect(!parseInternetDate("2026-02-29T00:00:00Z"), "29. Februar ohne Schaltjahr");
    return faults.result();
}

CheckResult checkJson() {
    Faults faults;
    const std::string text = R"({"a":[1,2.5,null],"b":"ü"})";
    const auto document = parseJson(text);
    faults.expect(document && encodeJson(*document) == text, "lesen und schreiben");
    faults.expect(!parseJson("{\"a\":"), "abgerissener Text gilt als ganz");
    return faults.result();
}

CheckResult checkSha256(const std::string& temporaryFolder) {
    const std::string path =
        joinPath(temporaryFolder, fmt::format("fleetwise-selftest-{}", ::getpid()));
    if (!writeFileAtomically(path, "abc")) {
        return {.outcome = CheckOutcome::noted, .reason = path + " lässt sich nicht schreiben"};
    }
    const auto digest = sha256OfFile(path);
    ::unlink(path.c_str());
    Faults faults;
    faults.expect(digest == "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad",
                  digest.value_or("nicht lesbar"));
    return faults.result();
}

CheckResult checkBase64() {
    Faults faults;
    faults.expect(decodeBase64Url("-_8") == "\xFB\xFF", "lesen");
    faults.expect(!decodeBase64Url("-_9"), "übrige Bits gelten als gültig");
    return faults.result();
}

/// Two days of a history in which the five-hour window began anew an hour ago.
UsageSamples builtInHistory(Date now) {
    UsageSamples samples;
    const auto add = [&](double minutesAgo, int fiveHour, int sevenDay) {
        samples.push_back({.date = now - Seconds(minutesAgo * 60),
                           .fiveHour = fiveHour,
                           .sevenDay = sevenDay,
                           .org = {},
                           .extraUsage = {}});
    };
    add(2'880, 10, 20);
    add(65, 60, 30);
    add(60, 2, 30);
    add(30, 10, 32);
    add(0, 20, 34);
    return samples;
}

CheckResult checkQuotaWindows() {
    const Date now = dateFromSeconds(1'795'226'700);
    const Calendar utc = ::date::locate_zone("Etc/UTC");
    const UsageSamples samples = builtInHistory(now);
    const auto fiveHour = UsageHistoryStore::fiveHourWindow(samples, now, {}, utc);
    const auto sevenDay = UsageHistoryStore::sevenDayWindow(samples, now, utc);
    if (!fiveHour || !sevenDay) return {.outcome = CheckOutcome::failed, .reason = "kein Fenster"};
    Faults faults;
    faults.expect(fiveHour->percent == 20 && sevenDay->percent == 34, "Prozent");
    faults.expect(fiveHour->windowEndsAt == now + Seconds(4 * 3'600), "Ende");
    faults.expect(fiveHour->ratePerHour == 18.0, "Anstieg");
    faults.expect(!fiveHour->projection, "Hochrechnung vor zwei Stunden");
    faults.expect(!sevenDay->resetsAt, "Rücksetzen ohne Rhythmus");
    faults.expect(!fiveHour->isStale, "frischer Stand gilt als alt");
    return faults.result();
}

CheckResult checkWindowReset() {
    const Date now = dateFromSeconds(1'795'226'700);
    const auto values = UsageHistoryStore::fiveHourValues(builtInHistory(now));
    const QuotaValues before(values.begin(), values.begin() + 2);
    WindowResetWatch watch;
    Faults faults;
    faults.expect(!watch.observe(before, {}, before.back().first), "erster Blick");
    faults.expect(watch.observe(values, {}, now) == 60, "Rücksetzen nicht bemerkt");
    faults.expect(!watch.observe(values, {}, now), "zweimal gemeldet");
    return faults.result();
}

}  // namespace

std::vector<Check> programChecks(const InterfaceTexts& texts, const std::string& temporaryFolder) {
    return {
        {"Sitzungszustände", checkStates},
        {"Herkunft", checkOrigins},
        {"Berechtigungsmodi", checkPermissionModes},
        {"Agenten", checkAgents},
        {"Fehlercodes", checkErrors},
        {"Texte der Oberfläche", [texts] { return checkTexts(texts); }},
        {"Voreinstellungen", checkSettings},
        {"Datum", checkDates},
        {"JSON", checkJson},
        {"SHA-256", [temporaryFolder] { return checkSha256(temporaryFolder); }},
        {"Base64", checkBase64},
        {"Kontingentfenster", checkQuotaWindows},
        {"Fenster zurückgesetzt", checkWindowReset},
    };
}

}  // namespace fleetwise
