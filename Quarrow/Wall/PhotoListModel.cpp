#include "Quarrow/Wall/PhotoListModel.h"

#include "FennickCore/Support/Text.h"
#include "Quarrow/Wall/WallThumbnails.h"

#include <QDateTime>
#include <QFile>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <map>

namespace quarrow {

using fennick::PhotoItem;

namespace fs = std::filesystem;

namespace {

QString textOf(const std::string &text) { return QString::fromStdString(fennick::displayText(text)); }

QString sizeText(const PhotoItem &item) { return QString::fromStdString(fennick::fileSizeText(item.bytes)); }

QDateTime dateOf(const PhotoItem &item) {
  const auto since = item.date.time_since_epoch();
  return QDateTime::fromMSecsSinceEpoch(std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
}

std::map<fs::path, int> placesOf(const PhotoListModel::Items &items) {
  std::map<fs::path, int> places;
  for (int place = 0; const auto &item : items)
    places.emplace(item.url, place++);
  return places;
}

// Marks which of `places`, which are all different, belong to a longest increasing subsequence.
std::vector<bool> risingOf(const std::vector<int> &places) {
  std::vector<std::size_t> ends; // the smallest end of a subsequence of each length
  std::vector<std::size_t> before(places.size(), places.size());
  for (std::size_t i = 0; i < places.size(); ++i) {
    const auto at =
        std::ranges::lower_bound(ends, places[i], {}, [&](std::size_t each) { return places[each]; });
    if (at != ends.begin())
      before[i] = *std::prev(at);
    if (at == ends.end())
      ends.push_back(i);
    else
      *at = i;
  }
  std::vector<bool> rising(places.size(), false);
  for (std::size_t i = ends.empty() ? places.size() : ends.back(); i < places.size(); i = before[i])
    rising[i] = true;
  return rising;
}

} // namespace

int PhotoListModel::rowCount(const QModelIndex &parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant PhotoListModel::data(const QModelIndex &index, int role) const {
  if (!index.isValid())
    return {};
  const auto &item = rows_[static_cast<std::size_t>(index.row())];
  switch (role) {
  case urlRole:
    return QUrl::fromLocalFile(QFile::decodeName(item.url.c_str()));
  case Qt::DisplayRole:
  case nameRole:
    return textOf(item.name);
  case bytesRole:
    return static_cast<qint64>(item.bytes);
  case dateRole:
    return dateOf(item);
  case pixelWidthRole:
    return static_cast<int>(item.pixelWidth.value_or(0));
  case pixelHeightRole:
    return static_cast<int>(item.pixelHeight.value_or(0));
  case isVideoRole:
    return item.isVideo;
  case isOversizedRole:
    return item.isTooLarge();
  case isRecentRole:
    return recent_.contains(item.url);
  case isSelectedRole:
    return selected_.contains(item.url);
  case thumbnailRole:
    return WallThumbnails::address(item);
  case sizeTextRole:
    return sizeText(item);
  case spokenRole:
    return spoken(item);
  default:
    return {};
  }
}

QString PhotoListModel::spoken(const PhotoItem &item) const {
  QStringList parts{textOf(item.name), item.isVideo ? tr("视频") : tr("照片")};
  if (item.pixelWidth && item.pixelHeight)
    parts << tr("%1 × %2").arg(*item.pixelWidth).arg(*item.pixelHeight);
  parts << sizeText(item);
  if (item.isTooLarge())
    parts << tr("尺寸过大");
  if (selected_.contains(item.url))
    parts << tr("已选中");
  return parts.join(tr("，"));
}

QHash<int, QByteArray> PhotoListModel::roleNames() const {
  return {{urlRole, "url"},
          {nameRole, "name"},
          {bytesRole, "bytes"},
          {dateRole, "date"},
          {pixelWidthRole, "pixelWidth"},
          {pixelHeightRole, "pixelHeight"},
          {isVideoRole, "isVideo"},
          {isOversizedRole, "isOversized"},
          {isRecentRole, "isRecent"},
          {isSelectedRole, "isSelected"},
          {thumbnailRole, "thumbnail"},
          {sizeTextRole, "sizeText"},
          {spokenRole, "spoken"}};
}

void PhotoListModel::setItems(const Items &items) {
  removeAllBut(items);
  moveInto(items);
  insertMissing(items);
  replaceChanged(items);
}

void PhotoListModel::removeAllBut(const Items &items) {
  const auto places = placesOf(items);
  for (int last = rowCount() - 1; last >= 0; --last) {
    int first = last;
    while (first >= 0 && !places.contains(rows_[static_cast<std::size_t>(first)].url))
      --first;
    if (first == last)
      continue;
    beginRemoveRows({}, first + 1, last);
    rows_.erase(rows_.begin() + first + 1, rows_.begin() + last + 1);
    endRemoveRows();
    last = first;
  }
}

// Moves as few rows as possible: those outside the longest run that is in order already, each behind its
// predecessor.
void PhotoListModel::moveInto(const Items &items) {
  const auto places = placesOf(items);
  std::vector<int> wanted;
  for (const auto &row : rows_)
    wanted.push_back(places.at(row.url));
  const auto rising = risingOf(wanted);
  std::set<int> loose;
  for (std::size_t i = 0; i < wanted.size(); ++i)
    if (!rising[i])
      loose.insert(wanted[i]);
  std::ranges::sort(wanted);
  for (const int place : loose) {
    const auto rank = std::ranges::lower_bound(wanted, place);
    const auto &file = items[static_cast<std::size_t>(place)].url;
    const int from = rowOf(file);
    const int to =
        rank == wanted.begin() ? 0 : rowOf(items[static_cast<std::size_t>(*std::prev(rank))].url) + 1;
    if (!beginMoveRows({}, from, from, {}, to))
      continue; // it is in place already
    const auto row = rows_.begin() + from;
    if (to > from)
      std::rotate(row, row + 1, rows_.begin() + to);
    else
      std::rotate(rows_.begin() + to, row, row + 1);
    endMoveRows();
  }
}

void PhotoListModel::insertMissing(const Items &items) {
  const auto known = placesOf(rows_);
  for (std::size_t first = 0; first < items.size(); ++first) {
    std::size_t end = first;
    while (end < items.size() && !known.contains(items[end].url))
      ++end;
    if (end == first)
      continue;
    beginInsertRows({}, static_cast<int>(first), static_cast<int>(end) - 1);
    const auto from = items.begin();
    rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(first),
                 from + static_cast<std::ptrdiff_t>(first), from + static_cast<std::ptrdiff_t>(end));
    endInsertRows();
    first = end;
  }
}

void PhotoListModel::replaceChanged(const Items &items) {
  for (int row = 0; row < rowCount(); ++row) {
    auto &shown = rows_[static_cast<std::size_t>(row)];
    const auto &item = items[static_cast<std::size_t>(row)];
    if (shown == item)
      continue;
    shown = item;
    emit dataChanged(index(row), index(row));
  }
}

void PhotoListModel::rename(const std::vector<fennick::Renaming> &renamings) {
  for (const auto &[from, to] : renamings) {
    const int row = rowOf(from);
    if (row < 0)
      continue;
    for (auto *marked : {&selected_, &recent_})
      if (marked->erase(from) > 0)
        marked->insert(to);
    auto &item = rows_[static_cast<std::size_t>(row)];
    item.url = to;
    item.name = to.filename().string();
    emit dataChanged(index(row), index(row));
  }
}

void PhotoListModel::setSelected(const Paths &files) { mark(selected_, files, {isSelectedRole, spokenRole}); }

void PhotoListModel::setRecent(const Paths &files) { mark(recent_, files, {isRecentRole}); }

void PhotoListModel::mark(Paths &marked, const Paths &files, const QList<int> &roles) {
  const Paths before = std::exchange(marked, files);
  const auto changes = [&](int row) {
    const auto &file = rows_[static_cast<std::size_t>(row)].url;
    return before.contains(file) != files.contains(file);
  };
  for (int first = 0; first < rowCount(); ++first) {
    int end = first;
    while (end < rowCount() && changes(end))
      ++end;
    if (end == first)
      continue;
    emit dataChanged(index(first), index(end - 1), roles);
    first = end;
  }
}

int PhotoListModel::rowOf(const fs::path &file) const {
  const auto found = std::ranges::find(rows_, file, &PhotoItem::url);
  return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

} // namespace quarrow
