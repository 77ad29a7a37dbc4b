#include "app/reaction_checks.h"

#include "reactions/notification_policy.h"
#include "reactions/resume_command.h"
#include "reactions/resume_launcher.h"
#include "reactions/state_action.h"
#include "reactions/webhook.h"

namespace fleetwise {

namespace {

using Overrides = NotificationPolicy::Overrides;
using Kind = StateActionError::Kind;

Session sessionIn(const std::optional<std::string>& project) {
    Session session;
    session.id = "s1";
    session.cwd = project;
    return session;
}

CheckResult checkSessionBeforeProject() {
    const Session session = sessionIn("/srv/shop");
    Faults faults;
    faults.expect(!NotificationPolicy::notifies(
                      session, Overrides{{"s:s1", false}, {"p:/srv/shop", true}}, true),
                  "stumme Sitzung meldet in meldendem Projekt");
    faults.expect(NotificationPolicy::notifies(
                      session, Overrides{{"s:s1", true}, {"p:/srv/shop", false}}, false),
                  "meldende Sitzung schweigt in stummem Projekt");
    return faults.result();
}

CheckResult checkProjectBeforeDefault() {
    const Overrides silent{{"p:/srv/shop", false}};
    Faults faults;
    faults.expect(!NotificationPolicy::notifies(sessionIn("/srv/shop"), silent, true),
                  "stummes Projekt meldet");
    faults.expect(NotificationPolicy::notifies(sessionIn("/srv/other"), silent, true),
                  "Wahl gilt für ein fremdes Projekt");
    faults.expect(NotificationPolicy::notifies(sessionIn({}), silent, true),
                  "Wahl gilt ohne Projekt");
    return faults.result();
}

CheckResult checkDefault() {
    Faults faults;
    for (const bool isOn : {true, false}) {
        faults.expect(NotificationPolicy::notifies(sessionIn("/srv/shop"), {}, isOn) == isOn,
                      "Voreinstellung gilt nicht");
    }
    return faults.result();
}

CheckResult checkStateActions() {
    const auto onDisk = [](const std::string& path) {
        return StateAction::FileState{.exists = path != "/gone", .isExecutable = path == "/run"};
    };
    const auto refusal = [&](const std::string& command) -> std::optional<Kind> {
        const auto plan = StateAction{.command = command, .confirmed = {}}.armed().plan(onDisk);
        return plan ? std::nullopt : std::optional(plan.error().kind);
    };
    Faults faults;
    faults.expect(!refusal("/run 'b c' d"), "freigegebene Aktion läuft nicht");
    faults.expect(refusal(" ") == Kind::empty, "leerer Befehl");
    faults.expect(refusal("run") == Kind::notAbsolute, "relativer Pfad");
    faults.expect(refusal("/gone") == Kind::missing, "fehlende Datei");
    faults.expect(refusal("/data") == Kind::notExecutable, "Datei ohne Ausführungsrecht");
    faults.expect(refusal("/run 'b") == Kind::unbalancedQuote, "offenes Anführungszeichen");
    StateAction edited = StateAction{.command = "/run", .confirmed = {}}.armed();
    edited.command += " x";
    faults.expect(!edited.isArmed(), "geänderter Befehl bleibt freigegeben");
    return faults.result();
}

CheckResult checkWebhookAddresses() {
    Faults faults;
    for (const char* address : {"https://example.org/x", "http://localhost:8123", "http://10.0.0.7",
                                "http://172.31.0.1/", "http://lamp.local/hook"}) {
        faults.expect(!Webhook::validate(address), std::string(address) + " abgelehnt");
    }
    for (const char* address : {"", "example.org", "http://example.org", "http://172.32.0.1"})
        faults.expect(Webhook::validate(address).has_value(), std::string(address) + " erlaubt");
    return faults.result();
}

CheckResult checkResumeScript() {
    const std::string script =
        ResumeLauncher::script("/srv/it's", *ResumeCommand::resumeOnly("$(x)", {}, "claude"));
    Faults faults;
    faults.expect(script.find(R"(cd '/srv/it'\''s' || {)") != std::string::npos, "Ordner");
    faults.expect(script.ends_with("exec claude --resume '$(x)'\n"), "Befehl");
    return faults.result();
}

}  // namespace

std::vector<Check> reactionChecks() {
    return {
        {"melden/Sitzung vor Projekt", checkSessionBeforeProject},
        {"melden/Projekt vor Voreinstellung", checkProjectBeforeDefault},
        {"melden/Voreinstellung", checkDefault},
        {"Aktionen", checkStateActions},
        {"Webhook-Adressen", checkWebhookAddresses},
        {"Skript zum Fortsetzen", checkResumeScript},
    };
}

}  // namespace fleetwise
