#include "Quarrow/Wall/WallSelection.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace quarrow {

namespace fs = std::filesystem;

void WallSelection::setFiles(Files files) {
  std::map<fs::path, int> places;
  for (int place = 0; const auto &each : files)
    places.emplace(each, place++);
  const auto placeOf = [&](const fs::path &each) {
    const auto found = places.find(each);
    return found == places.end() ? -1 : found->second;
  };

  const bool lost = isThere(current_) && placeOf(file(current_)) < 0;
  const bool lostAlone = lost && selection_.files() == Paths{file(current_)};
  const int current = placeAfterLoss(placeOf);
  anchor_ = isThere(anchor_) ? placeOf(file(anchor_)) : -1;
  files_ = std::move(files);
  current_ = current;

  Paths kept;
  std::ranges::copy_if(selection_.files(), std::inserter(kept, kept.end()),
                       [&](const fs::path &each) { return placeOf(each) >= 0; });
  if (lostAlone && isThere(current_))
    kept.insert(file(current_));
  selection_.set(std::move(kept));
}

// Returns the present place of the focused photo; if it is gone, that of the next one that is left, else that
// of the one before.
int WallSelection::placeAfterLoss(const std::function<int(const fs::path &)> &placeOf) const {
  for (int place = current_; isThere(place); ++place)
    if (const int now = placeOf(file(place)); now >= 0)
      return now;
  for (int place = current_ - 1; isThere(place); --place)
    if (const int now = placeOf(file(place)); now >= 0)
      return now;
  return -1;
}

void WallSelection::rename(const std::vector<fennick::Renaming> &renamings) {
  Paths selected = selection_.files();
  for (const auto &[from, to] : renamings) {
    std::ranges::replace(files_, from, to);
    if (selected.erase(from) > 0)
      selected.insert(to);
  }
  selection_.set(std::move(selected));
}

bool WallSelection::isSelected(int place) const {
  return isThere(place) && selection_.files().contains(file(place));
}

void WallSelection::addRange(Paths &files, int from, int to) const {
  for (int place = std::min(from, to); place <= std::max(from, to); ++place)
    files.insert(file(place));
}

void WallSelection::pick(int place, Reach reach) {
  if (!isThere(place))
    return;
  current_ = place;
  const bool ranges = reach == Reach::range || reach == Reach::addRange;
  if (!ranges || !isThere(anchor_))
    anchor_ = place;
  Paths files;
  if (reach == Reach::toggle || reach == Reach::addRange)
    files = selection_.files();
  if (reach == Reach::toggle && files.erase(file(place)) > 0)
    return selection_.set(std::move(files));
  addRange(files, ranges ? anchor_ : place, place);
  selection_.set(std::move(files));
}

void WallSelection::moveTo(int place) {
  if (isThere(place))
    current_ = place;
}

void WallSelection::selectAll() { selection_.set(Paths(files_.begin(), files_.end())); }

void WallSelection::selectNone() { selection_.set({}); }

void WallSelection::beginBand(Band kind) {
  band_ = kind;
  beforeBand_ = kind == Band::replace ? Paths() : selection_.files();
  selection_.set(beforeBand_);
}

void WallSelection::coverWithBand(const std::vector<int> &places) {
  Paths files = beforeBand_;
  for (const int place : places) {
    if (!isThere(place))
      continue;
    if (band_ == Band::toggle && beforeBand_.contains(file(place)))
      files.erase(file(place));
    else
      files.insert(file(place));
  }
  if (!places.empty() && isThere(places.back()))
    current_ = anchor_ = places.back();
  selection_.set(std::move(files));
}

} // namespace quarrow
