#pragma once

#include <QCoreApplication>
#include <QEventLoop>

#include <functional>

namespace quarrow::test {

// Runs the event loop until `condition` holds. A test whose condition never holds is ended by its time limit.
inline void runUntil(const std::function<bool()> &condition) {
  while (!condition())
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

} // namespace quarrow::test
