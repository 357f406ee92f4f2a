// The terminal program: creates its objects in order, connects them and runs until a signal or a key ends it.

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Platform/Files/Directories.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Files/Preferences.h"
#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Platform/Processes/InstanceGuard.h"
#include "FennickCore/Platform/Processes/Process.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Settings/SettingsOverride.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Support/Text.h"
#include "Quarrow/App/AppController.h"
#include "Quarrow/App/Applications.h"
#include "Quarrow/App/EventLoopQueue.h"
#include "Quarrow/App/SingleInstance.h"
#include "Quarrow/App/SystemNetwork.h"
#include "Quarrow/Terminal/CommandLine.h"
#include "Quarrow/Terminal/JsonReport.h"
#include "Quarrow/Terminal/TerminalDesktop.h"
#include "Quarrow/Terminal/TerminalKeyboard.h"
#include "Quarrow/Terminal/TerminalKeys.h"
#include "Quarrow/Terminal/TerminalView.h"
#include "Quarrow/Terminal/WordsReport.h"

#include <QCoreApplication>
#include <fmt/format.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <expected>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using fennick::AppSettings;

constexpr int kCannotStart = 1;
constexpr int kBadUsage = 2;
constexpr int kRunsAlready = 3;
constexpr const char *kRunsAlreadyText = "已有一个 Tevrin 正在运行；用 --folder 或 --state-dir 可以另开一个 "
                                         "/ Another Tevrin is running; --folder or "
                                         "--state-dir starts one beside it";

int refuse(int status, const std::string &sentence) {
  std::ignore = std::fputs((sentence + "\n").c_str(), stderr);
  return status;
}

// Applies the command line's changes for this run. The error is a sentence for users.
std::expected<void, std::string> applyCommandLine(AppSettings &settings,
                                                  const quarrow::CommandLine &options) {
  for (const auto &each : options.overrides)
    if (const auto applied = fennick::applyOverride(settings, each); !applied)
      return applied;
  settings.preferredPort = options.port.value_or(settings.preferredPort);
  return {};
}

std::unique_ptr<quarrow::Report> makeReport(const quarrow::CommandLine &options, bool keys) {
  if (options.json)
    return std::make_unique<quarrow::JsonReport>();
  return std::make_unique<quarrow::WordsReport>(
      quarrow::WordsReport::Options{.qr = options.qr,
                                    .terminal = fennick::standardOutputIsTerminal(),
                                    .colour = std::getenv("NO_COLOR") == nullptr,
                                    .keys = keys});
}

void handleSignal(int signal, quarrow::TerminalKeyboard *keyboard) {
  if (signal != SIGTSTP && signal != SIGCONT && signal != SIGQUIT)
    return QCoreApplication::quit();
  if (keyboard != nullptr && signal != SIGCONT)
    keyboard->pause();
  if (signal != SIGCONT)
    fennick::takeDefaultAction(signal);
  if (keyboard != nullptr)
    keyboard->resume();
}

void showNextAddress(quarrow::AppController &controller, quarrow::Report &report) {
  const auto &server = controller.server();
  const auto next = quarrow::nextInterface(server.addresses(), server.preferredAddress());
  if (!next)
    return report.notice("没有别的网络 / There is no other network");
  controller.settings().overrideForRun([&](AppSettings &settings) { settings.preferredInterface = next; });
}

void openSaveFolder(quarrow::AppController &controller, quarrow::Report &report) {
  const auto folder = controller.server().saveFolder().value_or("");
  if (const auto opened = quarrow::applications::openFolder(folder); !opened)
    report.notice(fmt::format("{}\n  {}", opened.error(),
                              fennick::withoutControls(fennick::displayText(folder.string()))));
}

quarrow::TerminalKeys::Actions keyActions(quarrow::AppController &controller, quarrow::TerminalView &view,
                                          quarrow::Report &report) {
  return {.showCode = [&view] { view.showAgain(); },
          .nextAddress = [&controller, &report] { showNextAddress(controller, report); },
          .resetKey = [&controller] { controller.settings().resetAccessKey(); },
          .openFolder = [&controller, &report] { openSaveFolder(controller, report); },
          .quit = [] { QCoreApplication::quit(); }};
}

std::filesystem::path stateDirectory(const quarrow::CommandLine &options) {
  return options.stateDirectory.value_or(fennick::configurationDirectory());
}

// Identifies this program among those that serve the same settings. One with its own save folder is a
// separate instance.
std::string instanceName(const quarrow::CommandLine &options) {
  if (!options.folder)
    return "tevrin";
  return fmt::format("tevrin-{:016x}", std::filesystem::hash_value(*options.folder));
}

// Runs until it is told to end; returns the exit status.
int serve(int argc, char *argv[], const quarrow::CommandLine &options, fennick::Preferences &preferences,
          const AppSettings &settings, std::optional<fennick::InstanceGuard> guard) {
  const QCoreApplication application(argc, argv);
  const fennick::SystemClock clock;
  fennick::SystemFileSystem files;
  quarrow::EventLoopQueue mainQueue(clock);
  std::optional<quarrow::TerminalKeyboard> keyboard;
  mainQueue.onSignals({SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGCONT},
                      [&](int signal) { handleSignal(signal, keyboard ? &*keyboard : nullptr); });
  if (!options.json && fennick::standardOutputIsTerminal())
    keyboard.emplace();
  const auto report = makeReport(options, keyboard && keyboard->isOn());
  fennick::DecoderPool decoder({.program = fennick::imagingProgram()});
  fennick::SystemTrash trash;
  quarrow::SystemNetwork network(mainQueue);
  quarrow::TerminalDesktop desktop(*report);
  quarrow::AppController controller(
      {.cacheDirectory = options.stateDirectory.value_or(fennick::cacheDirectory()),
       .saveFolder = options.folder,
       .uploadRecord = stateDirectory(options) / (instanceName(options) + ".uploads.jsonl"),
       .hasPhotoWall = false,
       .overrides = [&](AppSettings &changed) { std::ignore = applyCommandLine(changed, options); }},
      {.preferences = preferences,
       .mainQueue = mainQueue,
       .files = files,
       .clock = clock,
       .decoder = decoder,
       .trash = trash,
       .desktop = desktop,
       .network = network});

  quarrow::TerminalView view(controller.server(), controller.progress(), settings.preferredPort, *report);
  QObject::connect(&controller, &quarrow::AppController::received, &view, &quarrow::TerminalView::received);
  QObject::connect(&controller, &quarrow::AppController::serverFailed, &view, [&] {
    if (!view.hasListened())
      QCoreApplication::exit(kCannotStart);
  });
  desktop.setPanel([&] { view.showAgain(); });
  quarrow::TerminalKeys keys(keyActions(controller, view, *report), *report);
  if (keyboard)
    keyboard->onTyped([&](auto typed) { keys.typed(typed); });

  std::optional<quarrow::SingleInstance> instance;
  if (guard)
    instance.emplace(std::move(*guard),
                     [&](const auto &arguments) { controller.handleArguments(arguments); });
  controller.start();
  const int status = QCoreApplication::exec();
  controller.finishPicture();
  decoder.stop(); // requests for pictures that still wait fail
  controller.stop();
  mainQueue.drain(); // the last results are still reported
  return status;
}

int run(int argc, char *argv[], const quarrow::CommandLine &options) {
  auto guard = fennick::InstanceGuard::claim(stateDirectory(options), instanceName(options));
  if (guard && !*guard)
    return refuse(kRunsAlready, kRunsAlreadyText);
  if (!guard)
    fennick::log(fmt::format("cannot tell whether another one is running: {}", guard.error().message()));
  fennick::FilePreferences preferences(stateDirectory(options) / "preferences.json");
  AppSettings settings = fennick::SettingsStore(preferences).settings();
  if (const auto applied = applyCommandLine(settings, options); !applied)
    return refuse(kBadUsage, applied.error());
  return serve(argc, argv, options, preferences, settings,
               guard ? std::move(*guard) : std::optional<fennick::InstanceGuard>());
}

} // namespace

int main(int argc, char *argv[]) {
  fennick::prepareProcess();
  const auto options = quarrow::CommandLine::parse(std::vector<std::string>(argv + 1, argv + argc));
  if (!options)
    return refuse(kBadUsage, options.error());
  if (options->help || options->showVersion) {
    std::ignore = std::fputs(options->help.value_or("tevrin-headless " TEVRIN_VERSION "\n").c_str(), stdout);
    return EXIT_SUCCESS;
  }
  fennick::logToStandardError();
  fennick::leaveWorkingDirectory();
  return run(argc, argv, *options);
}
