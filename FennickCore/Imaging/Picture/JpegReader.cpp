#include "FennickCore/Imaging/Picture/JpegReader.h"

#include <jerror.h>

#include <algorithm>
#include <functional>
#include <span>

namespace fennick::picture {

namespace {

// A picture with hundreds of refinement scans would occupy a decoder for minutes.
constexpr int kMostScans = 500;

// Encoders that pad a scan leave a few bytes. More are left by a decoder that lost its position.
constexpr std::size_t kFewBytes = 16;

JpegReader &readerOf(j_common_ptr info) { return *static_cast<JpegReader *>(info->client_data); }

std::span<const jpeg_component_info> componentsOf(const jpeg_decompress_struct &info) {
  return {info.comp_info, static_cast<std::size_t>(info.num_components)};
}

} // namespace

JpegReader::~JpegReader() { ::jpeg_destroy_decompress(&info_); }

bool JpegReader::readHeader() {
  info_.err = ::jpeg_std_error(&errors_);
  errors_.error_exit = &onError;
  errors_.emit_message = &onMessage;
  info_.client_data = this;
  if (setjmp(escape_) != 0)
    return false;
  jpeg_create_decompress(&info_);
  progress_.progress_monitor = &onProgress;
  info_.progress = &progress_;
  ::jpeg_mem_src(&info_, reinterpret_cast<const unsigned char *>(file_.data()), file_.size());
  return ::jpeg_read_header(&info_, TRUE) == JPEG_HEADER_OK;
}

bool JpegReader::start(int eighths, J_COLOR_SPACE colours) {
  info_.scale_num = static_cast<unsigned>(eighths);
  info_.scale_denom = 8;
  info_.out_color_space = colours;
  if (setjmp(escape_) != 0)
    return false;
  return ::jpeg_start_decompress(&info_) != FALSE;
}

bool JpegReader::readRows(JSAMPARRAY rows, JDIMENSION count) {
  if (setjmp(escape_) != 0)
    return false;
  return ::jpeg_read_scanlines(&info_, rows, count) > 0;
}

bool JpegReader::isWhole() {
  if (isDamaged_ || !hasEveryScan())
    return false;
  readToEnd();
  return !isDamaged_;
}

// Whatever follows the last scan, including errors, costs no pixels.
void JpegReader::readToEnd() {
  if (setjmp(escape_) == 0)
    ::jpeg_finish_decompress(&info_);
}

// A file with an end marker may lack the last refinements. Without one, they count as truncated.
bool JpegReader::hasEveryScan() const {
  const bool isComplete = std::ranges::all_of(
      componentsOf(info_), [](const auto &component) { return component.quant_table != nullptr; });
  if (!isComplete || info_.coef_bits == nullptr)
    return isComplete;
  const std::span bits(info_.coef_bits, static_cast<std::size_t>(info_.num_components));
  return std::ranges::all_of(bits, [this](const auto &known) {
    // How many low bits of each coefficient are still unknown; -1: all.
    return endIsMissing_ ? std::ranges::all_of(known, [](int unknown) { return unknown == 0; })
                         : known[0] >= 0;
  });
}

void JpegReader::onError(j_common_ptr info) { std::longjmp(readerOf(info).escape_, 1); }

void JpegReader::onMessage(j_common_ptr info, int level) {
  if (level < 0)
    readerOf(info).classifyWarning();
}

void JpegReader::onProgress(j_common_ptr info) {
  if (readerOf(info).info_.input_scan_number > kMostScans)
    onError(info);
}

void JpegReader::classifyWarning() {
  const int *const details = errors_.msg_parm.i; // NOLINT(cppcoreguidelines-pro-type-union-access): libjpeg's
  switch (errors_.msg_code) {
  case JWRN_ADOBE_XFORM:
  case JWRN_BOGUS_ICC:
  case JWRN_JFIF_MAJOR:
  case JWRN_NOT_SEQUENTIAL: // some phones write scan parameters that mean nothing in a sequential picture
    return;
  case JWRN_JPEG_EOF:
    endIsMissing_ = true; // the scans tell whether anything else is missing
    return;
  case JWRN_EXTRANEOUS_DATA:
    isDamaged_ =
        isDamaged_ || (info_.input_scan_number > 0 && !isPadding(static_cast<std::size_t>(details[0])));
    return;
  case JWRN_BOGUS_PROGRESSION:
    // A refinement of bits that no scan has delivered. Another order of scans, or a repeated scan, loses
    // nothing.
    isDamaged_ = isDamaged_ || (info_.Ah != 0 && details[1] >= info_.Ss);
    return;
  default:
    isDamaged_ = true;
  }
}

// Returns whether the bytes that the decoder skipped last are too few to be data, or all equal. In a file
// whose rest was never written they are all equal, too, but begin before the decoder had every pixel.
bool JpegReader::isPadding(std::size_t skipped) const {
  if (skipped <= kFewBytes)
    return true;
  const std::size_t left = endIsMissing_ ? 0 : std::min(info_.src->bytes_in_buffer, file_.size());
  const Bytes read = file_.first(file_.size() - left);
  const auto last = read.rbegin();
  const auto other = std::find_if(last, read.rend(), [&](std::byte byte) { return byte != *last; });
  const auto same = static_cast<std::size_t>(other - last);
  return same >= skipped && same - skipped <= kFewBytes;
}

} // namespace fennick::picture
