#pragma once

#include "tools/Stage/Stage.h"

#include <QObject>
#include <QSize>

#include <functional>
#include <vector>

// The screenshots of the program's views, by area.
namespace quarrow::test {

struct Shot {
  const char *view; // a file of the module
  const char *state;
  std::function<void(Stage &)> arrange = [](Stage &) {};
  std::function<void(QObject &)> touch = [](QObject &) {};
  QSize size{}; // instead of the view's own size
};

// States for several views.
void trouble(Stage &stage);
void plenty(Stage &stage);

std::vector<Shot> actionsShots();
std::vector<Shot> lookShots();
std::vector<Shot> serviceShots();
std::vector<Shot> settingsShots();
std::vector<Shot> wallShots();

} // namespace quarrow::test
