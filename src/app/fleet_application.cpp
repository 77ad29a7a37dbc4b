#include "app/fleet_application.h"

#include "app/display_check.h"
#include "app/environment.h"
#include "app/language_choice.h"
#include "app/licence.h"
#include "app/live_fleet.h"
#include "foundation/brand.h"
#include "platform/login_start.h"
#include "platform/qt_user_defaults.h"
#include "platform/single_instance.h"
#include "platform/termination_signals.h"
#include "sources/paths.h"
#include "ui/base/interface_text.h"
#include "ui/fleet_interface.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QLibraryInfo>
#include <QTimer>
#include <QTranslator>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace fleetwise {

namespace {

constexpr std::string_view activationAddress = "fleetwise://activate/";
constexpr qsizetype homeDigits = 16;

constexpr std::chrono::seconds patienceAtEnd{2};
constexpr std::chrono::seconds dialogPatience{1};

/// Where the desktop keeps such things, or else with our own files. Each home folder has its own:
/// a demonstration in another one runs beside the user's.
std::string instanceSocket() {
    const auto runtimeFolder = environmentVariable("XDG_RUNTIME_DIR");
    if (!runtimeFolder || runtimeFolder->empty()) return Paths::stateDir() + "/application.socket";
    const QByteArray digest = QCryptographicHash::hash(QByteArray::fromStdString(Paths::home()),
                                                       QCryptographicHash::Sha256);
    return *runtimeFolder + "/fleetwise-" + digest.toHex().left(homeDigits).toStdString();
}

/// Has texts, and those of the toolkit, in the language of the setting.
class ChosenLanguage {
public:
    void choose(const std::string& setting) {
        chosen = setting;
        const LanguageChoice language = chooseLanguage(setting);
        QApplication::removeTranslator(&toolkitTexts);
        if (toolkitTexts.load(QString::fromStdString("qtbase_" + language.language),
                              QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            QApplication::installTranslator(&toolkitTexts);
        }
    }
    const std::string& setting() const { return chosen; }

private:
    std::string chosen;
    QTranslator toolkitTexts;
};

/// The fleet and what can be seen of it.
class FleetApplication final : private FleetMonitor::Observer {
public:
    FleetApplication(QApplication& givenApplication, UserDefaults& defaults, Settings& settings,
                     ChosenLanguage& givenLanguage)
        : application(givenApplication),
          language(givenLanguage),
          desktopPalette(QApplication::palette()),
          live(defaults, settings),
          termination(onTermination([] { QApplication::exit(); })) {
        makeInterface();
        live.fleet().addObserver(*this);
    }
    FleetApplication(const FleetApplication&) = delete;
    FleetApplication& operator=(const FleetApplication&) = delete;
    ~FleetApplication() override { live.fleet().removeObserver(*this); }

    void start(const std::string& address) {
        live.start(
            [this](const std::string& version) {
                interface->tell(shown("Fleetwise %@ ist erschienen."_text, version));
            },
            [this](const Notification& notification) { interface->show(notification); });
        const bool isHidden = environmentVariable(std::string(startsHiddenVariable)).has_value();
        // What this program starts may start it again.
        qunsetenv(startsHiddenVariable.data());
        interface->start({.fleet = !isHidden,
                          .onboarding = OnboardingWindow::isWanted(live.fleet().settings())});
        open(address);
    }

    /// Carries out what another start of the program handed over.
    void receive(const std::string& address) {
        live.fleet().requestWindow();
        open(address);
    }

    void flush() { live.flush(); }

private:
    void settingsChanged() override {
        const std::string wanted = live.fleet().settings().get(Settings::language);
        if (wanted == language.setting()) return;
        language.choose(wanted);
        // The window that the language was chosen in goes, too.
        QTimer::singleShot(0, &reopening, [this] { followLanguage(); });
    }

    void followLanguage() {
        // What is being typed into a dialog would go with it.
        if (QApplication::activeModalWidget() != nullptr) {
            return QTimer::singleShot(dialogPatience, &reopening, [this] { followLanguage(); });
        }
        const FleetInterface::OpenWindows windows = interface->openWindows();
        interface.reset();
        makeInterface();
        interface->start(windows);
    }

    void makeInterface() {
        interface =
            std::make_unique<FleetInterface>(live.fleet(), live.pastSessions(),
                                             live.settingsServices(), application, desktopPalette);
    }

    void open(const std::string& address) {
        if (address == "fleetwise://usage") return interface->showUsage();
        if (address == "fleetwise://archive") return interface->showArchive();
        if (address == "fleetwise://settings") return interface->showSettings();
        if (!address.starts_with(activationAddress)) return;
        const std::string licence = address.substr(activationAddress.size());
        live.fleet().requestWindow();
        interface->tell(isValidLicence(licence, licencePublicKey())
                            ? shown("Die Lizenz ist gültig."_text)
                            : shown("Diese Lizenz ist nicht gültig."_text));
    }

    QApplication& application;
    ChosenLanguage& language;
    const QPalette desktopPalette;
    LiveFleet live;
    std::unique_ptr<FleetInterface> interface;
    std::unique_ptr<MainLoop::Subscription> termination;
    QObject reopening;
};

/// The toolkit ends the process by itself when the display goes away. What is remembered is
/// written nevertheless.
class FlushAtExit {
public:
    explicit FlushAtExit(FleetApplication& fleet) {
        running = &fleet;
        std::atexit([] {
            if (running != nullptr) running->flush();
        });
    }
    FlushAtExit(const FlushAtExit&) = delete;
    FlushAtExit& operator=(const FlushAtExit&) = delete;
    ~FlushAtExit() { running = nullptr; }

private:
    static inline FleetApplication* running = nullptr;
};

/// A pass that waits for a disk that does not answer must not keep the program from ending.
void endInTime(int status) {
    std::thread([status] {
        std::this_thread::sleep_for(patienceAtEnd);
        std::_Exit(status);
    }).detach();
}

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
    ChosenLanguage language;
    language.choose(settings.get(Settings::language));

    SingleInstance instance(Paths::stateDir() + "/application.lock", instanceSocket());
    std::unique_ptr<FleetApplication> fleet;
    const auto outcome = instance.tryBecomeFirst(address, [&](const std::string& message) {
        if (fleet) fleet->receive(message);
    });
    if (outcome == StartOutcome::handedOver) return 0;
    if (outcome == StartOutcome::unreachable) {
        std::fputs("Fleetwise: läuft bereits, antwortet aber nicht.\n", stderr);
        return 1;
    }
    if (!instance.isReachable()) {
        std::fprintf(stderr, "Fleetwise: ein weiterer Start findet dieses Fenster nicht (%s)\n",
                     instanceSocket().c_str());
    }
    fleet = std::make_unique<FleetApplication>(application, defaults, settings, language);
    const FlushAtExit flushAtExit(*fleet);
    fleet->start(address);
    const int status = QApplication::exec();
    fleet->flush();
    endInTime(status);
    fleet.reset();
    return status;
}

}  // namespace fleetwise
