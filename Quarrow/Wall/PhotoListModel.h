#pragma once

#include "FennickCore/Storage/PhotoLibrary.h"

#include <QAbstractListModel>

#include <filesystem>
#include <set>
#include <vector>

namespace quarrow {

// The photos of the wall, one row each. Changes are announced row by row, so that tiles stay in place and
// keep their pictures. Main thread.
class PhotoListModel final : public QAbstractListModel {
  Q_OBJECT

public:
  enum Role {
    urlRole = Qt::UserRole + 1, // QUrl
    nameRole,
    bytesRole,
    dateRole,
    pixelWidthRole, // 0 where it is not known
    pixelHeightRole,
    isVideoRole,
    isOversizedRole,
    isRecentRole,   // arrived a moment ago
    isSelectedRole, // bool
    thumbnailRole,  // an address for Image.source, another one when the file changes; empty: there is none
    sizeTextRole,   // "2.4 MB"
    spokenRole,     // "IMG_1.jpg，照片，4000 × 3000，2.4 MB，已选中"
  };
  using Items = fennick::PhotoLibrary::Items;
  using Paths = fennick::PhotoLibrary::Paths;

  using QAbstractListModel::QAbstractListModel;

  [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

  [[nodiscard]] const Items &items() const { return rows_; }

  // Sets the rows to `items`, which are all different files.
  void setItems(const Items &items);
  // Renames the files of `renamings`: rows stay, and selection and highlight follow.
  void rename(const std::vector<fennick::Renaming> &renamings);
  void setSelected(const Paths &files);
  void setRecent(const Paths &files);

private:
  void removeAllBut(const Items &items);
  void moveInto(const Items &items);
  void insertMissing(const Items &items);
  void replaceChanged(const Items &items);
  void mark(Paths &marked, const Paths &files, const QList<int> &roles);
  [[nodiscard]] int rowOf(const std::filesystem::path &file) const;
  [[nodiscard]] QString spoken(const fennick::PhotoItem &item) const;

  Items rows_;
  Paths selected_;
  Paths recent_;
};

} // namespace quarrow
