#pragma once

#include "Quarrow/Desktop/Chime.h"

#include <QBuffer>
#include <QByteArray>
#include <QObject>

#include <memory>

class QAudioSink;

namespace quarrow {

// The sound output that the user has chosen. It is opened for each sound and closed afterwards, so that an
// idle program holds no device. Main thread.
class ChimeOutput final : public QObject, public SoundOutput {
public:
  ChimeOutput();
  ~ChimeOutput() override;
  ChimeOutput(const ChimeOutput &) = delete;
  ChimeOutput &operator=(const ChimeOutput &) = delete;

  void play(std::span<const std::int16_t> samples, int rate) override;

private:
  void stopAfterTheEnd();
  void stop();

  QBuffer sound_;
  std::unique_ptr<QAudioSink> sink_; // exists while playing; last: it reads the above
};

} // namespace quarrow
