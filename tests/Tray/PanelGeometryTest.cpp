#include "Quarrow/Desktop/PanelGeometry.h"

#include <gtest/gtest.h>

#include <optional>

namespace quarrow {
namespace {

TEST(PanelGeometryTest, PlacesThePanelAtTheIconOrTheBar) {
  const QRect screen(0, 0, 1000, 800);
  const QRect topBar(0, 30, 1000, 770);
  const QRect bottomBar(0, 0, 1000, 770);
  const QRect leftBar(60, 0, 940, 800);
  const QRect rightBar(0, 0, 940, 800);
  const QRect second(1000, 0, 1000, 800);
  struct Case {
    const char *what;
    QRect whole;
    QRect available;
    std::optional<QRect> icon;
    QPoint place;
  };
  const Case cases[] = {
      {"centred below", screen, topBar, QRect(500, 4, 22, 22), {360, 34}},
      {"centred above", screen, bottomBar, QRect(500, 774, 22, 22), {360, 366}},
      {"icon at the edge", screen, topBar, QRect(974, 4, 22, 22), {696, 34}},
      {"icon in a bar at the side", screen, leftBar, QRect(20, 700, 22, 22), {64, 296}},
      {"icon on the second screen", second, second, QRect(1900, 0, 22, 22), {1696, 26}},
      {"bar above", screen, topBar, std::nullopt, {696, 34}},
      {"bar below", screen, bottomBar, std::nullopt, {696, 366}},
      {"bar on the left", screen, leftBar, std::nullopt, {64, 395}},
      {"bar on the right", screen, rightBar, std::nullopt, {636, 395}},
      {"no bar", screen, screen, std::nullopt, {696, 5}},
      {"no room", QRect(0, 0, 200, 200), QRect(0, 0, 200, 200), std::nullopt, {4, 4}},
  };
  for (const auto &each : cases)
    EXPECT_EQ(panelPlace(QSize(300, 400), {each.whole, each.available}, each.icon), each.place) << each.what;
}

} // namespace
} // namespace quarrow
