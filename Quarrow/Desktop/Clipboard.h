#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <QByteArray>
#include <QMimeData>
#include <QPointer>
#include <QtGlobal>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace quarrow {

// Puts received files on the desktop's clipboard: the file for file managers, and the picture itself for
// programs that accept pictures. The sandboxed decoder renders the picture, so other programs paste a clean
// PNG whatever was received. Main thread.
class Clipboard final {
public:
  // The picture's longer side in pixels: sufficient for a screen, and a few tens of megabytes at most.
  static constexpr std::int64_t kMostPixels = 4096;

  // Both outlive the object.
  Clipboard(fennick::PictureDecoder &decoder, fennick::MainQueue &mainQueue);
  ~Clipboard();
  Clipboard(const Clipboard &) = delete;
  Clipboard &operator=(const Clipboard &) = delete;

  // Puts the files on the clipboard at once. The picture of a single file is added after rendering, unless
  // something else was copied meanwhile. Videos and files that cannot be rendered stay files.
  void copy(const std::vector<std::filesystem::path> &files);

private:
  void render(const fennick::Lifetime::Token &wanted, const std::filesystem::path &file);
  void addPicture(const std::filesystem::path &file, const std::string &png);
  void offer(const std::vector<std::filesystem::path> &files, const QByteArray &png);

  fennick::PictureDecoder &decoder_;
  fennick::MainQueue &mainQueue_;
  fennick::Lifetime latest_;                        // of the last file that was copied
  QPointer<QMimeData> offered_;                     // belongs to the clipboard while it is ours
  std::unique_ptr<fennick::SerialQueue> rendering_; // created with the first picture; last: it uses the above
};

} // namespace quarrow
