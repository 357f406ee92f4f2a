#include "FennickCore/Imaging/Picture/HeifOrientation.h"

namespace fennick::picture {

namespace {

using Matrix = std::array<int, 4>;

// EXIF orientations: as stored, mirrored, rotated by 180°, flipped, transposed, rotated right, transversed,
// rotated left.
constexpr std::array<Matrix, 8> kOrientations{{{1, 0, 0, 1},
                                               {-1, 0, 0, 1},
                                               {-1, 0, 0, -1},
                                               {1, 0, 0, -1},
                                               {0, 1, 1, 0},
                                               {0, -1, 1, 0},
                                               {0, -1, -1, 0},
                                               {0, 1, -1, 0}}};
constexpr Matrix kQuarterLeft{0, 1, -1, 0};
constexpr Matrix kSwapSides{-1, 0, 0, 1};
constexpr Matrix kSwapEnds{1, 0, 0, -1};

Matrix product(const Matrix &a, const Matrix &b) {
  return {a[0] * b[0] + a[1] * b[2], a[0] * b[1] + a[1] * b[3], a[2] * b[0] + a[3] * b[2],
          a[2] * b[1] + a[3] * b[3]};
}

} // namespace

Turning Turning::ofOrientation(std::int64_t orientation) {
  Turning turning;
  if (orientation >= 1 && orientation <= 8)
    turning.m_ = kOrientations[static_cast<std::size_t>(orientation - 1)];
  return turning;
}

Turning Turning::then(const TurnStep &step) const {
  Turning turned = *this;
  if (step.kind == TurnStep::Kind::mirror)
    turned.m_ = product(step.value == 0 ? kSwapEnds : kSwapSides, m_);
  else
    for (unsigned quarter = 0; quarter < step.value % 4; ++quarter)
      turned.m_ = product(kQuarterLeft, turned.m_);
  return turned;
}

Turning Turning::then(const Turning &next) const {
  Turning turned;
  turned.m_ = product(next.m_, m_);
  return turned;
}

Turning Turning::reversed() const {
  Turning turned; // the transposed matrix; lengths stay
  turned.m_ = {m_[0], m_[2], m_[1], m_[3]};
  return turned;
}

std::int64_t Turning::orientation() const {
  for (std::int64_t number = 1; number <= 8; ++number)
    if (ofOrientation(number) == *this)
      return number;
  return 1; // unreachable: rotations and mirrorings make no other matrix
}

TurnRecipe recipeFor(std::int64_t orientation) {
  const Turning wanted = Turning::ofOrientation(orientation);
  for (unsigned quarters = 0; quarters < 4; ++quarters)
    for (const bool isMirrored : {false, true}) {
      const Turning turned = Turning().then({TurnStep::Kind::rotate, quarters});
      if ((isMirrored ? turned.then({TurnStep::Kind::mirror, 1}) : turned) == wanted)
        return {quarters, isMirrored};
    }
  return {}; // unreachable
}

} // namespace fennick::picture
