#include "ui/base/hook_text.h"

#include "ui/base/interface_text.h"

namespace fleetwise {

QString hookExplanation(const HookInstaller::Places& places) {
    return shown(
        "Geschrieben wird: das Hook-Programm nach %@ und je ein Eintrag für %d Ereignisse in %@. Die alte Datei wird vorher nach %@ gesichert. »fleetwise --uninstall-hooks« nimmt die Einträge wieder heraus."_text,
        places.installedHook, HookInstaller::events.size(), places.settingsFile, places.stateDir);
}

}  // namespace fleetwise
