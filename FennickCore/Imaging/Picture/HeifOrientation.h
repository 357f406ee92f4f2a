#pragma once

#include <array>
#include <cstdint>
#include <optional>

// The eight ways in which a picture can lie, as EXIF numbers them, built from quarter turns and mirrorings.
// Pure functions; any thread.
namespace fennick::picture {

// One step from the stored pixels to those shown.
struct TurnStep {
  enum class Kind : std::uint8_t { rotate, mirror };
  Kind kind = Kind::rotate;
  // rotate: quarter turns anticlockwise, 0 to 3. mirror: 0 swaps top and bottom, 1 left and right.
  unsigned value = 0;

  bool operator==(const TurnStep &) const = default;
};

// Where a pixel goes: column and row of a 2×2 matrix, y downwards.
class Turning {
public:
  [[nodiscard]] static Turning ofOrientation(std::int64_t orientation); // 1 to 8; others lie upright
  [[nodiscard]] Turning then(const TurnStep &step) const;
  [[nodiscard]] Turning then(const Turning &next) const;
  [[nodiscard]] Turning reversed() const;
  [[nodiscard]] std::int64_t orientation() const;

  bool operator==(const Turning &) const = default;

private:
  std::array<int, 4> m_{1, 0, 0, 1}; // x' = m0 x + m1 y, y' = m2 x + m3 y
};

// The quarter turns and the mirroring, in this order, that make an orientation.
struct TurnRecipe {
  unsigned quarters = 0;
  bool isMirrored = false; // left and right, after the turn
};
[[nodiscard]] TurnRecipe recipeFor(std::int64_t orientation);

} // namespace fennick::picture
