#include "app/command_line.h"
#include "app/fleet_application.h"
#include "app/jobs.h"

#include <cstdio>

namespace {

void print(std::FILE* stream, const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    using namespace fleetwise;
    const Command command = parseCommand({arguments + 1, arguments + argumentCount});
    if (command.job == Job::application) {
        return runApplication(argumentCount, arguments, command.name);
    }
    const JobResult result = runJob(command, argumentCount, arguments);
    print(stdout, result.output);
    print(stderr, result.errors);
    return result.exitStatus;
}
