#include "app/display_check.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace fleetwise {

namespace {

/// The toolkit has no other way to tell that it found no display than a fatal message. What it
/// warns of on the way there says the same in more words.
void endOnFatalMessage(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type != QtFatalMsg) return;
    std::fputs(
        "Fleetwise: kein Bildschirm gefunden (DISPLAY und WAYLAND_DISPLAY führen zu keinem).\n"
        "Ohne Bildschirm gibt »fleetwise --dump« den Bericht aus.\n",
        stderr);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

DisplayCheck::DisplayCheck() {
    qInstallMessageHandler(endOnFatalMessage);
}

DisplayCheck::~DisplayCheck() {
    qInstallMessageHandler(nullptr);
}

}  // namespace fleetwise
