#include "Quarrow/SettingsForm/SettingsForm.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Settings/SettingsRules.h"
#include "FennickCore/Support/Text.h"
#include "Quarrow/App/InputLimits.h"

#include <QFile>
#include <QVariantMap>

#include <algorithm>
#include <array>
#include <utility>
#include <variant>

namespace quarrow {

namespace {

using fennick::AppSettings;
using fennick::PrefixSequenceNaming;

constexpr std::int64_t kMegabyte = 1'000'000;
constexpr int kUsualFolderLimit = 500;
constexpr std::int64_t kVideoBytesPerSecond =
    2'850'000; // of 4K video at 30 frames a second, as phones record it

QString text(const std::string &utf8) { return QString::fromStdString(utf8); }

QString text(const std::filesystem::path &path) { return QFile::decodeName(path.c_str()); }

const PrefixSequenceNaming *numberingOf(const AppSettings &settings) {
  return std::get_if<PrefixSequenceNaming>(&settings.naming);
}

PrefixSequenceNaming &numberingIn(AppSettings &settings, const PrefixSequenceNaming &otherwise) {
  if (numberingOf(settings) == nullptr)
    settings.naming = otherwise;
  return std::get<PrefixSequenceNaming>(settings.naming);
}

QString portProblem(int port) {
  if (port >= 1 && port < InputLimits::LowestPort)
    return SettingsForm::tr("1024 以下的端口要有管理员权限，请填 1024 到 65535 之间的数");
  if (port < InputLimits::LowestPort || port > InputLimits::HighestPort)
    return SettingsForm::tr("端口是 1024 到 65535 之间的数");
  return {};
}

QString sessionProblem(const std::string &name) {
  if (name.empty() || fennick::isSessionName(name))
    return {};
  if (fennick::isReservedFolderName(name))
    return SettingsForm::tr("“%1”留给程序自己用，请换一个名称").arg(text(name));
  if (name.contains('/'))
    return SettingsForm::tr("只能是一层文件夹，名称里不能有“/”");
  if (name.starts_with('.'))
    return SettingsForm::tr("名称不能以“.”开头：那样的文件夹是隐藏的");
  return SettingsForm::tr("名称太长，或者含有不能用的字符");
}

QString nameProblem(const PrefixSequenceNaming &naming, const std::string &part) {
  if (part.contains('/'))
    return SettingsForm::tr("文件名里不能有“/”");
  if (!fennick::isNamePart(part))
    return SettingsForm::tr("含有文件名里不能用的字符");
  if (!fennick::fitsTogether(naming))
    return SettingsForm::tr("太长了，文件名会放不下");
  return {};
}

QString prefixProblem(const PrefixSequenceNaming &naming) {
  if (naming.prefix.starts_with('.'))
    return SettingsForm::tr("不能以“.”开头：那样的文件是隐藏的");
  return nameProblem(naming, naming.prefix);
}

QVariantMap choice(const QString &words, const QString &value) { return {{"text", words}, {"value", value}}; }

} // namespace

SettingsForm::SettingsForm(const Parts &parts)
    : store_(parts.settings), folders_(parts.folders), files_(parts.files), clock_(parts.clock),
      known_(now()), lastLimit_(kUsualFolderLimit), look_(parts.mainQueue, "fennick.form",
                                                          [this](const UploadFolder &seen) {
                                                            next_ = seen;
                                                            emit nextChanged();
                                                          }),
      imaging_(parts.imaging), workflow_(parts.workflow) {
  subscriptions_.push_back(store_.observeSettings([this](const auto &settings) { follow(settings); }));
  subscriptions_.push_back(parts.library.observeItems([this](const auto &) { lookAgain(); }));
  connect(&parts.server, &ServerModel::saveFolderChanged, this, [this] { lookAgain(); });
  connect(&imaging_, &ImagingForm::exampleChanged, this, &SettingsForm::nextChanged);
}

void SettingsForm::setWatched(bool watched) {
  if (std::exchange(watched_, watched) == watched)
    return;
  emit watchedChanged();
  imaging_.setWatched(watched);
  if (!watched)
    workflow_.forgetOutcomes();
  if (watched)
    lookAgain();
  else
    look_.cancel();
}

void SettingsForm::follow(const AppSettings &settings) {
  const auto before = std::exchange(known_, settings);
  const auto *oldNumbering = numberingOf(before);
  const auto *numbering = numberingOf(settings);
  if (oldNumbering != nullptr)
    unused_ = *oldNumbering;
  // An error about an input is obsolete once the field has another value.
  if (before.preferredPort != settings.preferredPort)
    setError(Field::port, {});
  if (before.sessionSubfolder != settings.sessionSubfolder)
    setError(Field::session, {});
  if (numbering == nullptr || oldNumbering == nullptr || numbering->prefix != oldNumbering->prefix)
    setError(Field::prefix, {});
  if (numbering == nullptr || oldNumbering == nullptr || numbering->separator != oldNumbering->separator)
    setError(Field::separator, {});
  emit changed();
  lookAgain();
}

void SettingsForm::lookAgain() {
  if (watched_)
    look_.request([destination = folders_.makeDestination(), instant = clock_.now(), files = &files_] {
      return lookAtUploadFolder(destination, instant, *files);
    });
}

QString SettingsForm::error(Field field) const {
  const auto found = errors_.find(field);
  return found == errors_.end() ? QString() : found->second;
}

void SettingsForm::setError(Field field, const QString &problem) {
  if (error(field) == problem)
    return;
  errors_[field] = problem;
  emit errorsChanged();
}

void SettingsForm::store(Field field, const QString &problem,
                         const std::function<void(AppSettings &)> &change) {
  setError(field, problem);
  if (problem.isEmpty())
    store(change);
}

void SettingsForm::store(const std::function<void(AppSettings &)> &change) { store_.update(change); }

void SettingsForm::setPort(int port) {
  store(Field::port, port == this->port() ? QString() : portProblem(port),
        [&](auto &settings) { settings.preferredPort = static_cast<std::uint16_t>(port); });
}

void SettingsForm::useDefaultFolder() {
  store([](auto &settings) { settings.saveFolderBookmark.reset(); });
}

void SettingsForm::setDateSubfolders(bool wanted) {
  store([&](auto &settings) { settings.dateSubfolders = wanted; });
}

QString SettingsForm::sessionSubfolder() const { return text(now().sessionSubfolder.value_or("")); }

void SettingsForm::setSessionSubfolder(const QString &name) {
  const std::string wanted = name.trimmed().toStdString();
  store(Field::session, sessionProblem(wanted), [&](auto &settings) {
    settings.sessionSubfolder = wanted.empty() ? std::nullopt : std::optional(wanted);
  });
}

bool SettingsForm::isNumbered() const { return numberingOf(now()) != nullptr; }

void SettingsForm::setNumbered(bool numbered) {
  const auto numbering = this->numbering();
  store([&](auto &settings) {
    if (numbered)
      std::ignore = numberingIn(settings, numbering);
    else
      settings.naming = fennick::TimestampNaming{};
  });
}

PrefixSequenceNaming SettingsForm::numbering() const {
  const auto *naming = numberingOf(now());
  return naming != nullptr ? *naming : unused_;
}

void SettingsForm::storeNumbering(const std::function<void(PrefixSequenceNaming &)> &change) {
  const auto numbering = this->numbering();
  store([&](auto &settings) { change(numberingIn(settings, numbering)); });
}

void SettingsForm::setPrefix(const QString &prefix) {
  auto wanted = numbering();
  wanted.prefix = prefix.toStdString();
  const auto problem = prefixProblem(wanted);
  setError(Field::prefix, problem);
  if (problem.isEmpty())
    storeNumbering([&](auto &naming) { naming.prefix = wanted.prefix; });
}

void SettingsForm::setSeparator(const QString &separator) {
  auto wanted = numbering();
  wanted.separator = separator.toStdString();
  const auto problem = nameProblem(wanted, wanted.separator);
  setError(Field::separator, problem);
  if (problem.isEmpty())
    storeNumbering([&](auto &naming) { naming.separator = wanted.separator; });
}

void SettingsForm::setDigits(int digits) {
  storeNumbering([&](auto &naming) {
    naming.digits = std::clamp<std::int64_t>(digits, InputLimits::FewestDigits, InputLimits::MostDigits);
  });
}

int SettingsForm::start() const {
  return static_cast<int>(std::clamp<std::int64_t>(numbering().start, 0, InputLimits::HighestStart));
}

void SettingsForm::setStart(int start) {
  storeNumbering(
      [&](auto &naming) { naming.start = std::clamp<std::int64_t>(start, 0, InputLimits::HighestStart); });
}

int SettingsForm::uploadLimit() const {
  const auto bytes =
      std::clamp<std::int64_t>(now().maxUploadBytes, kMegabyte, InputLimits::MostMegabytes * kMegabyte);
  return static_cast<int>((bytes + kMegabyte / 2) / kMegabyte);
}

// A limit that rounds to the same number stays unchanged.
void SettingsForm::setUploadLimit(int megabytes) {
  const std::int64_t wanted = std::clamp<std::int64_t>(megabytes, 1, InputLimits::MostMegabytes);
  if (wanted != uploadLimit())
    store([&](auto &settings) { settings.maxUploadBytes = wanted * kMegabyte; });
}

QString SettingsForm::uploadLimitMeaning() const {
  const auto seconds = now().maxUploadBytes / kVideoBytesPerSecond;
  const QString size = text(fennick::fileSizeText(now().maxUploadBytes));
  if (seconds < 1)
    return tr("超过 %1 的文件不收。一段 4K 视频放不下").arg(size);
  return seconds < 90 ? tr("超过 %1 的文件不收，约合 %2 秒 4K 视频").arg(size).arg(seconds)
                      : tr("超过 %1 的文件不收，约合 %2 分钟 4K 视频").arg(size).arg((seconds + 30) / 60);
}

void SettingsForm::setLimitsFolder(bool limits) {
  if (limits == limitsFolder())
    return;
  if (!limits)
    lastLimit_ = folderLimit();
  store([&](auto &settings) {
    settings.folderLimit = limits ? std::optional<std::int64_t>(lastLimit_) : std::nullopt;
  });
}

int SettingsForm::folderLimit() const {
  const auto limit = now().folderLimit.value_or(0);
  return limit > 0 ? static_cast<int>(std::min<std::int64_t>(limit, InputLimits::MostPhotos)) : lastLimit_;
}

void SettingsForm::setFolderLimit(int limit) {
  store([&](auto &settings) { settings.folderLimit = std::clamp<int>(limit, 1, InputLimits::MostPhotos); });
}

void SettingsForm::setAutoPrune(bool wanted) {
  store([&](auto &settings) { settings.autoPrune = wanted; });
}

QString SettingsForm::folderLimitMeaning() const {
  if (!limitsFolder())
    return tr("不限数量，照片只增不减");
  const QString present = next_.nextName.empty() ? QString() : tr("现在有 %1 张，").arg(next_.media);
  return autoPrune() ? present + tr("超过 %1 张时，最旧的移到废纸篓").arg(folderLimit())
                     : present + tr("满 %1 张后不再接收，手机上会说明原因").arg(folderLimit());
}

QString SettingsForm::galleryFolder() const { return text(now().galleryFolder.value_or("")); }

void SettingsForm::setGalleryFolder(const QString &folder) {
  const std::string wanted = folder.toStdString();
  if (fennick::isGalleryPath(wanted))
    store([&](auto &settings) {
      settings.galleryFolder = wanted.empty() ? std::nullopt : std::optional(wanted);
    });
}

QVariantList SettingsForm::galleryFolders() const {
  QVariantList choices{choice(tr("照片存到哪里就看哪里"), {})};
  for (const auto &each : next_.galleries)
    choices.append(choice(text(each), text(each)));
  const auto chosen = now().galleryFolder.value_or("");
  if (!chosen.empty() && std::ranges::find(next_.galleries, chosen) == next_.galleries.end())
    choices.append(choice(text(chosen), text(chosen)));
  return choices;
}

QString SettingsForm::galleryFolderMeaning() const {
  const auto chosen = now().galleryFolder.value_or("");
  if (chosen.empty())
    return tr("手机看到的就是新照片所在的文件夹");
  const auto shown = folders_.galleryURL();
  if (shown == (folders_.makeDestination().folder / chosen).lexically_normal())
    return tr("手机只看得到保存目录里的“%1”").arg(text(chosen));
  return tr("“%1”现在不在了，手机看到的是新照片所在的文件夹").arg(text(chosen));
}

QString SettingsForm::nextName() const {
  const std::filesystem::path name = next_.nextName;
  const auto extension = imaging_.nextExtension();
  return text(name.empty() || extension.empty() ? name
                                                : std::filesystem::path(name).replace_extension(extension));
}

QString SettingsForm::nextFolder() const { return text(next_.folder); }

} // namespace quarrow
