#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"

#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <cstdio> // jpeglib.h needs it

#include <jpeglib.h>

// The only caller of libjpeg's decoder. Its errors leave by longjmp: no function here that calls it has local
// objects with a destructor.
namespace fennick::picture {

// Decodes one JPEG. Irregularities without loss of pixels are ignored: stray bytes between segments, unusual
// scan parameters, a missing end marker, padding. One thread at a time.
class JpegReader {
public:
  explicit JpegReader(Bytes file) : file_(file) {} // `file` outlives the object
  ~JpegReader();
  JpegReader(const JpegReader &) = delete;
  JpegReader &operator=(const JpegReader &) = delete;

  // The three steps, in this order. Each returns false on an error that ends the decoding, after which no
  // further step may follow.
  [[nodiscard]] bool readHeader();
  // Decodes to `colours`, reduced to `eighths` (1 to 8) eighths of the size.
  [[nodiscard]] bool start(int eighths, J_COLOR_SPACE colours);
  // Reads at most `count` rows of pixels; see jpeg_read_scanlines.
  [[nodiscard]] bool readRows(JSAMPARRAY rows, JDIMENSION count);

  [[nodiscard]] bool isDone() const { return info_.output_scanline >= info_.output_height; }
  // Returns whether the file contained all data of the picture, without corruption that the decoder can
  // notice. Call it once, after all rows were read; no step may follow.
  [[nodiscard]] bool isWhole();

  [[nodiscard]] const jpeg_decompress_struct &info() const { return info_; }

private:
  [[noreturn]] static void onError(j_common_ptr info);
  static void onMessage(j_common_ptr info, int level);
  static void onProgress(j_common_ptr info);

  void classifyWarning();
  [[nodiscard]] bool isPadding(std::size_t skipped) const;
  [[nodiscard]] bool hasEveryScan() const;
  void readToEnd();

  Bytes file_;
  jpeg_decompress_struct info_{};
  jpeg_error_mgr errors_{};
  jpeg_progress_mgr progress_{};
  std::jmp_buf escape_{};
  bool endIsMissing_ = false;
  bool isDamaged_ = false;
};

} // namespace fennick::picture
