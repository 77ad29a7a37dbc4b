#include "app/command_line.h"
#include "app/hook_jobs.h"
#include "app/report_job.h"
#include "localisation/localisation.h"
#include "monitor/settings.h"
#include "platform/qt_user_defaults.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

using namespace fleetwise;

void print(std::FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

/// What the job tells the user, or what went wrong.
tl::expected<std::string, std::string> run(const Command& command) {
    QtUserDefaults defaults;
    const LanguageChoice language = chooseLanguage(Settings(defaults).get(Settings::language));
    switch (command.job) {
        case Job::installHooks:
            return installHooks();
        case Job::uninstallHooks:
            return uninstallHooks();
        case Job::notAvailable:
            return tl::unexpected(localisedFormat("%@ ist in dieser Version nicht enthalten."_text,
                                                  command.argument));
        default:
            // Without a window yet, the report is what the program has to show in either case.
            return runReport(defaults, language);
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const Command command = parseCommand({arguments + 1, arguments + argumentCount});
    if (command.job == Job::unknownSwitch) {
        print(stderr, unknownSwitchMessage(command.argument));
        return 2;
    }
    const QCoreApplication application(argumentCount, arguments);
    const auto told = run(command);
    if (!told) {
        print(stderr, localisedFormat("Fehler: %@"_text, told.error()) + "\n");
        return 1;
    }
    print(stdout, *told);
    return 0;
}
