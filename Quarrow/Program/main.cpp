// The program with windows: creates its objects in order, connects them and runs until it is told to end.

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Platform/Files/Directories.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Files/Preferences.h"
#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Platform/Processes/InstanceGuard.h"
#include "FennickCore/Platform/Processes/Process.h"
#include "FennickCore/Platform/System/EventSources.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "Quarrow/Actions/PhotoActions.h"
#include "Quarrow/App/AppController.h"
#include "Quarrow/App/EventLoopQueue.h"
#include "Quarrow/App/SingleInstance.h"
#include "Quarrow/App/SystemNetwork.h"
#include "Quarrow/Desktop/AppDesktop.h"
#include "Quarrow/Desktop/ColourScheme.h"
#include "Quarrow/Desktop/HotKeyPortal.h"
#include "Quarrow/Desktop/LaunchOptions.h"
#include "Quarrow/Desktop/LoginItem.h"
#include "Quarrow/Desktop/Shell.h"
#include "Quarrow/Desktop/WindowSelfTest.h"
#include "Quarrow/Desktop/WindowedApplication.h"
#include "Quarrow/Look/QuickLook.h"
#include "Quarrow/SettingsForm/SettingsForm.h"
#include "Quarrow/Views/Registration.h"
#include "Quarrow/Views/View.h"
#include "Quarrow/Wall/PhotoWall.h"

#include <QDBusConnection>
#include <QEvent>
#include <QQmlEngine>
#include <QTemporaryDir>
#include <QtQml/QQmlExtensionPlugin>
#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

Q_IMPORT_QML_PLUGIN(TevrinPlugin)

namespace {

constexpr int kCannotStart = 1;
constexpr int kBadUsage = 2;
constexpr const char *kName = "tevrin";

int refuse(int status, const std::string &sentence) {
  std::ignore = std::fputs((sentence + "\n").c_str(), stderr);
  return status;
}

// Creates views. The engine is created with the first one: a program that waits in the tray has none.
class Views {
public:
  std::unique_ptr<QObject> make(const QString &name) {
    if (!engine_) {
      quarrow::chooseRenderer();
      engine_ = std::make_unique<QQmlEngine>();
    }
    auto view = quarrow::makeView(*engine_, name);
    if (view)
      return std::move(*view);
    fennick::log(fmt::format("cannot open {}: {}", name.toStdString(), view.error().toStdString()));
    return nullptr;
  }

private:
  std::unique_ptr<QQmlEngine> engine_;
};

std::string activationToken() {
  const char *token = std::getenv("XDG_ACTIVATION_TOKEN");
  return token != nullptr ? token : "";
}

void handleLaunch(quarrow::AppController &controller, const std::vector<std::string> &arguments) {
  const auto asked = quarrow::HandOver::parse(arguments);
  quarrow::adoptActivationToken(QString::fromStdString(asked.activationToken));
  if (!asked.loginItem || !asked.windows.empty())
    controller.handleArguments(asked.windows);
}

void lendToQml(quarrow::AppController &controller, quarrow::Shell &shell) {
  quarrow::ServerSingleton::instance = &controller.server();
  quarrow::ProgressSingleton::instance = &controller.progress();
  quarrow::ImportsSingleton::instance = &controller.imports();
  quarrow::ShellSingleton::instance = &shell;
  controller.progress().setWatched(true);
}

int testAndReport(quarrow::AppDesktop &desktop) {
  if (const auto tested = quarrow::testWindows(desktop); !tested)
    return refuse(kCannotStart, tested.error());
  return EXIT_SUCCESS;
}

struct State {
  std::filesystem::path preferences; // the folder that holds them
  std::filesystem::path cache;
  std::optional<std::filesystem::path> saveFolder{}; // instead of the folder in the settings
};

// Runs until it is told to end; returns the exit status.
int serve(quarrow::WindowedApplication &application, const quarrow::LaunchOptions &options,
          fennick::SignalSource signalSource, const State &state,
          std::optional<fennick::InstanceGuard> guard) {
  fennick::FilePreferences preferences(state.preferences / "preferences.json");
  const fennick::SystemClock clock;
  fennick::SystemFileSystem files;
  quarrow::EventLoopQueue mainQueue(clock);
  mainQueue.onSignals(std::move(signalSource), [](int) { QCoreApplication::quit(); });
  fennick::DecoderPool decoder({.program = fennick::imagingProgram()});
  fennick::SystemTrash trash;
  quarrow::SystemNetwork network(mainQueue);
  const QDBusConnection bus = QDBusConnection::sessionBus();
  quarrow::introduceToPortal(bus);
  const quarrow::ColourScheme scheme(bus);
  quarrow::LoginItem loginItem(quarrow::autostartFolder(),
                               QCoreApplication::applicationFilePath().toStdString());
  Views views;
  quarrow::AppDesktop desktop({.mainQueue = mainQueue,
                               .clock = clock,
                               .decoder = decoder,
                               .bus = bus,
                               .makeView = [&](const QString &name) { return views.make(name); },
                               .launchedAsLoginItem = options.loginItem});
  quarrow::AppController controller({.cacheDirectory = state.cache,
                                     .arguments = options.windows,
                                     .saveFolder = state.saveFolder,
                                     .uploadRecord = state.preferences / "tevrin.uploads.jsonl"},
                                    {.preferences = preferences,
                                     .mainQueue = mainQueue,
                                     .files = files,
                                     .clock = clock,
                                     .decoder = decoder,
                                     .trash = trash,
                                     .desktop = desktop,
                                     .network = network});
  quarrow::Shell shell(controller.settings(), controller.server(), controller, loginItem);
  quarrow::PhotoWall wall({.library = controller.library(),
                           .selection = controller.selection(),
                           .server = controller.server(),
                           .commands = controller,
                           .thumbnails = controller.thumbnails(),
                           .preferences = preferences,
                           .mainQueue = mainQueue,
                           .clock = clock});
  quarrow::QuickLook look(controller.library(), decoder, controller.thumbnails(), mainQueue);
  quarrow::PhotoActions actions({.library = controller.library(),
                                 .selection = controller.selection(),
                                 .server = controller.server(),
                                 .commands = controller,
                                 .tools = {.files = files, .decoder = decoder, .trash = trash},
                                 .desktop = desktop,
                                 .mainQueue = mainQueue});
  quarrow::ImagingForm imagingForm(controller.settings(), controller.library(), decoder, mainQueue);
  quarrow::WorkflowForm workflowForm(controller.settings(), controller.library(), desktop, mainQueue,
                                     state.cache / "sample");
  quarrow::SettingsForm form({.settings = controller.settings(),
                              .library = controller.library(),
                              .server = controller.server(),
                              .folders = controller,
                              .files = files,
                              .mainQueue = mainQueue,
                              .clock = clock,
                              .imaging = imagingForm,
                              .workflow = workflowForm});
  lendToQml(controller, shell);
  quarrow::WallSingleton::instance = &wall;
  quarrow::LookSingleton::instance = &look;
  quarrow::ActionsSingleton::instance = &actions;
  quarrow::SettingsSingleton::instance = &form;
  QObject::connect(&application, &quarrow::WindowedApplication::coloursChanged, &desktop,
                   [&] { desktop.recolour(); });
  QObject::connect(&controller, &quarrow::AppController::received, &shell, &quarrow::Shell::countReceived);
  QObject::connect(&desktop, &quarrow::AppDesktop::mainWindowAskedFor, &shell,
                   [&] { shell.showMainWindow(); });

  std::optional<quarrow::SingleInstance> instance;
  if (guard)
    instance.emplace(std::move(*guard), [&](const auto &arguments) { handleLaunch(controller, arguments); });
  controller.start();
  if (options.selfTest)
    mainQueue.post([&] { QCoreApplication::exit(testAndReport(desktop)); });
  const int status = QCoreApplication::exec();
  desktop.closeAll();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // views use what is destroyed next
  controller.finishPicture();
  decoder.stop(); // requests for pictures that still wait fail
  controller.stop();
  mainQueue.drain();
  return status;
}

// The running program handles the new launch.
int handOver(const std::filesystem::path &directory, const quarrow::LaunchOptions &options) {
  const quarrow::HandOver asked{
      .windows = options.windows, .loginItem = options.loginItem, .activationToken = activationToken()};
  const auto handed = fennick::InstanceGuard::handOver(directory, kName, asked.arguments());
  if (handed)
    return EXIT_SUCCESS;
  return refuse(kCannotStart,
                fmt::format("已有一个 Tevrin 在运行，但它没有回应：{0} / Another Tevrin is running "
                            "but does not answer: {0}",
                            handed.error().message()));
}

// Runs beside another instance and leaves nothing behind.
int selfTest(int argc, char *argv[], const quarrow::LaunchOptions &options) {
  const QTemporaryDir folder;
  const std::filesystem::path own = folder.path().toStdString();
  const auto state = options.stateDirectory.value_or(own / "state");
  fennick::SignalSource signalSource({SIGINT, SIGTERM, SIGHUP});
  quarrow::WindowedApplication application(argc, argv);
  return serve(application, options, std::move(signalSource),
               {.preferences = state, .cache = state, .saveFolder = own / "photos"}, std::nullopt);
}

int run(int argc, char *argv[], const quarrow::LaunchOptions &options) {
  const auto directory = options.stateDirectory.value_or(fennick::configurationDirectory());
  auto guard = fennick::InstanceGuard::claim(directory, kName);
  if (guard && !*guard)
    return handOver(directory, options);
  if (!guard)
    fennick::log(fmt::format("cannot tell whether another one is running: {}", guard.error().message()));
  fennick::SignalSource signalSource({SIGINT, SIGTERM, SIGHUP});
  quarrow::WindowedApplication application(argc, argv);
  return serve(
      application, options, std::move(signalSource),
      {.preferences = directory, .cache = options.stateDirectory.value_or(fennick::cacheDirectory())},
      guard ? std::move(*guard) : std::optional<fennick::InstanceGuard>());
}

} // namespace

int main(int argc, char *argv[]) {
  fennick::prepareProcess();
  const auto options = quarrow::LaunchOptions::parse(std::vector<std::string>(argv + 1, argv + argc));
  if (!options)
    return refuse(kBadUsage, options.error());
  if (options->showHelp || options->showVersion) {
    std::ignore = std::fputs(
        options->showHelp ? quarrow::LaunchOptions::help() : "tevrin " TEVRIN_VERSION "\n", stdout);
    return EXIT_SUCCESS;
  }
  fennick::leaveWorkingDirectory();
  return options->selfTest ? selfTest(argc, argv, *options) : run(argc, argv, *options);
}
