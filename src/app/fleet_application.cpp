#include "app/fleet_application.h"

#include "app/display_check.h"
#include "app/environment.h"
#include "app/language_choice.h"
#include "app/licence.h"
#include "app/live_fleet.h"
#include "foundation/brand.h"
#include "platform/qt_user_defaults.h"
#include "platform/single_instance.h"
#include "platform/termination_signals.h"
#include "sources/paths.h"
#include "ui/fleet_interface.h"
#include "ui/interface_text.h"

#include <QApplication>
#include <QCryptographicHash>

#include <cstdio>

namespace fleetwise {

namespace {

constexpr std::string_view activationAddress = "fleetwise://activate/";
constexpr qsizetype homeDigits = 16;

/// One application for each home folder, so that a demonstration in a folder of its own runs
/// beside the user's.
std::string instanceSocket() {
    const auto runtimeFolder = environmentVariable("XDG_RUNTIME_DIR");
    if (!runtimeFolder || runtimeFolder->empty()) return Paths::stateDir() + "/fleetwise.socket";
    const QByteArray digest = QCryptographicHash::hash(QByteArray::fromStdString(Paths::home()),
                                                       QCryptographicHash::Sha256);
    return *runtimeFolder + "/fleetwise-" + digest.toHex().left(homeDigits).toStdString();
}

/// The fleet and what can be seen of it.
class FleetApplication {
public:
    FleetApplication(QApplication& application, UserDefaults& defaults, Settings& settings)
        : live(defaults, settings),
          interface(live.fleet(), application),
          termination(onTermination([] { QApplication::exit(); })) {}

    void start(const std::string& address) {
        interface.start();
        live.fleet().start();
        open(address);
    }

    /// Carries out what another start of the program handed over.
    void receive(const std::string& address) {
        live.fleet().requestWindow();
        open(address);
    }

    void flush() { live.flush(); }

private:
    void open(const std::string& address) {
        if (!address.starts_with(activationAddress)) return;
        const std::string licence = address.substr(activationAddress.size());
        live.fleet().requestWindow();
        interface.tell(isValidLicence(licence, licencePublicKey())
                           ? shown("Die Lizenz ist gültig."_text)
                           : shown("Diese Lizenz ist nicht gültig."_text));
    }

    LiveFleet live;
    FleetInterface interface;
    std::unique_ptr<MainLoop::Subscription> termination;
};

}  // namespace

int runApplication(int& argumentCount, char** arguments, const std::string& address) {
    auto check = std::make_unique<DisplayCheck>();
    QApplication application(argumentCount, arguments);
    check.reset();
    QApplication::setApplicationDisplayName(
        QString::fromUtf8(Brand::bundleName.data(), Brand::bundleName.size()));
    QApplication::setDesktopFileName(QStringLiteral("fleetwise"));
    QApplication::setQuitOnLastWindowClosed(false);

    QtUserDefaults defaults;
    Settings settings(defaults);
    settings.adoptSettingsFromPreviousName(QtUserDefaults::ofPreviousName());
    chooseLanguage(settings.get(Settings::language));

    SingleInstance instance(instanceSocket());
    std::unique_ptr<FleetApplication> fleet;
    const auto outcome = instance.tryBecomeFirst(address, [&](const std::string& message) {
        if (fleet) fleet->receive(message);
    });
    if (outcome == StartOutcome::handedOver) return 0;
    if (outcome == StartOutcome::unreachable) {
        std::fputs("Fleetwise: läuft bereits, antwortet aber nicht.\n", stderr);
        return 1;
    }
    fleet = std::make_unique<FleetApplication>(application, defaults, settings);
    fleet->start(address);
    const int status = QApplication::exec();
    fleet->flush();
    fleet.reset();
    return status;
}

}  // namespace fleetwise
