#include "Quarrow/SettingsForm/WorkflowForm.h"

#include "FennickCore/Support/Text.h"
#include "Quarrow/SettingsForm/ImagingForm.h"
#include "Quarrow/SettingsForm/SamplePicture.h"

#include <QFile>
#include <QStringList>

#include <system_error>
#include <utility>

namespace quarrow {

namespace {

QString text(const std::string &utf8) { return QString::fromStdString(utf8); }

QString nameOf(const std::filesystem::path &file) { return QFile::decodeName(file.filename().c_str()); }

} // namespace

WorkflowForm::WorkflowForm(fennick::SettingsStore &settings, fennick::PhotoLibrary &library, Desktop &desktop,
                           fennick::MainQueue &mainQueue, std::filesystem::path sampleFolder)
    : store_(settings), library_(library), desktop_(desktop), sampleFolder_(std::move(sampleFolder)),
      known_(now()), search_(mainQueue, "fennick.apps",
                             [this](const auto &found) {
                               applications_.setApplications(found);
                               searching_ = false;
                               emit searchingChanged();
                             }),
      sample_(mainQueue, "fennick.sample",
              [this](const Sample &sample) {
                if (const auto asked = std::exchange(asked_, std::nullopt))
                  tryWith(*asked, sample);
              }),
      settings_(settings.observeSettings([this](const auto &all) {
        if (std::exchange(known_, all.workflow) != all.workflow)
          emit changed();
      })) {}

void WorkflowForm::store(const std::function<void(fennick::WorkflowOptions &)> &change) {
  store_.update([&](auto &settings) { change(settings.workflow); });
}

void WorkflowForm::setCopyToClipboard(bool wanted) {
  store([&](auto &workflow) { workflow.copyToClipboard = wanted; });
}

void WorkflowForm::setPlaySound(bool wanted) {
  store([&](auto &workflow) { workflow.playSound = wanted; });
}

void WorkflowForm::setNotify(bool wanted) {
  store([&](auto &workflow) { workflow.notify = wanted; });
}

// A record that was edited by hand may have one without the other.
QString WorkflowForm::applicationName() const {
  if (!now().openWithAppBookmark)
    return {};
  const auto name = now().openWithAppName.value_or("");
  return name.empty() ? nameOf(applicationEntry().toStdString()) : text(name);
}

QString WorkflowForm::applicationEntry() const {
  const auto &bookmark = now().openWithAppBookmark;
  const auto found =
      bookmark ? fennick::FolderBookmark::resolve(*bookmark) : std::unexpected(fennick::BookmarkError());
  return found ? QFile::decodeName(found->url.c_str()) : QString();
}

QString WorkflowForm::applicationError() const {
  if (!choiceError_.isEmpty() || !now().openWithAppBookmark || !applicationEntry().isEmpty())
    return choiceError_;
  return tr("“%1”已经不在这台电脑上了，请另选一个").arg(text(now().openWithAppName.value_or("")));
}

void WorkflowForm::findApplications() {
  if (!std::exchange(searching_, true))
    emit searchingChanged();
  search_.request([] { return applications::installedApplications("photo.jpg"); });
}

void WorkflowForm::chooseApplication(const QString &entry, const QString &name) {
  auto bookmark = fennick::FolderBookmark::make(QFile::encodeName(entry).toStdString());
  choiceError_ = bookmark ? QString() : tr("不能选“%1”：%2").arg(name, text(bookmark.error().description()));
  if (bookmark)
    store([&](auto &workflow) {
      workflow.openWithAppBookmark = *bookmark;
      workflow.openWithAppName = name.toStdString();
    });
  emit changed();
  setOutcome(Open, {});
}

void WorkflowForm::chooseNoApplication() {
  choiceError_.clear();
  store([](auto &workflow) {
    workflow.openWithAppBookmark.reset();
    workflow.openWithAppName.reset();
  });
  setOutcome(Open, {});
}

void WorkflowForm::tryOut(Action action) {
  if (const auto latest = latestPhoto(library_))
    return tryWith(action, latest);
  asked_ = action;
  sample_.request([folder = sampleFolder_] { return samplePicture(folder); });
}

void WorkflowForm::tryWith(Action action, const Sample &sample) {
  if (!sample)
    return setOutcome(action, tr("没有照片可试，样张也存不下来。磁盘满了吗？"), action == Open);
  switch (action) {
  case Copy:
    desktop_.copyToClipboard(*sample);
    return setOutcome(action, tr("已复制 %1，到别的程序里粘贴看看").arg(nameOf(*sample)));
  case Open:
    return open(*sample);
  case Sound:
    desktop_.playSound();
    return setOutcome(action, tr("响过了。没听见的话，请看看音量"));
  case Note:
    std::error_code gone;
    const auto bytes = std::filesystem::file_size(*sample, gone);
    desktop_.notify(
        tr("收到照片").toStdString(),
        tr("%1 · %2")
            .arg(nameOf(*sample), text(fennick::fileSizeText(gone ? 0 : static_cast<std::int64_t>(bytes))))
            .toStdString(),
        *sample);
    return setOutcome(action, tr("已发出。没看到的话，请看看桌面的“勿扰”"));
  }
}

void WorkflowForm::open(const std::filesystem::path &file) {
  const QString entry = applicationEntry();
  if (entry.isEmpty())
    return setOutcome(Open, tr("先选一个应用"), true);
  setOutcome(Open, tr("已用“%1”打开 %2").arg(applicationName(), nameOf(file)));
  desktop_.openWith(QFile::encodeName(entry).toStdString(), file,
                    lifetime_.guard([this](const std::string &reason) {
                      setOutcome(Open, tr("没能打开：%1").arg(text(reason)), true);
                    }));
}

void WorkflowForm::setOutcome(Action action, const QString &outcome, bool failed) {
  outcomes_[static_cast<std::size_t>(action)] = outcome;
  if (action == Open)
    openingFailed_ = failed;
  emit outcomesChanged();
}

QStringList WorkflowForm::outcomes() const { return {outcomes_.begin(), outcomes_.end()}; }

void WorkflowForm::forgetOutcomes() {
  outcomes_.fill({});
  openingFailed_ = false;
  emit outcomesChanged();
}

} // namespace quarrow
