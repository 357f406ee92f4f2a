// The terminal receiver: builds its objects in order, wires them and runs until a signal comes.

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Platform/Clock.h"
#include "FennickCore/Platform/Directories.h"
#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/Log.h"
#include "FennickCore/Platform/LoopQueue.h"
#include "FennickCore/Platform/Preferences.h"
#include "FennickCore/Platform/Process.h"
#include "FennickCore/Platform/Trash.h"
#include "FennickCore/Settings/SettingsOverride.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "Quarrow/Terminal/CommandLine.h"
#include "Quarrow/Terminal/JsonReport.h"
#include "Quarrow/Terminal/Receiver.h"
#include "Quarrow/Terminal/WordsReport.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace {

constexpr int kCannotStart = 1;
constexpr int kBadUsage = 2;

int refuse(const std::string &sentence) {
  std::ignore = std::fputs((sentence + "\n").c_str(), stderr);
  return kBadUsage;
}

std::unique_ptr<quarrow::Report> makeReport(const quarrow::CommandLine &options) {
  if (options.json)
    return std::make_unique<quarrow::JsonReport>();
  return std::make_unique<quarrow::WordsReport>(
      quarrow::WordsReport::Options{.qr = options.qr,
                                    .terminal = fennick::standardOutputIsTerminal(),
                                    .colour = std::getenv("NO_COLOR") == nullptr});
}

int run(const quarrow::CommandLine &options) {
  const auto stateDirectory = options.stateDirectory.value_or(fennick::configurationDirectory());
  fennick::FilePreferences preferences(stateDirectory / "preferences.json");
  const fennick::SettingsStore store(preferences);
  fennick::AppSettings settings = store.settings();
  for (const auto &override : options.overrides)
    if (const auto applied = fennick::applyOverride(settings, override); !applied)
      return refuse(applied.error());
  if (options.port)
    settings.preferredPort = *options.port;

  const fennick::SystemClock clock;
  fennick::SystemFileSystem files;
  fennick::LoopQueue mainQueue(clock);
  mainQueue.onSignals({SIGINT, SIGTERM, SIGHUP}, [&](int) { mainQueue.quit(); });
  const auto report = makeReport(options);
  fennick::DecoderPool decoder({.program = fennick::imagingProgram()});
  fennick::SystemTrash trash;
  quarrow::Receiver receiver(
      {.settings = settings,
       .accessKey = store.accessKey(),
       .folder = options.folder,
       .cacheDirectory = options.stateDirectory.value_or(fennick::cacheDirectory())},
      *report, {.mainQueue = mainQueue, .files = files, .clock = clock, .decoder = decoder, .trash = trash});
  if (!receiver.start())
    return kCannotStart;
  mainQueue.run();
  decoder.stop(); // whoever waits for a picture does so no longer
  receiver.stop();
  mainQueue.run(); // what finished in the last moment is still reported
  return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[]) {
  fennick::prepareProcess();
  const auto options = quarrow::CommandLine::parse(std::vector<std::string>(argv + 1, argv + argc));
  if (!options)
    return refuse(options.error());
  if (options->help || options->showVersion) {
    std::ignore = std::fputs(options->help.value_or("tevrin-headless " TEVRIN_VERSION "\n").c_str(), stdout);
    return EXIT_SUCCESS;
  }
  fennick::logToStandardError();
  return run(*options);
}
