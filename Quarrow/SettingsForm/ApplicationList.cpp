#include "Quarrow/SettingsForm/ApplicationList.h"

#include <QFile>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace quarrow {

void ApplicationList::setApplications(std::vector<applications::InstalledApplication> applications) {
  all_ = std::move(applications);
  narrow();
}

void ApplicationList::setSearch(const QString &search) {
  if (search_ == search)
    return;
  search_ = search;
  emit searchChanged();
  narrow();
}

void ApplicationList::narrow() {
  const QString wanted = search_.trimmed();
  beginResetModel();
  shown_.clear();
  std::ranges::copy_if(all_, std::back_inserter(shown_), [&](const auto &each) {
    return QString::fromStdString(each.name).contains(wanted, Qt::CaseInsensitive);
  });
  endResetModel();
  emit countChanged();
}

int ApplicationList::rowCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : count(); }

QVariant ApplicationList::data(const QModelIndex &index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid))
    return {};
  const auto &application = shown_[static_cast<std::size_t>(index.row())];
  switch (role) {
  case NameRole:
    return QString::fromStdString(application.name);
  case PictureRole:
    return QFile::decodeName(application.icon.c_str());
  case EntryRole:
    return QFile::decodeName(application.entry.c_str());
  case IsMadeForItRole:
    return application.isMadeForIt;
  default:
    return {};
  }
}

QHash<int, QByteArray> ApplicationList::roleNames() const {
  return {
      {NameRole, "name"}, {PictureRole, "picture"}, {EntryRole, "entry"}, {IsMadeForItRole, "isMadeForIt"}};
}

} // namespace quarrow
