#include "Quarrow/Actions/RenamePreview.h"

#include "Quarrow/Actions/Failures.h"

#include <cstddef>
#include <utility>

namespace quarrow {

void RenamePreview::set(std::vector<fennick::Renaming> renamings) {
  if (renamings == renamings_)
    return;
  const bool sameLength = renamings.size() == renamings_.size();
  if (!sameLength)
    beginResetModel();
  renamings_ = std::move(renamings);
  if (!sameLength)
    endResetModel();
  else
    emit dataChanged(index(0), index(rowCount() - 1)); // keeps the scroll position while the user types
}

int RenamePreview::rowCount(const QModelIndex &parent) const {
  return parent.isValid() ? 0 : static_cast<int>(renamings_.size());
}

QVariant RenamePreview::data(const QModelIndex &index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid))
    return {};
  const auto &[from, to] = renamings_[static_cast<std::size_t>(index.row())];
  switch (role) {
  case OldName:
    return nameText(from);
  case NewName:
    return nameText(to);
  case Changes:
    return from != to;
  default:
    return {};
  }
}

QHash<int, QByteArray> RenamePreview::roleNames() const {
  return {{OldName, "oldName"}, {NewName, "newName"}, {Changes, "changes"}};
}

} // namespace quarrow
