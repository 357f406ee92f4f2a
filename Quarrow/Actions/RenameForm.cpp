#include "Quarrow/Actions/RenameForm.h"

#include "FennickCore/Storage/BatchRename.h"
#include "Quarrow/Actions/Failures.h"
#include "Quarrow/App/InputLimits.h"

#include <algorithm>
#include <utility>

namespace quarrow {

namespace ops = fennick::PhotoFileOps;

namespace {

constexpr fennick::Seconds kTypingPause{0.12};

QString previewProblem(const ops::OpError &error) {
  if (error.kind == ops::OpError::Kind::invalidName)
    return RenameForm::tr("名称不能以点开头，也不能含有 / 和 :");
  return problemText(error);
}

} // namespace

RenameForm::RenameForm(fennick::FileSystem &files, fennick::MainQueue &mainQueue, FileJobs &jobs,
                       std::function<Paths()> selected, Apply rename)
    : files_(files), mainQueue_(mainQueue), jobs_(jobs), selected_(std::move(selected)),
      rename_(std::move(rename)) {}

void RenameForm::setPrefix(const QString &prefix) {
  if (std::exchange(prefix_, prefix) != prefix)
    edited();
}

void RenameForm::setDigits(int digits) {
  digits = std::clamp<int>(digits, InputLimits::FewestDigits, InputLimits::MostDigits);
  if (std::exchange(digits_, digits) != digits)
    edited();
}

void RenameForm::setStart(int start) {
  start = std::clamp<int>(start, 0, InputLimits::HighestStart);
  if (std::exchange(start_, start) != start)
    edited();
}

ops::Numbering RenameForm::numbering() const {
  return {.prefix = prefix_.toStdString(), .digits = digits_, .start = start_};
}

void RenameForm::begin() {
  photos_ = selected_();
  appliesWhenReady_ = false;
  preview_.set({});
  edition_.cancel();
  look();
  emit changed();
}

// Waits for a pause, so that fast typing computes the preview once.
void RenameForm::edited() {
  ready_ = false;
  pending_ = true;
  appliesWhenReady_ = false;
  edition_.cancel();
  mainQueue_.postAfter(kTypingPause, edition_.guard([this] { look(); }));
  emit changed();
}

void RenameForm::look() {
  ready_ = false;
  pending_ = true;
  jobs_.ask([photos = photos_, numbering = numbering(),
             &files = files_] { return ops::numberedNames(photos, numbering, files); },
            edition_.guard([this](const auto &names) { show(names); }));
}

void RenameForm::show(const ops::Result<Renamings> &names) {
  pending_ = false;
  problem_ = names ? QString() : previewProblem(names.error());
  if (names)
    preview_.set(*names);
  ready_ = names && std::ranges::any_of(*names, [](const auto &each) { return each.from != each.to; });
  emit changed();
  if (std::exchange(appliesWhenReady_, false))
    apply();
}

void RenameForm::apply() {
  appliesWhenReady_ = pending_;
  if (pending_ || busy_ || !std::exchange(ready_, false))
    return;
  busy_ = true;
  rename_(photos_, numbering(), [this](bool renamed, const QString &problem) { end(renamed, problem); });
  emit changed();
}

void RenameForm::end(bool renamed, const QString &problem) {
  busy_ = false;
  problem_ = problem;
  ready_ = !renamed && problem.isEmpty(); // it was stopped and can be started again
  emit changed();
  emit finished(renamed);
}

} // namespace quarrow
