#include "Quarrow/Desktop/ChimeOutput.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QMediaDevices>
#include <QPointer>

#include <chrono>
#include <cstddef>

namespace quarrow {

namespace {

// How much sound is buffered in the device: it starts at once and does not stutter on a busy computer.
constexpr std::chrono::microseconds kAhead{200'000};

} // namespace

ChimeOutput::ChimeOutput() = default;

ChimeOutput::~ChimeOutput() { stop(); }

void ChimeOutput::play(std::span<const std::int16_t> samples, int rate) {
  stop();
  QAudioFormat format;
  format.setSampleRate(rate);
  format.setChannelCount(1);
  format.setSampleFormat(QAudioFormat::Int16);
  const QAudioDevice device = QMediaDevices::defaultAudioOutput();
  if (device.isNull() || !device.isFormatSupported(format))
    return;
  const auto bytes = std::as_bytes(samples);
  sound_.setData(QByteArray::fromRawData(reinterpret_cast<const char *>(bytes.data()),
                                         static_cast<qsizetype>(bytes.size())));
  sound_.open(QIODevice::ReadOnly);
  sink_ = std::make_unique<QAudioSink>(device, format);
  sink_->setBufferSize(format.bytesForDuration(kAhead.count()));
  // Queued, because a sink must not be destroyed inside its own signal.
  const auto changed = [this, sink = QPointer(sink_.get())] {
    if (sink)
      stopAfterTheEnd();
  };
  connect(sink_.get(), &QAudioSink::stateChanged, this, changed, Qt::QueuedConnection);
  sink_->start(&sound_);
}

// A sink is idle after the end or while it waits for samples; it stops by itself when the device is removed.
void ChimeOutput::stopAfterTheEnd() {
  const bool isIdle = sink_->state() == QAudio::IdleState;
  if (sink_->state() == QAudio::StoppedState || (isIdle && sound_.atEnd()))
    stop();
}

void ChimeOutput::stop() {
  sink_.reset();
  sound_.close();
}

} // namespace quarrow
