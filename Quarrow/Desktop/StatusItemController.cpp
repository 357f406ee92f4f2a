#include "Quarrow/Desktop/StatusItemController.h"

#include <utility>

namespace quarrow {

namespace {

// The longest time from the press on the icon, which takes focus from the panel, to the click.
constexpr fennick::Seconds kClickLength{0.4};

} // namespace

void StatusItemController::togglePopover() {
  if (panel_.isOpen())
    return panel_.close();
  const auto leftAt = std::exchange(leftAt_, std::nullopt);
  if (!leftAt || clock_.uptime() - *leftAt > kClickLength)
    panel_.open();
}

void StatusItemController::panelLeft() {
  leftAt_ = clock_.uptime();
  panel_.close();
}

void StatusItemController::flash() {
  item_.setFace(TrayFace::received);
  flash_.cancel();
  mainQueue_.postAfter(kFlashLength, flash_.guard([this] { item_.setFace(TrayFace::normal); }));
}

} // namespace quarrow
