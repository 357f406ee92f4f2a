#include "Quarrow/App/ErrorBoard.h"

#include <algorithm>
#include <optional>

namespace quarrow {

void ErrorBoard::report(ErrorSource source, const QString &error) {
  remove(source);
  errors_.emplace_back(source, error.toStdString());
  showLatest();
}

void ErrorBoard::resolve(ErrorSource source) {
  remove(source);
  showLatest();
}

void ErrorBoard::dismiss() {
  if (!errors_.empty())
    errors_.pop_back();
  showLatest();
}

bool ErrorBoard::has(ErrorSource source) const {
  return std::ranges::any_of(errors_, [&](const auto &each) { return each.first == source; });
}

void ErrorBoard::remove(ErrorSource source) {
  std::erase_if(errors_, [&](const auto &each) { return each.first == source; });
}

void ErrorBoard::showLatest() {
  server_.setError(errors_.empty() ? std::nullopt : std::optional(errors_.back().second));
}

} // namespace quarrow
