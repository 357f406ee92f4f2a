#pragma once

#include "FennickCore/Platform/Files/Preferences.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Storage/PhotoLibrary.h"
#include "FennickCore/Storage/Thumbnails.h"
#include "Quarrow/App/Commands.h"
#include "Quarrow/App/PhotoSelection.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/Wall/PhotoListModel.h"
#include "Quarrow/Wall/TypeAhead.h"
#include "Quarrow/Wall/WallSelection.h"
#include "Quarrow/Wall/WallThumbnails.h"

#include <QList>
#include <QObject>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QUrl>
#include <QVariantMap>

#include <filesystem>
#include <memory>
#include <vector>

namespace quarrow {

// The photo wall as its window shows it: its photos, their order, and the selection. Places are indices into
// `model`; lengths are in the units of the views. Main thread.
class PhotoWall : public QObject {
  Q_OBJECT
  Q_PROPERTY(QAbstractItemModel *model READ model CONSTANT)
  Q_PROPERTY(Filter filter READ filter WRITE setFilter NOTIFY filterChanged)
  Q_PROPERTY(State state READ state NOTIFY stateChanged)
  Q_PROPERTY(int count READ count NOTIFY countsChanged)             // shown photos
  Q_PROPERTY(int total READ total NOTIFY countsChanged)             // photos in the folder, up to the limit
  Q_PROPERTY(QString countText READ countText NOTIFY countsChanged) // "128 张照片 · 3 段视频"
  Q_PROPERTY(QString limitText READ limitText NOTIFY countsChanged) // empty: everything is shown
  Q_PROPERTY(int selectedCount READ selectedCount NOTIFY selectionChanged)
  Q_PROPERTY(QString selectionText READ selectionText NOTIFY selectionChanged) // "已选 3 项 · 12.4 MB"
  Q_PROPERTY(int currentIndex READ currentIndex NOTIFY currentChanged)         // that has focus, or -1
  Q_PROPERTY(QUrl currentFile READ currentFile NOTIFY currentChanged)
  Q_PROPERTY(QString currentName READ currentName NOTIFY currentChanged)
  // The preferred side of a tile; kept across runs.
  Q_PROPERTY(int tileSize READ tileSize WRITE setTileSize NOTIFY tileSizeChanged)
  Q_PROPERTY(int smallestTile READ smallestTile CONSTANT)
  Q_PROPERTY(int largestTile READ largestTile CONSTANT)

public:
  enum Filter { All, Photos, Videos };
  Q_ENUM(Filter)
  // Loading: the folder is scanned for the first time. Missing: it does not exist. NoMatch: there are photos,
  // but the filter hides all of them.
  enum State { Loading, Empty, Missing, NoMatch, Filled };
  Q_ENUM(State)

  static constexpr int kSmallestTile = 96;
  static constexpr int kLargestTile = 320;
  static constexpr int kUsualTile = 168;
  // Marks a drag as one of the wall's own.
  static constexpr const char *kOwnDrag = "application/x-tevrin-photos";

  // What the wall shows and uses. All outlive the object.
  struct Parts {
    fennick::PhotoLibrary &library;
    PhotoSelection &selection;
    ServerModel &server; // its error may concern the folder
    PhotoCommands &commands;
    fennick::Thumbnails &thumbnails;
    fennick::Preferences &preferences; // store the size of the tiles
    fennick::MainQueue &mainQueue;
    const fennick::Clock &clock;
  };
  explicit PhotoWall(const Parts &parts);
  ~PhotoWall() override;
  PhotoWall(const PhotoWall &) = delete;
  PhotoWall &operator=(const PhotoWall &) = delete;

  [[nodiscard]] PhotoListModel *model() { return &model_; }
  [[nodiscard]] WallThumbnails &thumbnails() { return thumbnails_; }
  [[nodiscard]] Filter filter() const { return filter_; }
  void setFilter(Filter filter);
  [[nodiscard]] State state() const { return state_; }
  [[nodiscard]] int count() const { return model_.rowCount(); }
  [[nodiscard]] int total() const { return static_cast<int>(known_.size()); }
  [[nodiscard]] QString countText() const;
  [[nodiscard]] QString limitText() const;
  [[nodiscard]] int selectedCount() const;
  [[nodiscard]] QString selectionText() const;
  [[nodiscard]] int currentIndex() const { return selection_.current(); }
  [[nodiscard]] QUrl currentFile() const;
  [[nodiscard]] QString currentName() const { return nameOf(currentIndex()); }
  [[nodiscard]] int tileSize() const { return tileSize_; }
  void setTileSize(int size);
  [[nodiscard]] static int smallestTile() { return kSmallestTile; }
  [[nodiscard]] static int largestTile() { return kLargestTile; }

  // Handles a click on a photo; `modifiers` are Qt::KeyboardModifiers.
  Q_INVOKABLE void click(int place, int modifiers);
  // Prepares a menu or a drag: selects the photo, alone unless it is selected already.
  Q_INVOKABLE void grab(int place);
  [[nodiscard]] Q_INVOKABLE bool isSelected(int place) const { return selection_.isSelected(place); }
  // Selects only the photo that is `delta` places further; stops at the ends.
  Q_INVOKABLE void moveCurrent(int delta);
  Q_INVOKABLE void selectAll();
  Q_INVOKABLE void selectNone();
  // Handles a key in a wall with so many columns and visible rows; `text` is what it types. Returns false for
  // keys that do not concern the selection.
  Q_INVOKABLE bool press(int key, int modifiers, const QString &text, int columns, int rows);

  // Selects with a rubber band over tiles of the size `cell`, of which `gap` is empty, in rows of `columns`
  // from the origin.
  Q_INVOKABLE void beginBand(int modifiers);
  Q_INVOKABLE void stretchBand(const QRectF &band, const QSizeF &cell, int columns, double gap);

  // Returns the data of the selected photos for a drag to other programs and to this wall.
  [[nodiscard]] Q_INVOKABLE QVariantMap dragData() const;
  // Returns the thumbnails of the first selected photos, at most `most`, for the picture of a drag.
  [[nodiscard]] Q_INVOKABLE QStringList dragThumbnails(int most) const;
  // Scans the folder again.
  Q_INVOKABLE void lookAgain();
  // Imports files from elsewhere; failures become the server's error.
  Q_INVOKABLE void importFiles(const QList<QUrl> &files);
  // Imports files or a picture from the clipboard. Returns false if it holds neither.
  Q_INVOKABLE bool paste();

  // Moves the selected photos before the one at `place` (or to the end), in their order.
  Q_INVOKABLE void moveSelectionTo(int place);

signals:
  void filterChanged();
  void stateChanged();
  void countsChanged();
  void selectionChanged();
  void currentChanged();
  void tileSizeChanged();

private:
  using Items = PhotoListModel::Items;

  void follow(const Items &items);
  void show();
  void updateState();
  [[nodiscard]] State stateNow() const;
  [[nodiscard]] bool passes(const fennick::PhotoItem &item) const;
  [[nodiscard]] QString nameOf(int place) const;
  [[nodiscard]] bool step(int key, int modifiers, int columns, int rows);
  // Runs `change` and announces changes of the focused photo.
  template <typename Change>
  void changing(Change change);
  void storeTileSize();

  fennick::PhotoLibrary &library_;
  PhotoSelection &selected_;
  PhotoCommands &commands_;
  fennick::Preferences &preferences_;
  fennick::MainQueue &mainQueue_;
  fennick::Lifetime lifetime_;

  Items known_; // of the library
  PhotoListModel model_;
  WallSelection selection_;
  TypeAhead typeAhead_;
  WallThumbnails thumbnails_;
  Filter filter_ = All;
  State state_ = Empty;
  int tileSize_ = kUsualTile;
  bool storesTileSize_ = false; // a delayed store is scheduled
  std::vector<fennick::Subscription> subscriptions_;
};

} // namespace quarrow
