#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Threads/LatestTask.h"
#include "FennickCore/Settings/SettingsStore.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "Quarrow/SettingsForm/PhotoExample.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <functional>
#include <optional>
#include <string>

namespace quarrow {

// The processing of received pictures: every field of the options, presets with simple names, and an example:
// the latest photo in the save folder, or else a typical one. Main thread; photos are encoded on another
// thread, and only while the form is watched.
class ImagingForm : public QObject {
  Q_OBJECT
  // "asIs", "share", "small", "private", or "own" if the fields match no preset.
  Q_PROPERTY(QString preset READ preset WRITE setPreset NOTIFY changed)
  // Each with `value`, `text` and `detail`; without "own".
  Q_PROPERTY(QVariantList presets READ presets CONSTANT)

  Q_PROPERTY(bool limitsPixels READ limitsPixels WRITE setLimitsPixels NOTIFY changed)
  Q_PROPERTY(int maxPixels READ maxPixels WRITE setMaxPixels NOTIFY changed)
  Q_PROPERTY(QString pixelsMeaning READ pixelsMeaning NOTIFY changed)
  Q_PROPERTY(bool limitsBytes READ limitsBytes WRITE setLimitsBytes NOTIFY changed)
  // In KB (thousands of bytes).
  Q_PROPERTY(int maxKilobytes READ maxKilobytes WRITE setMaxKilobytes NOTIFY changed)
  // "keep", "jpeg", "heic" or "png"; the choices, each with `text` and `value`.
  Q_PROPERTY(QString format READ format WRITE setFormat NOTIFY changed)
  Q_PROPERTY(QVariantList formats READ formats CONSTANT)
  Q_PROPERTY(QString formatMeaning READ formatMeaning NOTIFY changed)
  // In percent, limited to what is used: 30 to 100, and 10 up to the quality.
  Q_PROPERTY(int quality READ quality WRITE setQuality NOTIFY changed)
  Q_PROPERTY(QString qualityWords READ qualityWords NOTIFY changed)
  Q_PROPERTY(int qualityFloor READ qualityFloor WRITE setQualityFloor NOTIFY changed)
  Q_PROPERTY(QString qualityFloorWords READ qualityFloorWords NOTIFY changed)
  Q_PROPERTY(bool stripLocation READ stripLocation WRITE setStripLocation NOTIFY changed)
  Q_PROPERTY(bool stripAllMetadata READ stripAllMetadata WRITE setStripAllMetadata NOTIFY changed)
  Q_PROPERTY(bool keepOriginal READ keepOriginal WRITE setKeepOriginal NOTIFY changed)

  // The title of the example; the photo and its result; further effects.
  Q_PROPERTY(QString exampleTitle READ exampleTitle NOTIFY exampleChanged)
  Q_PROPERTY(QString exampleBefore READ exampleBefore NOTIFY exampleChanged)
  Q_PROPERTY(QString exampleAfter READ exampleAfter NOTIFY exampleChanged)
  Q_PROPERTY(QString exampleRemark READ exampleRemark NOTIFY exampleChanged)
  // Whether the photo is being encoded; an estimate is shown meanwhile.
  Q_PROPERTY(bool exampleBusy READ exampleBusy NOTIFY exampleChanged)

public:
  // All outlive the object.
  ImagingForm(fennick::SettingsStore &settings, fennick::PhotoLibrary &library,
              fennick::PictureDecoder &decoder, fennick::MainQueue &mainQueue);

  void setWatched(bool watched);
  // The extension of the next JPEG after processing; empty if it keeps its own.
  [[nodiscard]] const std::string &nextExtension() const { return typical_.extension; }

  [[nodiscard]] QString preset() const;
  // Does nothing for "own".
  void setPreset(const QString &preset);
  [[nodiscard]] static QVariantList presets();
  [[nodiscard]] bool limitsPixels() const { return now().maxPixels.value_or(0) > 0; }
  void setLimitsPixels(bool limits);
  [[nodiscard]] int maxPixels() const;
  void setMaxPixels(int pixels);
  [[nodiscard]] QString pixelsMeaning() const;
  [[nodiscard]] bool limitsBytes() const { return now().maxBytes.value_or(0) > 0; }
  void setLimitsBytes(bool limits);
  [[nodiscard]] int maxKilobytes() const;
  void setMaxKilobytes(int kilobytes);
  [[nodiscard]] QString format() const;
  void setFormat(const QString &format);
  [[nodiscard]] static QVariantList formats();
  [[nodiscard]] QString formatMeaning() const;
  [[nodiscard]] int quality() const;
  void setQuality(int percent);
  [[nodiscard]] QString qualityWords() const;
  [[nodiscard]] int qualityFloor() const;
  void setQualityFloor(int percent);
  [[nodiscard]] QString qualityFloorWords() const;
  [[nodiscard]] bool stripLocation() const { return now().stripLocation; }
  void setStripLocation(bool wanted);
  [[nodiscard]] bool stripAllMetadata() const { return now().stripAllMetadata; }
  void setStripAllMetadata(bool wanted);
  [[nodiscard]] bool keepOriginal() const { return now().keepOriginal; }
  void setKeepOriginal(bool wanted);

  [[nodiscard]] QString exampleTitle() const;
  [[nodiscard]] QString exampleBefore() const;
  [[nodiscard]] QString exampleAfter() const;
  [[nodiscard]] QString exampleRemark() const;
  [[nodiscard]] bool exampleBusy() const { return busy_; }

signals:
  void changed();
  void exampleChanged();

private:
  [[nodiscard]] const fennick::ImagingOptions &now() const { return store_.settings().imaging; }
  void store(const std::function<void(fennick::ImagingOptions &)> &change);
  void follow(const fennick::ImagingOptions &options);
  void rememberLimits();
  void tryLatest();
  // The example that is shown: the encoded photo, or the typical one.
  [[nodiscard]] const PhotoExample::Example &shown() const { return tried_ ? *tried_ : typical_; }

  fennick::SettingsStore &store_;
  fennick::PhotoLibrary &library_;
  fennick::PictureDecoder &decoder_;
  fennick::ImagingOptions known_; // as announced last
  int lastPixels_;                // the limits that are, or were last
  int lastKilobytes_;
  std::optional<bool> writesHEIC_; // nullopt until it is known
  PhotoExample::Example typical_;
  std::optional<PhotoExample::Example> tried_; // the latest photo, if there is one that can be encoded
  std::filesystem::path triedFile_;
  bool busy_ = false;
  bool watched_ = false;
  fennick::LatestTask<bool> heic_;
  fennick::LatestTask<std::optional<PhotoExample::Example>> trial_;
  fennick::Subscription settings_;
  fennick::Subscription items_;
};

// Returns the newest photo of the library that can be decoded, or nullopt if there is none.
[[nodiscard]] std::optional<std::filesystem::path> latestPhoto(const fennick::PhotoLibrary &library);

} // namespace quarrow
