#include "demo/scenes.h"

#include <initializer_list>

namespace fleetwise::demo {

namespace {

using Steps = std::vector<Step>;

Scene scene(std::string_view title, std::initializer_list<Steps> parts) {
    Scene joined{title, {}};
    for (const Steps& part : parts)
        joined.steps.insert(joined.steps.end(), part.begin(), part.end());
    return joined;
}

struct Tool {
    std::string_view name;
    Json input;
    Json response;
};

Tool reading(std::string_view path) {
    return {"Read", {{"file_path", path}}, {{"type", "text"}, {"file", {{"numLines", 120}}}}};
}

Tool editing(std::string_view path, std::string_view before, std::string_view after) {
    const Json input{{"file_path", path}, {"old_string", before}, {"new_string", after}};
    return {"Edit", input, input};
}

Tool running(std::string_view command, std::string_view description) {
    return {"Bash",
            {{"command", command}, {"description", description}},
            {{"stdout", "ok"}, {"stderr", ""}, {"interrupted", false}, {"isImage", false}}};
}

Tool runningInBackground(std::string_view command, std::string_view description,
                         std::string_view task) {
    Tool tool = running(command, description);
    tool.input["run_in_background"] = true;
    tool.response["backgroundTaskId"] = task;
    return tool;
}

Tool delegating(std::string_view description, std::string_view agent) {
    const Json input{{"description", description},
                     {"prompt", description},
                     {"subagent_type", "general-purpose"}};
    Json response = input;
    response.update(Json{{"isAsync", true}, {"status", "async_launched"}, {"agentId", agent}});
    return {"Agent", input, response};
}

Tool wakingUp(int seconds, std::string_view reason, std::string_view prompt) {
    return {"ScheduleWakeup",
            {{"delaySeconds", seconds}, {"reason", reason}, {"prompt", prompt}, {"noop", false}},
            {{"clampedDelaySeconds", seconds}, {"wasClamped", false}}};
}

Tool choosing(std::string_view question, std::string_view one, std::string_view other) {
    const Json questions{{{"question", question},
                          {"header", "Choice"},
                          {"options", {{{"label", one}}, {{"label", other}}}},
                          {"multiSelect", false}}};
    return {"AskUserQuestion",
            {{"questions", questions}},
            {{"questions", questions}, {"answers", {{question, one}}}}};
}

Steps prompt(std::string_view text) {
    return {{"UserPromptSubmit", {{"prompt", text}}}};
}

Step before(const Tool& tool) {
    return {"PreToolUse", {{"tool_name", tool.name}, {"tool_input", tool.input}}};
}

Step after(const Tool& tool) {
    return {
        "PostToolUse",
        {{"tool_name", tool.name}, {"tool_input", tool.input}, {"tool_response", tool.response}}};
}

Steps uses(const Tool& tool) {
    return {before(tool), after(tool)};
}

Steps asksFor(const Tool& tool, Standing standing) {
    Step request = before(tool);
    request.event = "PermissionRequest";
    request.standing = standing;
    request.rest = 2;
    const Step reminder{
        "Notification",
        {{"message", "Claude needs your permission"}, {"notification_type", "permission_prompt"}},
        standing,
        2};
    return {before(tool), request, reminder, after(tool)};
}

/// A subagent's event: a tool of its own, or its end.
Step byAgent(std::string_view agent, Step step) {
    step.members["agent_id"] = agent;
    step.members["agent_type"] = "general-purpose";
    return step;
}

Steps starts(std::string_view description, std::string_view agent) {
    const Tool tool = delegating(description, agent);
    return {before(tool), byAgent(agent, {"SubagentStart"}), after(tool)};
}

Steps finishes(std::string_view agent, const Tool& tool, std::string_view text) {
    return {byAgent(agent, before(tool)), byAgent(agent, after(tool)),
            byAgent(agent, {"SubagentStop", {{"last_assistant_message", text}}, Standing::idle})};
}

Json runningAgent(std::string_view id, std::string_view description) {
    return {{"id", id},
            {"type", "subagent"},
            {"status", "running"},
            {"description", description},
            {"agent_type", "general-purpose"}};
}

Json runningCommand(std::string_view id, std::string_view command) {
    return {{"id", id}, {"type", "shell"}, {"status", "running"}, {"command", command}};
}

/// The end of a turn. The session rests for a while, for somebody to read the answer.
Step answers(std::string_view text, Json runningTasks = Json::array(),
             Standing standing = Standing::idle) {
    return {"Stop",
            {{"stop_hook_active", false},
             {"last_assistant_message", text},
             {"background_tasks", std::move(runningTasks)},
             {"session_crons", Json::array()}},
            standing,
            3};
}

Step answersUntilWokenUp(std::string_view text, std::string_view prompt) {
    Step step = answers(text);
    step.members["session_crons"] = {
        {{"id", "c35bcf69"}, {"schedule", "7 2 * * *"}, {"recurring", false}, {"prompt", prompt}}};
    step.rest = 8;
    return step;
}

/// What the agent tells itself when work in the background has ended.
Steps isNotified(std::string_view task, std::string_view summary) {
    std::string text = "<task-notification>\n<task-id>";
    text.append(task).append("</task-id>\n<status>completed</status>\n<summary>");
    return prompt(text.append(summary).append("</summary>\n</task-notification>"));
}

Scene repairsTests() {
    return scene(
        "Repair the date parser's tests",
        {prompt("The date tests fail since the clocks changed. Find out why and repair it."),
         uses(reading("src/date_parser.ts")),
         uses(running("npm test -- date", "Run the date tests")),
         uses(editing("src/date_parser.ts", "new Date(text)", "parseLocalDate(text)")),
         asksFor(running("npm install luxon", "Install the time zone library"),
                 Standing::asksPermission),
         uses(running("npm test", "Run all tests")),
         {answers("The parser took local times for UTC. All 214 tests pass again.")}});
}

Scene asksForADecision() {
    const Tool question =
        choosing("Where should the uploads be stored?", "In the database", "In a folder");
    return scene("Plan the storage of uploads",
                 {prompt("Design how uploaded pictures are stored. Ask me where it matters."),
                  uses(reading("docs/architecture.md")),
                  uses(running("du -sh uploads", "Measure the uploads so far")),
                  asksFor(question, Standing::asksInput),
                  uses(editing("docs/uploads.md", "Open", "Decided")),
                  {answers("The design is written down in docs/uploads.md.")}});
}

Scene sendsOutAgents() {
    constexpr std::string_view first = "a70bf74ba62e51063";
    constexpr std::string_view second = "a0eded06da6dac54e";
    const Json both{runningAgent(first, "Review the server"),
                    runningAgent(second, "Review the client")};
    return scene("Review the release branch",
                 {prompt("Review the release branch with two agents, one for each side."),
                  starts("Review the server", first),
                  starts("Review the client", second),
                  {answers("Both reviews are running.", both)},
                  finishes(first, running("git diff main -- server", "Read the server's changes"),
                           "The server's changes are fine."),
                  isNotified(first, "Agent \"Review the server\" finished"),
                  {answers("The server is fine; the client's review goes on.", {both[1]})},
                  finishes(second, running("git diff main -- client", "Read the client's changes"),
                           "Two labels are not translated."),
                  isNotified(second, "Agent \"Review the client\" finished"),
                  {answers("Ready for release but for two labels that are not translated.")}});
}

Scene isRefusedByTheService() {
    const Json failure{{"error", "server_error"},
                       {"last_assistant_message",
                        "API Error: 529 Overloaded. This is a server-side issue, usually temporary "
                        "— try again in a moment."}};
    return scene("Move the billing job to the queue",
                 {prompt("Move the nightly billing job to the new queue."),
                  uses(reading("jobs/billing.py")),
                  {{"StopFailure", failure, Standing::idle, 4}},
                  prompt("Go on."),
                  uses(editing("jobs/billing.py", "run_nightly()", "enqueue(run_nightly)")),
                  {answers("The billing job runs from the queue now.")}});
}

Scene compactsItsContext() {
    return scene(
        "Translate the settings page",
        {{{"PreCompact", {{"trigger", "manual"}, {"custom_instructions", ""}}, Standing::busy, 2},
          {"SessionStart", {{"source", "compact"}, {"model", "claude-opus-5-5"}}, Standing::busy},
          {"PostCompact",
           {{"trigger", "manual"}, {"compact_summary", "The settings page is half translated."}},
           Standing::idle,
           1}},
         prompt("Now translate the other half of the settings page."),
         uses(editing("locales/de.json", "Notifications", "Benachrichtigungen")),
         {answers("All 38 texts of the settings page are translated.")}});
}

Scene runsInTheBackground() {
    constexpr std::string_view task = "b2xnztr8e";
    constexpr std::string_view command = "make -j4 benchmark";
    return scene(
        "Measure the search index",
        {prompt("Run the benchmarks in the background and tell me when they are through."),
         uses(runningInBackground(command, "Run the benchmarks", task)),
         {answers("The benchmarks are running.", {runningCommand(task, command)}, Standing::shell)},
         isNotified(task, "Background command \"Run the benchmarks\" completed (exit code 0)"),
         uses(reading("build/benchmark.json")),
         {answers("The index answers in 12 ms, a third faster than before.")}});
}

Scene wakesUpByItself() {
    constexpr std::string_view check = "Check whether the deployment has finished.";
    return scene("Watch over the deployment",
                 {prompt("Deploy to staging and look again until it is through."),
                  uses(running("make deploy-staging", "Start the deployment")),
                  uses(wakingUp(60, "The deployment takes a minute", check)),
                  {answersUntilWokenUp("I look again in a minute.", check)},
                  prompt(check),
                  uses(running("make deployment-status", "Ask for the deployment's state")),
                  {answers("The deployment is through; staging runs version 2.4.")}});
}

Scene endsAndIsResumed() {
    return scene("Tidy up the build scripts",
                 {{{"SessionEnd", {{"reason", "prompt_input_exit"}}, Standing::ended, 4},
                   {"SessionStart", {{"source", "resume"}}, Standing::idle, 2}},
                  prompt("Where were we? Go on with the build scripts."),
                  uses(reading("scripts/build.sh")),
                  {answers("Three scripts are left; the next one is release.sh.")}});
}

Scene isInterrupted() {
    const Tool search = running("grep -r legacy_login .", "Look for the old login");
    return scene("Remove the old login",
                 {prompt("Remove everything that belongs to the old login."),
                  uses(reading("src/login/legacy.go")),
                  {before(search), {"", Json::object(), Standing::idle, 3}},
                  prompt("Leave the tests alone. Go on with the rest."),
                  uses(search),
                  {answers("The old login is gone; its tests still stand.")}});
}

}  // namespace

const std::vector<Scene>& scenes() {
    static const std::vector<Scene> all{
        repairsTests(),          asksForADecision(),   sendsOutAgents(),
        isRefusedByTheService(), compactsItsContext(), runsInTheBackground(),
        wakesUpByItself(),       endsAndIsResumed(),   isInterrupted()};
    return all;
}

}  // namespace fleetwise::demo
