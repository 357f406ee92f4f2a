#pragma once

#include "FennickCore/Storage/PhotoItem.h"

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>

#include <vector>

namespace quarrow {

// The old and the new names of a batch: roles `oldName`, `newName` and `changes`, false for a file that keeps
// its name. Main thread.
class RenamePreview : public QAbstractListModel {
  Q_OBJECT

public:
  enum Role { OldName = Qt::UserRole, NewName, Changes };

  using QAbstractListModel::QAbstractListModel;

  void set(std::vector<fennick::Renaming> renamings);
  [[nodiscard]] const std::vector<fennick::Renaming> &renamings() const { return renamings_; }

  [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
  [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

private:
  std::vector<fennick::Renaming> renamings_;
};

} // namespace quarrow
