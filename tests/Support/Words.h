#pragma once

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace fennick::test {

// Splits a text at white space, for tables of short texts.
inline std::vector<std::string> words(const std::string &text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

} // namespace fennick::test
