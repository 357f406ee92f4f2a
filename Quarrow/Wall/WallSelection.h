#pragma once

#include "FennickCore/Storage/PhotoItem.h"
#include "Quarrow/App/PhotoSelection.h"

#include <QtGlobal>

#include <filesystem>
#include <functional>
#include <vector>

namespace quarrow {

// What the pointer and the keyboard do to the selection: which photos of the wall are selected, which one has
// the keyboard, and from which one a range is drawn. Photos are told by their place on the wall. Main thread.
class WallSelection {
public:
  using Files = std::vector<std::filesystem::path>;

  // What a click or a step does.
  enum class Reach {
    only,    // selects the photo alone
    toggle,  // turns it over and leaves the others
    range,   // selects from the anchor to it, and nothing else
    addRange // the same beside what is selected
  };

  // `selection` outlives the object.
  explicit WallSelection(PhotoSelection &selection) : selection_(selection) {}

  // The wall shows `files` now, in this order. What is not among them is no longer selected. The focused
  // photo keeps focus, or its neighbour gets it, and is selected if the lost photo alone was.
  void setFiles(Files files);
  // The same photos under new names.
  void rename(const std::vector<fennick::Renaming> &renamings);

  [[nodiscard]] int count() const { return static_cast<int>(files_.size()); }
  [[nodiscard]] int current() const { return current_; } // that has focus; -1: none
  [[nodiscard]] bool isSelected(int place) const;

  // The photo gets the keyboard as well. A place that does not exist is passed over.
  void pick(int place, Reach reach);
  // Gives it the keyboard alone.
  void moveTo(int place);
  void selectAll();
  void selectNone();

  // A rubber band is drawn: what it covers is selected beside what was selected when it began, if that is
  // kept, and turned over if it is toggled.
  enum class Band { replace, add, toggle };
  void beginBand(Band kind);
  void coverWithBand(const std::vector<int> &places);

private:
  using Paths = PhotoSelection::Paths;

  [[nodiscard]] bool isThere(int place) const { return place >= 0 && place < count(); }
  [[nodiscard]] const std::filesystem::path &file(int place) const {
    return files_[static_cast<std::size_t>(place)];
  }
  void addRange(Paths &files, int from, int to) const;
  [[nodiscard]] int placeAfterLoss(const std::function<int(const std::filesystem::path &)> &placeOf) const;

  PhotoSelection &selection_;
  Files files_;
  int current_ = -1;
  int anchor_ = -1;
  Band band_ = Band::replace;
  Paths beforeBand_;
};

} // namespace quarrow
