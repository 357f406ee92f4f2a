#pragma once

#include "FennickCore/Network/LANAddress.h"
#include "Quarrow/Terminal/Report.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace quarrow {

// What the keys of a person in front of the terminal do, and the question before the access key is reset.
// Main thread.
class TerminalKeys {
public:
  struct Actions {
    std::function<void()> showCode;
    std::function<void()> nextAddress;
    std::function<void()> resetKey; // was confirmed
    std::function<void()> openFolder;
    std::function<void()> quit;
  };

  // `report` outlives it.
  TerminalKeys(Actions actions, Report &report);

  // Keys as a terminal sends them. An escape character and what came with it is a function key, of which none
  // means anything; any key but "y" answers the question with no.
  void typed(std::string_view keys);

private:
  void press(char key);
  void answer(char key);
  void obey(char key);

  const Actions actions_;
  Report &report_;
  bool asking_ = false; // whether to reset the key
};

// The interface after that of `present`, in the order of `addresses` and from its start again; nothing when
// there is no other.
[[nodiscard]] std::optional<std::string> nextInterface(std::span<const fennick::LANAddress> addresses,
                                                       const std::optional<fennick::LANAddress> &present);

} // namespace quarrow
