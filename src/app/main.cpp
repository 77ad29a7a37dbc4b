#include "app/command_line.h"
#include "app/report_job.h"
#include "localisation/localisation.h"
#include "platform/qt_user_defaults.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

void print(std::FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

int printReport() {
    fleetwise::QtUserDefaults defaults;
    print(stdout, fleetwise::runReport(defaults));
    return 0;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    using namespace fleetwise;
    const Command command = parseCommand({arguments + 1, arguments + argumentCount});
    if (command.job == Job::unknownSwitch) {
        print(stderr, unknownSwitchMessage(command.argument));
        return 2;
    }
    const QCoreApplication application(argumentCount, arguments);
    if (command.job == Job::notAvailable) {
        print(stderr, "Fehler: " +
                          localisedFormat("%@ ist in dieser Version nicht enthalten."_text,
                                          command.argument) +
                          "\n");
        return 1;
    }
    // Without a window yet, the report is what the program has to show in either case.
    return printReport();
}
