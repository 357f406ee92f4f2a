#include "Quarrow/SettingsForm/ImagingForm.h"

#include "FennickCore/Imaging/PictureTypes.h"
#include "FennickCore/Support/Text.h"
#include "Quarrow/App/InputLimits.h"

#include <QVariantMap>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

namespace quarrow {

namespace {

using fennick::ImagingOptions;
using fennick::OutputFormat;

constexpr int kUsualPixels = 2048;
constexpr int kUsualKilobytes = 1000;
constexpr std::int64_t kKilobyte = 1000;
constexpr int kHigh = 80;
constexpr int kMiddling = 60;

struct Preset {
  const char *value = "";
  const char *text = "";
  const char *detail = "";
  ImagingOptions options{};
};

const std::array kPresets{
    Preset{"asIs",
           QT_TRANSLATE_NOOP("quarrow::ImagingForm", "原样保存"),
           QT_TRANSLATE_NOOP("quarrow::ImagingForm", "原样存下；WebP、TIFF、AVIF 转成 JPEG"),
           {}},
    Preset{"share",
           QT_TRANSLATE_NOOP("quarrow::ImagingForm", "适合分享"),
           QT_TRANSLATE_NOOP("quarrow::ImagingForm", "JPEG，长边 2048，去掉拍摄位置"),
           {.maxPixels = 2048, .format = OutputFormat::jpeg, .stripLocation = true}},
    Preset{"small",
           QT_TRANSLATE_NOOP("quarrow::ImagingForm", "省空间"),
           QT_TRANSLATE_NOOP("quarrow::ImagingForm", "JPEG，长边 2560，每张不超过 1 MB"),
           {.maxPixels = 2560, .maxBytes = 1'000'000, .format = OutputFormat::jpeg, .quality = 0.75}},
    Preset{"private",
           QT_TRANSLATE_NOOP("quarrow::ImagingForm", "保护隐私"),
           QT_TRANSLATE_NOOP("quarrow::ImagingForm", "尺寸不变，去掉位置、设备和拍摄时间"),
           {.quality = 0.95, .stripLocation = true, .stripAllMetadata = true}},
};

// Keeping the originals is independent of the preset.
bool hasFieldsOf(const Preset &preset, ImagingOptions options) {
  options.keepOriginal = preset.options.keepOriginal;
  return options == preset.options;
}

QString text(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

int percent(double share) { return static_cast<int>(std::lround(share * 100)); }

QString wordFor(int quality) {
  if (quality >= kHigh)
    return ImagingForm::tr("高");
  return quality >= kMiddling ? ImagingForm::tr("中") : ImagingForm::tr("低");
}

QString wordsFor(int quality) { return ImagingForm::tr("%1 · %2").arg(wordFor(quality)).arg(quality); }

QString wordsFor(const PhotoExample::Size &size, bool estimated) {
  const QString bytes = text(fennick::fileSizeText(size.bytes));
  return ImagingForm::tr("%1 × %2，%3")
      .arg(size.width)
      .arg(size.height)
      .arg(estimated ? ImagingForm::tr("约 %1").arg(bytes) : bytes);
}

// Rounds an estimate to two digits.
PhotoExample::Size rounded(PhotoExample::Size size) {
  const double step =
      std::pow(10, std::floor(std::log10(std::max<double>(1, static_cast<double>(size.bytes)))) - 1);
  size.bytes = std::llround(std::round(static_cast<double>(size.bytes) / step) * step);
  return size;
}

} // namespace

std::optional<std::filesystem::path> latestPhoto(const fennick::PhotoLibrary &library) {
  const fennick::PhotoItem *latest = nullptr;
  for (const auto &item : library.items())
    if (item.isImage && !item.isOversized && item.pixelWidth &&
        (latest == nullptr || item.date > latest->date))
      latest = &item;
  return latest != nullptr ? std::optional(latest->url) : std::nullopt;
}

ImagingForm::ImagingForm(fennick::SettingsStore &settings, fennick::PhotoLibrary &library,
                         fennick::PictureDecoder &decoder, fennick::MainQueue &mainQueue)
    : store_(settings), library_(library), decoder_(decoder), known_(now()), lastPixels_(kUsualPixels),
      lastKilobytes_(kUsualKilobytes), typical_(PhotoExample::ofTypicalPhoto(known_, true)),
      heic_(mainQueue, "fennick.heic",
            [this](bool writes) {
              writesHEIC_ = writes;
              typical_ = PhotoExample::ofTypicalPhoto(known_, writes);
              emit changed();
              emit exampleChanged();
            }),
      trial_(mainQueue, "fennick.trial",
             [this](const auto &example) {
               tried_ = example;
               busy_ = false;
               emit exampleChanged();
             }),
      settings_(settings.observeSettings([this](const auto &all) { follow(all.imaging); })),
      items_(library.observeItems([this](const auto &) {
        if (latestPhoto(library_).value_or("") != triedFile_)
          tryLatest();
      })) {
  rememberLimits();
}

void ImagingForm::setWatched(bool watched) {
  watched_ = watched;
  if (!watched) {
    trial_.cancel();
    return;
  }
  if (!writesHEIC_)
    heic_.request([decoder = &decoder_] { return decoder->canEncodeHEIC(); });
  tryLatest();
}

void ImagingForm::follow(const ImagingOptions &options) {
  if (std::exchange(known_, options) == options)
    return;
  rememberLimits();
  typical_ = PhotoExample::ofTypicalPhoto(options, writesHEIC_.value_or(true));
  emit changed();
  tryLatest();
  emit exampleChanged();
}

void ImagingForm::rememberLimits() {
  lastPixels_ = maxPixels();
  lastKilobytes_ = maxKilobytes();
}

void ImagingForm::tryLatest() {
  if (!watched_)
    return;
  const auto file = latestPhoto(library_);
  triedFile_ = file.value_or("");
  busy_ = file.has_value();
  if (file)
    trial_.request([file = *file, options = known_, decoder = &decoder_] {
      return PhotoExample::ofPhoto(file, options, *decoder);
    });
  else
    tried_.reset();
  emit exampleChanged();
}

void ImagingForm::store(const std::function<void(ImagingOptions &)> &change) {
  store_.update([&](auto &settings) { change(settings.imaging); });
}

QString ImagingForm::preset() const {
  const auto *found =
      std::ranges::find_if(kPresets, [&](const auto &each) { return hasFieldsOf(each, now()); });
  return found != kPresets.end() ? found->value : "own";
}

void ImagingForm::setPreset(const QString &preset) {
  const auto *chosen = std::ranges::find_if(kPresets, [&](const auto &each) { return preset == each.value; });
  if (chosen == kPresets.end())
    return;
  store([&](auto &options) {
    const bool keeps = options.keepOriginal;
    options = chosen->options;
    options.keepOriginal = keeps;
  });
}

QVariantList ImagingForm::presets() {
  QVariantList choices;
  for (const auto &each : kPresets)
    choices.append(QVariantMap{{"value", each.value}, {"text", tr(each.text)}, {"detail", tr(each.detail)}});
  return choices;
}

void ImagingForm::setLimitsPixels(bool limits) {
  store([&](auto &options) {
    options.maxPixels = limits ? std::optional<std::int64_t>(maxPixels()) : std::nullopt;
  });
}

int ImagingForm::maxPixels() const {
  const auto limit = now().maxPixels.value_or(0);
  return limit > 0 ? static_cast<int>(std::min<std::int64_t>(limit, InputLimits::MostPixels)) : lastPixels_;
}

void ImagingForm::setMaxPixels(int pixels) {
  store([&](auto &options) {
    options.maxPixels = std::clamp<int>(pixels, InputLimits::FewestPixels, InputLimits::MostPixels);
  });
}

QString ImagingForm::pixelsMeaning() const {
  const auto edge = now().maxPixels.value_or(0);
  if (edge < 1)
    return tr("照片保持原来的尺寸");
  constexpr std::int64_t kLong = 4032;
  constexpr std::int64_t kShort = 3024;
  if (edge >= kLong)
    return tr("一张 12 MP 的照片不会变小，更大的会缩到长边 %1").arg(edge);
  return tr("一张 12 MP 的照片会缩到 %1 × %2")
      .arg(edge)
      .arg(std::max<std::int64_t>(1, (edge * kShort + kLong / 2) / kLong));
}

void ImagingForm::setLimitsBytes(bool limits) {
  store([&](auto &options) {
    options.maxBytes = limits ? std::optional(maxKilobytes() * kKilobyte) : std::nullopt;
  });
}

int ImagingForm::maxKilobytes() const {
  const auto limit = std::min(now().maxBytes.value_or(0), InputLimits::MostKilobytes * kKilobyte);
  return limit > 0 ? static_cast<int>(std::max<std::int64_t>(1, (limit + kKilobyte / 2) / kKilobyte))
                   : lastKilobytes_;
}

void ImagingForm::setMaxKilobytes(int kilobytes) {
  store([&](auto &options) {
    options.maxBytes =
        std::clamp<int>(kilobytes, InputLimits::FewestKilobytes, InputLimits::MostKilobytes) * kKilobyte;
  });
}

QString ImagingForm::format() const { return text(rawValue(now().format)); }

void ImagingForm::setFormat(const QString &format) {
  if (const auto wanted = fennick::outputFormat(format.toStdString()))
    store([&](auto &options) { options.format = *wanted; });
}

QVariantList ImagingForm::formats() {
  const auto choice = [](OutputFormat format, const QString &words) {
    return QVariantMap{{"value", text(rawValue(format))}, {"text", words}};
  };
  return {choice(OutputFormat::keep, tr("保持原来的格式")), choice(OutputFormat::jpeg, tr("JPEG")),
          choice(OutputFormat::heic, tr("HEIC")), choice(OutputFormat::png, tr("PNG"))};
}

QString ImagingForm::formatMeaning() const {
  const bool lacksHEIC = writesHEIC_ == false;
  const QString original = now().keepOriginal ? tr("原图留在 originals") : tr("原图移到废纸篓");
  switch (now().format) {
  case OutputFormat::keep:
    return (lacksHEIC ? tr("这台电脑写不了 HEIC：要改动的 HEIC，还有 WebP、TIFF、AVIF，会存成 JPEG，")
                      : tr("JPEG 还是 JPEG，HEIC 还是 HEIC；WebP、TIFF、AVIF 会存成 JPEG，")) +
           original;
  case OutputFormat::jpeg:
    return tr("哪里都打得开");
  case OutputFormat::heic:
    return lacksHEIC ? tr("这台电脑写不了 HEIC，会存成 JPEG；原来不是 JPEG 的，") + original
                     : tr("同样清楚，文件约小一半，但有些旧程序打不开");
  case OutputFormat::png:
    return tr("不损失画质，照片会大好几倍，适合截图");
  }
  return {};
}

int ImagingForm::quality() const { return percent(now().qualityInUse()); }

void ImagingForm::setQuality(int percent) {
  store([&](auto &options) {
    options.quality =
        std::clamp<int>(percent, InputLimits::LowestQuality, InputLimits::HighestQuality) / 100.0;
  });
}

QString ImagingForm::qualityWords() const { return wordsFor(quality()); }

int ImagingForm::qualityFloor() const { return percent(now().floorInUse()); }

void ImagingForm::setQualityFloor(int percent) {
  store([&](auto &options) {
    options.qualityFloor = std::clamp<int>(percent, InputLimits::LowestQualityFloor, quality()) / 100.0;
  });
}

QString ImagingForm::qualityFloorWords() const { return wordsFor(qualityFloor()); }

void ImagingForm::setStripLocation(bool wanted) {
  store([&](auto &options) { options.stripLocation = wanted; });
}

void ImagingForm::setStripAllMetadata(bool wanted) {
  store([&](auto &options) { options.stripAllMetadata = wanted; });
}

void ImagingForm::setKeepOriginal(bool wanted) {
  store([&](auto &options) { options.keepOriginal = wanted; });
}

QString ImagingForm::exampleTitle() const {
  return shown().name.empty() ? tr("以一张 12 MP 的手机照片为例")
                              : tr("以最近收到的 %1 为例").arg(text(shown().name));
}

QString ImagingForm::exampleBefore() const { return wordsFor(shown().before, false); }

QString ImagingForm::exampleAfter() const {
  const auto &example = shown();
  if (!example.after)
    return tr("原样保存");
  return wordsFor(example.estimated ? rounded(*example.after) : *example.after, example.estimated);
}

QString ImagingForm::exampleRemark() const {
  const auto &example = shown();
  if (!example.after)
    return {};
  QStringList remarks{text(fennick::upperCased(example.extension))};
  if (now().stripAllMetadata)
    remarks.append(tr("不带拍摄信息"));
  else if (now().stripLocation)
    remarks.append(tr("不带位置"));
  if (now().keepOriginal)
    remarks.append(tr("原图留在 originals"));
  if (!example.fits)
    remarks.append(tr("已经压到最小，还是超出上限"));
  return remarks.join(tr("，"));
}

} // namespace quarrow
