#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "Quarrow/Look/LookPictures.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <QUrl>
#include <QVariant>
#include <QVariantList>

#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <optional>

namespace quarrow {

// One photo of the wall in full with its details. The picture is first shown at the size of a screen, then
// sharper if it is enlarged; its neighbours are prepared. Main thread.
class QuickLook : public QObject {
  Q_OBJECT
  // While it is not open nothing is read, and no picture is kept.
  Q_PROPERTY(bool open READ isOpen WRITE setOpen NOTIFY openChanged)
  Q_PROPERTY(QUrl file READ file WRITE setFile NOTIFY fileChanged)
  Q_PROPERTY(Kind kind READ kind NOTIFY kindChanged)
  Q_PROPERTY(
      QVariant picture READ pictureValue NOTIFY pictureChanged) // a QImage, upright; null: there is none
  Q_PROPERTY(QSize pixels READ pixels NOTIFY factsChanged)      // of the photo, upright; empty: not known
  // The displayed length of the picture's longer side, in pixels of the screen.
  Q_PROPERTY(int shownPixels READ shownPixels WRITE setShownPixels NOTIFY shownPixelsChanged)
  Q_PROPERTY(QString name READ name NOTIFY factsChanged)
  Q_PROPERTY(QString line READ line NOTIFY factsChanged) // "4032 × 3024 · 2.4 MB · 2024年5月1日 10:00"
  // Details for users: each with `label` and `text`.
  Q_PROPERTY(QVariantList details READ details NOTIFY factsChanged)
  Q_PROPERTY(bool hasOriginal READ hasOriginal NOTIFY factsChanged) // the photo before processing
  Q_PROPERTY(bool showsOriginal READ showsOriginal WRITE setShowsOriginal NOTIFY fileChanged)

public:
  // Oversized: beyond the limits for decoding.
  enum Kind { Nothing, Loading, Picture, Video, Oversized, Damaged };
  Q_ENUM(Kind)

  // All outlive the object.
  QuickLook(fennick::PhotoLibrary &library, fennick::PictureDecoder &decoder, fennick::Thumbnails &thumbnails,
            fennick::MainQueue &mainQueue);

  [[nodiscard]] bool isOpen() const { return open_; }
  void setOpen(bool open);
  [[nodiscard]] const QUrl &file() const { return file_; }
  void setFile(const QUrl &file);
  [[nodiscard]] Kind kind() const { return kind_; }
  [[nodiscard]] const QImage &picture() const;
  [[nodiscard]] QSize pixels() const { return pixels_; }
  [[nodiscard]] int shownPixels() const { return shownPixels_; }
  void setShownPixels(int pixels);
  [[nodiscard]] QString name() const;
  [[nodiscard]] QString line() const;
  [[nodiscard]] QVariantList details() const;
  [[nodiscard]] bool hasOriginal() const { return original_.has_value(); }
  [[nodiscard]] bool showsOriginal() const { return showsOriginal_; }
  void setShowsOriginal(bool shows);

signals:
  void openChanged();
  void fileChanged();
  void kindChanged();
  void pictureChanged();
  void shownPixelsChanged();
  void factsChanged();

private:
  using Items = fennick::PhotoLibrary::Items;
  struct Ready {
    fennick::PhotoItem item; // as of the time when the picture was made
    QImage picture;
  };

  [[nodiscard]] QVariant pictureValue() const { return QVariant::fromValue(picture()); }
  [[nodiscard]] std::filesystem::path path() const;
  [[nodiscard]] const fennick::PhotoItem *listed(const std::filesystem::path &file) const;
  void load();
  void forget();
  void showItem(const fennick::PhotoItem &item);
  void follow();
  void askForPicture();
  void prepareNeighbours();
  void sharpenSoon();
  void sharpen();
  void take(const QImage &screen);
  void takeFacts(const LookFacts &facts);
  void keep(const fennick::PhotoItem &item, const QImage &picture);
  [[nodiscard]] const QImage *ready(const fennick::PhotoItem &item) const;
  void setKind(Kind kind);
  [[nodiscard]] bool isSharpEnough() const;

  fennick::PhotoLibrary &library_;
  fennick::MainQueue &mainQueue_;
  bool open_ = false;
  QUrl file_;                                     // of the wall
  bool showsOriginal_ = false;                    // in its place
  std::optional<std::filesystem::path> original_; // of the file, if known
  std::optional<fennick::PhotoItem> item_;        // of the file, as it was loaded
  Kind kind_ = Nothing;
  QSize pixels_;
  int shownPixels_ = 0;
  QImage screen_;
  QImage full_;
  bool asksForFull_ = false;
  fennick::Lifetime sharpening_;   // the pending one
  std::optional<LookFacts> facts_; // of the file, or of its original while that is shown
  std::list<Ready> ready_;         // the latest first
  fennick::Subscription items_;
  LookPictures pictures_; // last: it calls in
};

} // namespace quarrow
