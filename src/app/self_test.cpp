#include "app/self_test.h"

#include "foundation/text.h"

#include <fmt/format.h>

#include <array>

namespace fleetwise {

namespace {

std::string lineOf(const Check& check, const CheckResult& result) {
    switch (result.outcome) {
        case CheckOutcome::failed:
            return fmt::format("FEHLER {}: {}\n", check.name, printable(result.reason));
        case CheckOutcome::noted:
            return fmt::format("–    {}: {}\n", check.name, printable(result.reason));
        default:
            return fmt::format("ok   {}\n", check.name);
    }
}

}  // namespace

void Faults::expect(bool holds, std::string_view fault) {
    if (holds) return;
    if (!found.empty()) found += "; ";
    found += fault;
}

CheckResult Faults::result() const {
    if (found.empty()) return {};
    return {.outcome = CheckOutcome::failed, .reason = found};
}

SelfTest SelfTest::run(const std::vector<Check>& checks) {
    SelfTest test;
    std::array<int, 3> counts{};
    for (const Check& check : checks) {
        const CheckResult result = check.run();
        ++counts[static_cast<std::size_t>(result.outcome)];
        test.text += lineOf(check, result);
    }
    const auto [passed, failed, noted] = counts;
    test.text += fmt::format("{} Prüfungen: {} bestanden, {} fehlgeschlagen, {} mit Hinweis\n",
                             checks.size(), passed, failed, noted);
    test.hasPassed = failed == 0;
    return test;
}

}  // namespace fleetwise
