#include "ui/settings/action_words.h"

#include "ui/base/interface_text.h"
#include "ui/settings/literal_text.h"

namespace fleetwise {

QStringList planLines(const StateAction::Plan& plan) {
    QStringList lines{shown("Programm: %@"_text, literalText(plan.executable).toStdString())};
    int number = 0;
    for (const std::string& argument : plan.arguments) {
        lines << shown("Argument %d: »%@«"_text, ++number, literalText(argument).toStdString());
    }
    return lines;
}

QStringList environmentLines(SessionState state) {
    const std::string placeholder = "id";
    QStringList lines;
    for (const auto& [name, value] : StateAction::environment(state, placeholder)) {
        const QString filled =
            value == placeholder ? u'<' + shown("Kennung der Sitzung"_text) + u'>' : qtText(value);
        lines << qtText(name) + u'=' + filled;
    }
    return lines;
}

}  // namespace fleetwise
