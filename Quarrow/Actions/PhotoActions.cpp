#include "Quarrow/Actions/PhotoActions.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Storage/BatchRename.h"
#include "FennickCore/Storage/PhotoRotation.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace quarrow {

namespace fs = std::filesystem;
namespace ops = fennick::PhotoFileOps;

namespace {

constexpr fennick::Seconds kNoteTime{8};
using Application = applications::InstalledApplication;

constexpr std::size_t kMostUndoEntries = 50; // that can be undone

} // namespace

PhotoActions::PhotoActions(const Parts &parts)
    : library_(parts.library), selection_(parts.selection), commands_(parts.commands), tools_(parts.tools),
      desktop_(parts.desktop), mainQueue_(parts.mainQueue), jobs_(mainQueue_),
      renaming_(
          tools_.files, mainQueue_, jobs_, [this] { return selected_; },
          [this](const auto &photos, const auto &numbering, const auto &finished) {
            renameBatch(photos, numbering, finished);
          }),
      exporting_(
          {.tools = tools_, .desktop = desktop_, .mainQueue = mainQueue_, .jobs = jobs_},
          [this] { return selected_; },
          [&server = parts.server] { return server.saveFolder().value_or(fs::path()); }) {
  connect(&selection_, &PhotoSelection::changed, this, [this] { follow(); });
  subscriptions_.push_back(library_.observeItems([this](const auto &) { follow(); }));
  subscriptions_.push_back(library_.observeArranged([this](bool) { emit canSortByDateChanged(); }));
  subscriptions_.push_back(library_.observeRearrangements(
      [this](const auto &change) { remember(Arrangement{.change = change}); }));
  follow();
}

void PhotoActions::follow() {
  Paths selected;
  const auto &files = selection_.files();
  for (const auto &item : library_.items())
    if (files.contains(item.url))
      selected.push_back(item.url);
  if (std::exchange(selected_, selected) != selected)
    emit selectionChanged();
}

int PhotoActions::pictures() const {
  return static_cast<int>(std::ranges::count_if(
      selected_, [](const fs::path &file) { return !fennick::isVideoName(file.filename().native()); }));
}

Desktop::Failed PhotoActions::failedTo(const QString &what) {
  return lifetime_.guard([this, what](const std::string &reason) {
    Failures failures;
    failures.add(selected_.empty() ? fs::path() : selected_.front(), reason);
    fail(what, std::move(failures));
  });
}

void PhotoActions::open(Confirmation confirmation) {
  if (count() > kManyToOpen && confirmation == Unconfirmed)
    emit askedToOpenMany(count());
  else if (count() > 0)
    desktop_.open(selected_, failedTo(tr("没能打开")));
}

void PhotoActions::openWith(const QString &application) {
  if (count() > 0)
    desktop_.openWith(fs::path(QFile::encodeName(application).toStdString()), selected_,
                      failedTo(tr("没能用这个应用打开")));
}

void PhotoActions::lookForApplications() {
  if (selected_.empty())
    return;
  jobs_.ask([file = selected_.front()] { return applications::installedApplications(file); },
            [this](const auto &installed) {
              const bool someSuit = std::ranges::any_of(installed, &Application::isMadeForIt);
              QVariantList found;
              for (const auto &each : installed)
                if (each.isMadeForIt || !someSuit)
                  found.append(QVariantMap{{"id", QFile::decodeName(each.entry.c_str())},
                                           {"name", QString::fromStdString(each.name)}});
              if (std::exchange(applications_, found) != found)
                emit applicationsChanged();
            });
}

void PhotoActions::showInFolder() {
  if (count() > 0)
    desktop_.showInFolder(selected_);
}

void PhotoActions::copy() {
  if (count() == 0)
    return;
  desktop_.copyToClipboard(selected_);
  say(tr("已拷贝 %1 项").arg(count()), UndoOffer::none);
}

QString PhotoActions::rename(const QString &name) {
  if (count() != 1)
    return {};
  const fs::path file = selected_.front();
  const auto renamed = ops::rename(file, name.toStdString(), tools_.files);
  if (!renamed)
    return problemText(renamed.error());
  if (*renamed == file)
    return {};
  const Rename entry{.files = {{.from = file, .to = *renamed}}};
  adopt(entry.files);
  remember(entry);
  return {};
}

// Applies new names to library and selection. A scan of the folder during a batch may have seen its photos
// under temporary names.
void PhotoActions::adopt(const std::vector<fennick::Renaming> &renamings, Selecting selecting) {
  auto selection = selection_.files();
  PhotoSelection::Paths added;
  for (const auto &[from, to] : renamings)
    if (selection.erase(from) > 0 || selecting == Selecting::all)
      added.insert(to);
  selection.merge(added);
  library_.rename(renamings);
  if (renamings.size() > 1)
    library_.scan();
  selection_.set(std::move(selection));
}

void PhotoActions::renameBatch(const Paths &photos, const ops::Numbering &numbering,
                               const std::function<void(bool, const QString &)> &finished) {
  jobs_.run(
      static_cast<int>(photos.size()),
      [photos, numbering, tools = tools_](FileJobs::Ticket &ticket) {
        const auto names = ops::numberedNames(photos, numbering, tools.files);
        if (names)
          return quarrow::renameAll(*names, tools, ticket);
        Outcome refused;
        refused.problem = problemText(names.error());
        return refused;
      },
      [this, finished](Outcome outcome) {
        const auto *renamed = std::get_if<Rename>(&outcome.done);
        if (renamed != nullptr)
          adopt(renamed->files, Selecting::all);
        const bool worked = !isEmpty(outcome.done) && outcome.problem.isEmpty();
        if (worked)
          say(tr("已重命名 %1 项").arg(countOf(outcome.done)), UndoOffer::undo);
        remember(std::move(outcome.done));
        finished(worked, outcome.problem);
      });
}

void PhotoActions::rotate(Rotation rotation) {
  Paths files;
  std::ranges::copy_if(selected_, std::back_inserter(files),
                       [](const fs::path &file) { return !fennick::isVideoName(file.filename().native()); });
  if (files.empty())
    return;
  dismissNote();
  const auto direction =
      rotation == Clockwise ? ops::QuarterTurn::clockwise : ops::QuarterTurn::anticlockwise;
  jobs_.run(
      static_cast<int>(files.size()),
      [files, direction, tools = tools_](FileJobs::Ticket &ticket) {
        return turn(files, direction, tools, ticket);
      },
      [this](Outcome outcome) {
        library_.scan();
        if (!outcome.failures.isEmpty())
          fail(tr("%1 张没能旋转").arg(outcome.failures.count()), std::move(outcome.failures));
        remember(std::move(outcome.done));
      });
}

void PhotoActions::trash() {
  if (count() == 0)
    return;
  dismissNote();
  jobs_.run(
      count(),
      [files = selected_, tools = tools_](FileJobs::Ticket &ticket) {
        return moveToTrash(files, tools, ticket);
      },
      [this](Outcome outcome) { finishTrash(std::move(outcome)); });
}

void PhotoActions::finishTrash(Outcome outcome) {
  commands_.forget(outcome.files);
  if (!isEmpty(outcome.done))
    say(tr("已将 %1 项移到废纸篓").arg(countOf(outcome.done)), UndoOffer::undo);
  remember(std::move(outcome.done));
  if (!outcome.failures.isEmpty())
    fail(tr("%1 项没能移到废纸篓").arg(outcome.failures.count()), std::move(outcome.failures));
}

void PhotoActions::remember(UndoEntry entry) {
  if (isEmpty(entry))
    return;
  if (undoEntries_.size() == kMostUndoEntries)
    undoEntries_.erase(undoEntries_.begin());
  undoEntries_.push_back(std::move(entry));
  emit undoChanged();
}

void PhotoActions::sortByDate() {
  if (!canSortByDate())
    return;
  library_.sortByDate(lifetime_.guard([this](const auto &stored) {
    if (stored)
      say(tr("已按时间排列"), UndoOffer::undo);
    else
      failOrder(tr("没能按时间排列"), stored.error());
  }));
}

void PhotoActions::undo() {
  if (undoEntries_.empty())
    return;
  dismissNote();
  const UndoEntry entry = std::move(undoEntries_.back());
  undoEntries_.pop_back();
  emit undoChanged();
  if (const auto *arrangement = std::get_if<Arrangement>(&entry))
    return undoArrangement(*arrangement);
  jobs_.run(
      countOf(entry),
      [entry, tools = tools_](FileJobs::Ticket &ticket) { return takeBack(entry, tools, ticket); },
      [this, entry](Outcome outcome) { finishUndo(entry, std::move(outcome)); });
}

void PhotoActions::undoArrangement(const Arrangement &arrangement) {
  library_.undo(arrangement.change, lifetime_.guard([this, arrangement](const auto &stored) {
    if (stored)
      return;
    remember(arrangement);
    failOrder(tr("没能恢复之前的顺序，可按 Ctrl+Z 重试"), stored.error());
  }));
}

void PhotoActions::failOrder(const QString &what, const std::error_code &reason) {
  Failures failures;
  failures.add(fs::path(fennick::kOrderFile), reason);
  fail(what, std::move(failures));
}

void PhotoActions::finishUndo(const UndoEntry &entry, Outcome outcome) {
  if (const auto *renamed = std::get_if<Rename>(&outcome.done))
    adopt(renamed->files);
  for (auto &earlier : undoEntries_)
    quarrow::follow(earlier, outcome.renamed);
  if (std::holds_alternative<Deletion>(entry))
    noteRestored(outcome);
  library_.scan();
  remember(outcome.left);
  sayWhatIsLeft(std::move(outcome));
}

void PhotoActions::noteRestored(const Outcome &outcome) {
  if (outcome.files.empty())
    return;
  std::vector<fennick::Renaming> restored;
  for (const auto &file : outcome.files) {
    const auto renamed = std::ranges::find(outcome.renamed, file, &fennick::Renaming::to);
    restored.push_back({.from = renamed == outcome.renamed.end() ? file : renamed->from, .to = file});
  }
  library_.noteRestored(restored);
  selection_.set({outcome.files.begin(), outcome.files.end()});
  if (outcome.renamed.empty())
    say(tr("已放回 %1 项").arg(outcome.files.size()), UndoOffer::none);
  else if (outcome.renamed.size() == 1)
    say(tr("原来的名字已被占用，放回为 %1").arg(nameText(outcome.renamed.front().to)), UndoOffer::none);
  else
    say(tr("已放回 %1 项，其中 %2 项原来的名字已被占用，换了名字")
            .arg(outcome.files.size())
            .arg(outcome.renamed.size()),
        UndoOffer::none);
}

// Reports how much of a stopped undo remains, and lists failures.
void PhotoActions::sayWhatIsLeft(Outcome outcome) {
  const int left = countOf(outcome.left);
  const QString again = left > 0 ? tr("，可按 Ctrl+Z 重试") : QString();
  if (!outcome.problem.isEmpty())
    fail(tr("没能恢复原来的名字：%1").arg(outcome.problem) + again, std::move(outcome.failures));
  else if (!outcome.failures.isEmpty())
    fail(tr("%1 项没能撤销").arg(outcome.failures.count()) + again, std::move(outcome.failures));
  else if (left > 0)
    say(tr("已停止，还有 %1 项没有撤销").arg(left), UndoOffer::undo);
}

void PhotoActions::say(const QString &note, UndoOffer offer) {
  note_ = note;
  noteCanBeUndone_ = offer == UndoOffer::undo;
  hideNoteLater();
  emit noteChanged();
}

void PhotoActions::hideNoteLater() {
  noteTimer_.cancel();
  mainQueue_.postAfter(kNoteTime, noteTimer_.guard([this] {
    if (!noteHeld_)
      dismissNote();
  }));
}

void PhotoActions::setNoteHeld(bool held) {
  if (std::exchange(noteHeld_, held) == held)
    return;
  if (!held)
    hideNoteLater();
  emit noteHeldChanged();
}

void PhotoActions::dismissNote() {
  if (note_.isEmpty())
    return;
  note_.clear();
  noteCanBeUndone_ = false;
  emit noteChanged();
}

void PhotoActions::fail(const QString &sentence, Failures &&failures) {
  failure_ = sentence;
  failures_ = std::move(failures);
  emit failureChanged();
}

void PhotoActions::dismissFailure() {
  failure_.clear();
  failures_ = {};
  emit failureChanged();
}

} // namespace quarrow
