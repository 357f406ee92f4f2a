#pragma once

#include "FennickCore/Storage/PhotoItem.h"
#include "Quarrow/App/PhotoSelection.h"

#include <QtGlobal>

#include <filesystem>
#include <functional>
#include <vector>

namespace quarrow {

// Applies the pointer and the keyboard to the selection: which photos of the wall are selected, which one has
// focus, and where a range starts. Photos are identified by their place on the wall. Main thread.
class WallSelection {
public:
  using Files = std::vector<std::filesystem::path>;

  // What a click or a step selects.
  enum class Reach {
    only,    // selects the photo alone
    toggle,  // turns it over and leaves the others
    range,   // selects from the anchor to it, and nothing else
    addRange // adds the range to the selection
  };

  // `selection` outlives the object.
  explicit WallSelection(PhotoSelection &selection) : selection_(selection) {}

  // Sets the files on the wall in their order. Files that are not among them are no longer selected. The
  // focused photo keeps focus, or its neighbour gets it, and is selected if only the lost photo was.
  void setFiles(Files files);
  // Renames files.
  void rename(const std::vector<fennick::Renaming> &renamings);

  [[nodiscard]] int count() const { return static_cast<int>(files_.size()); }
  [[nodiscard]] int current() const { return current_; } // the photo with focus; -1: none
  [[nodiscard]] bool isSelected(int place) const;

  // Selects the photo and gives it focus. A place that does not exist is ignored.
  void pick(int place, Reach reach);
  // Selects only this photo and gives it focus.
  void moveTo(int place);
  void selectAll();
  void selectNone();

  // Starts a rubber band: the photos it covers are selected in addition to the previous selection if that is
  // kept, or toggled.
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
