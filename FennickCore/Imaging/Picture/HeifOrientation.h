#pragma once

#include <array>
#include <cstdint>
#include <optional>

// The eight EXIF orientations as combinations of quarter turns and mirrorings. Pure functions; any thread.
namespace fennick::picture {

// One step from the stored to the displayed pixels.
struct TurnStep {
  enum class Kind : std::uint8_t { rotate, mirror };
  Kind kind = Kind::rotate;
  // rotate: quarter turns anticlockwise, 0 to 3. mirror: 0 swaps top and bottom, 1 left and right.
  unsigned value = 0;

  bool operator==(const TurnStep &) const = default;
};

// A 2×2 matrix that maps column and row of a pixel, y downwards.
class Turning {
public:
  [[nodiscard]] static Turning ofOrientation(std::int64_t orientation); // 1 to 8; other values are upright
  [[nodiscard]] Turning then(const TurnStep &step) const;
  [[nodiscard]] Turning then(const Turning &next) const;
  [[nodiscard]] Turning reversed() const;
  [[nodiscard]] std::int64_t orientation() const;

  bool operator==(const Turning &) const = default;

private:
  std::array<int, 4> m_{1, 0, 0, 1}; // x' = m0 x + m1 y, y' = m2 x + m3 y
};

// The quarter turns and then the mirroring that make an orientation.
struct TurnRecipe {
  unsigned quarters = 0;
  bool isMirrored = false; // left and right, after the turn
};
[[nodiscard]] TurnRecipe recipeFor(std::int64_t orientation);

} // namespace fennick::picture
