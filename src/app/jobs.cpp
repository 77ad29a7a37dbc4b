#include "app/jobs.h"

#include "app/hook_jobs.h"
#include "app/language_choice.h"
#include "app/licence.h"
#include "app/report_job.h"
#include "app/self_test_job.h"
#include "app/stall_probe.h"
#include "localisation/localisation.h"
#include "monitor/settings.h"
#include "platform/qt_main_loop.h"
#include "platform/qt_user_defaults.h"
#include "ui/mark/artwork.h"

#include <QGuiApplication>
#include <tl/expected.hpp>

#include <memory>

namespace fleetwise {

namespace {

/// What to print, or what went wrong, in the interface language.
using Told = tl::expected<std::string, std::string>;

JobResult resultOf(const Told& told) {
    if (told) return {.output = *told};
    return {.exitStatus = 1, .errors = localisedFormat("Fehler: %@"_text, told.error()) + "\n"};
}

Told told(const ArtworkResult& result) {
    return result.map([] { return std::string(); });
}

bool draws(Job job) {
    return job == Job::writeIconset || job == Job::writeSocialImage ||
           job == Job::writeDiskBackground || job == Job::checkDiskBackground;
}

/// Pictures need the toolkit's fonts, but no display.
std::unique_ptr<QCoreApplication> applicationFor(Job job, int& argumentCount, char** arguments) {
    if (!draws(job)) return std::make_unique<QCoreApplication>(argumentCount, arguments);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argumentCount, arguments);
}

Told draw(Job job, const std::string& path) {
    if (path.empty()) return tl::unexpected(localised("Es fehlt der Pfad."_text));
    switch (job) {
        case Job::writeIconset:
            return told(writeIconset(path));
        case Job::writeSocialImage:
            return told(writeSocialImage(path));
        case Job::writeDiskBackground:
            return told(writeDiskImageBackground(path));
        default:
            return told(checkDiskImageBackground(path));
    }
}

Told verifyLicence(const std::string& text) {
    if (isValidLicence(text, licencePublicKey())) return std::string();
    return tl::unexpected(localised("Diese Lizenz ist nicht gültig."_text));
}

JobResult selfTest(const LanguageChoice& language) {
    const SelfTest test = runSelfTest(language);
    return {.exitStatus = test.hasPassed ? 0 : 1, .output = test.text};
}

JobResult stallProbe() {
    QtMainLoop loop;
    const StallProbe probe = StallProbe::run(loop);
    return {.exitStatus = probe.hasRecorded ? 0 : 1, .output = probe.line + "\n"};
}

}  // namespace

JobResult runJob(const Command& command, int& argumentCount, char** arguments) {
    if (command.job == Job::unknownSwitch) {
        return {.exitStatus = 2, .errors = unknownSwitchMessage(command.name)};
    }
    const auto application = applicationFor(command.job, argumentCount, arguments);
    QtUserDefaults defaults;
    const LanguageChoice language = chooseLanguage(Settings(defaults).get(Settings::language));
    if (draws(command.job)) return resultOf(draw(command.job, command.argument));
    switch (command.job) {
        case Job::installHooks:
            return resultOf(installHooks());
        case Job::uninstallHooks:
            return resultOf(uninstallHooks());
        case Job::verifyLicence:
            return resultOf(verifyLicence(command.argument));
        case Job::selfTest:
            return selfTest(language);
        case Job::stallProbe:
            return stallProbe();
        case Job::printDiskLayout:
            return {.output = diskImageLayout() + "\n"};
        default:
            return {.output = runReport(defaults, language)};
    }
}

}  // namespace fleetwise
