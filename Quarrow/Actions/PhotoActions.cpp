#include "Quarrow/Actions/PhotoActions.h"

#include "FennickCore/Imaging/MediaTypes.h"

#include <QFile>

#include <algorithm>
#include <utility>

namespace quarrow {

namespace fs = std::filesystem;
namespace ops = fennick::PhotoFileOps;

namespace {

constexpr fennick::Seconds kNoteTime{8};
using Application = applications::InstalledApplication;

constexpr std::size_t kMostDeeds = 50; // that are remembered

} // namespace

PhotoActions::PhotoActions(AppController &controller, const ActionServices &services)
    : controller_(controller), services_(services), jobs_(services.mainQueue),
      renaming_(
          services, jobs_, [this] { return selected_; },
          [this](const auto &photos, const auto &numbering, const auto &finished) {
            renameBatch(photos, numbering, finished);
          }),
      exporting_(
          services, jobs_, [this] { return selected_; },
          [this] { return controller_.server().saveFolder().value_or(fs::path()); }) {
  connect(&controller_.selection(), &PhotoSelection::changed, this, [this] { follow(); });
  auto &library = controller_.library();
  subscriptions_.push_back(library.observeItems([this](const auto &) { follow(); }));
  subscriptions_.push_back(library.observeArranged([this](bool) { emit canSortByDateChanged(); }));
  subscriptions_.push_back(
      library.observeRearrangements([this](const auto &change) { remember(Arrangement{.change = change}); }));
  follow();
}

void PhotoActions::follow() {
  Paths selected;
  const auto &files = controller_.selection().files();
  for (const auto &item : controller_.library().items())
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

void PhotoActions::open(bool evenMany) {
  if (count() > kManyToOpen && !evenMany)
    emit askedToOpenMany(count());
  else if (count() > 0)
    services_.desktop.open(selected_, failedTo(tr("没能打开")));
}

void PhotoActions::openWith(const QString &application) {
  if (count() > 0)
    services_.desktop.openWith(fs::path(QFile::encodeName(application).toStdString()), selected_,
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
    services_.desktop.showInFolder(selected_);
}

void PhotoActions::copy() {
  if (count() == 0)
    return;
  services_.desktop.copyToClipboard(selected_);
  say(tr("已拷贝 %1 项").arg(count()), false);
}

QString PhotoActions::rename(const QString &name) {
  if (count() != 1)
    return {};
  const fs::path file = selected_.front();
  const auto renamed = ops::rename(file, name.toStdString(), services_.files);
  if (!renamed)
    return problemText(renamed.error());
  if (*renamed == file)
    return {};
  const Rename deed{.files = {{.from = file, .to = *renamed}}};
  adopt(deed.files);
  remember(deed);
  return {};
}

// Library and selection go along with new names. The library may have looked at the folder while a batch was
// under way, when its photos had other names for a moment.
void PhotoActions::adopt(const std::vector<fennick::Renaming> &renamings, Selecting selecting) {
  auto selection = controller_.selection().files();
  PhotoSelection::Paths added;
  for (const auto &[from, to] : renamings)
    if (selection.erase(from) > 0 || selecting == Selecting::all)
      added.insert(to);
  selection.merge(added);
  controller_.library().rename(renamings);
  if (renamings.size() > 1)
    controller_.library().scan();
  controller_.selection().set(std::move(selection));
}

void PhotoActions::renameBatch(const Paths &photos, const ops::Numbering &numbering,
                               const std::function<void(bool, const QString &)> &finished) {
  jobs_.run(
      static_cast<int>(photos.size()),
      [photos, numbering, services = services_](FileJobs::Ticket &ticket) {
        const auto names = ops::numberedNames(photos, numbering, services.files);
        if (names)
          return quarrow::renameAll(*names, services, ticket);
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
          say(tr("已重命名 %1 项").arg(countOf(outcome.done)), true);
        remember(std::move(outcome.done));
        finished(worked, outcome.problem);
      });
}

void PhotoActions::rotate(bool clockwise) {
  Paths files;
  std::ranges::copy_if(selected_, std::back_inserter(files),
                       [](const fs::path &file) { return !fennick::isVideoName(file.filename().native()); });
  if (files.empty())
    return;
  dismissNote();
  const auto direction = clockwise ? ops::QuarterTurn::clockwise : ops::QuarterTurn::anticlockwise;
  jobs_.run(
      static_cast<int>(files.size()),
      [files, direction, services = services_](FileJobs::Ticket &ticket) {
        return turn(files, direction, services, ticket);
      },
      [this](Outcome outcome) {
        controller_.library().scan();
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
      [files = selected_, services = services_](FileJobs::Ticket &ticket) {
        return moveToTrash(files, services, ticket);
      },
      [this](Outcome outcome) { finishTrash(std::move(outcome)); });
}

void PhotoActions::finishTrash(Outcome outcome) {
  controller_.forget(outcome.files);
  if (!isEmpty(outcome.done))
    say(tr("已将 %1 项移到废纸篓").arg(countOf(outcome.done)), true);
  remember(std::move(outcome.done));
  if (!outcome.failures.isEmpty())
    fail(tr("%1 项没能移到废纸篓").arg(outcome.failures.count()), std::move(outcome.failures));
}

void PhotoActions::remember(Deed deed) {
  if (isEmpty(deed))
    return;
  if (deeds_.size() == kMostDeeds)
    deeds_.erase(deeds_.begin());
  deeds_.push_back(std::move(deed));
  emit undoChanged();
}

void PhotoActions::sortByDate() {
  if (!canSortByDate())
    return;
  controller_.library().sortByDate(lifetime_.guard([this](const auto &stored) {
    if (stored)
      say(tr("已按时间排列"), true);
    else
      failOrder(tr("没能按时间排列"), stored.error());
  }));
}

void PhotoActions::undo() {
  if (deeds_.empty())
    return;
  dismissNote();
  const Deed deed = std::move(deeds_.back());
  deeds_.pop_back();
  emit undoChanged();
  if (const auto *arrangement = std::get_if<Arrangement>(&deed))
    return undoArrangement(*arrangement);
  jobs_.run(
      countOf(deed),
      [deed, services = services_](FileJobs::Ticket &ticket) { return takeBack(deed, services, ticket); },
      [this, deed](Outcome outcome) { finishUndo(deed, std::move(outcome)); });
}

void PhotoActions::undoArrangement(const Arrangement &arrangement) {
  controller_.library().undo(arrangement.change, lifetime_.guard([this, arrangement](const auto &stored) {
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

void PhotoActions::finishUndo(const Deed &deed, Outcome outcome) {
  if (const auto *renamed = std::get_if<Rename>(&outcome.done))
    adopt(renamed->files);
  for (auto &earlier : deeds_)
    quarrow::follow(earlier, outcome.renamed);
  if (std::holds_alternative<Deletion>(deed))
    noteRestored(outcome);
  controller_.library().scan();
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
  controller_.library().noteRestored(restored);
  controller_.selection().set({outcome.files.begin(), outcome.files.end()});
  if (outcome.renamed.empty())
    say(tr("已放回 %1 项").arg(outcome.files.size()), false);
  else if (outcome.renamed.size() == 1)
    say(tr("原来的名字已被占用，放回为 %1").arg(nameText(outcome.renamed.front().to)), false);
  else
    say(tr("已放回 %1 项，其中 %2 项原来的名字已被占用，换了名字")
            .arg(outcome.files.size())
            .arg(outcome.renamed.size()),
        false);
}

// A stopped undo says how much is left; failures are listed.
void PhotoActions::sayWhatIsLeft(Outcome &&outcome) {
  const int left = countOf(outcome.left);
  const QString again = left > 0 ? tr("，可按 Ctrl+Z 重试") : QString();
  if (!outcome.problem.isEmpty())
    fail(tr("没能恢复原来的名字：%1").arg(outcome.problem) + again, std::move(outcome.failures));
  else if (!outcome.failures.isEmpty())
    fail(tr("%1 项没能撤销").arg(outcome.failures.count()) + again, std::move(outcome.failures));
  else if (left > 0)
    say(tr("已停止，还有 %1 项没有撤销").arg(left), true);
}

void PhotoActions::say(const QString &note, bool canBeUndone) {
  note_ = note;
  noteCanBeUndone_ = canBeUndone;
  hideNoteLater();
  emit noteChanged();
}

void PhotoActions::hideNoteLater() {
  noteTimer_.cancel();
  services_.mainQueue.postAfter(kNoteTime, noteTimer_.guard([this] {
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
