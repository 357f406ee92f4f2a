#include "Quarrow/Wall/PhotoWall.h"

#include "FennickCore/Support/Text.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

namespace quarrow {

using fennick::PhotoItem;
using fennick::Renaming;

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTileSizeKey = "wallTileSize";
constexpr fennick::Seconds kStoreDelay{1}; // so that dragging the slider stores the size once

// Formats in which other programs provide pictures, lossless first.
constexpr const char *kPastedFormats[] = {"image/png", "image/jpeg", "image/webp", "image/tiff", "image/gif"};

using Items = PhotoListModel::Items;
using Reach = WallSelection::Reach;
using Band = WallSelection::Band;

bool has(int modifiers, Qt::KeyboardModifiers any) {
  return (static_cast<unsigned>(modifiers) & any.toInt()) != 0;
}

Reach reachOf(int modifiers) {
  const bool ranges = has(modifiers, Qt::ShiftModifier);
  if (has(modifiers, Qt::ControlModifier))
    return ranges ? Reach::addRange : Reach::toggle;
  return ranges ? Reach::range : Reach::only;
}

Band bandOf(int modifiers) {
  if (has(modifiers, Qt::ControlModifier))
    return Band::toggle;
  return has(modifiers, Qt::ShiftModifier) ? Band::add : Band::replace;
}

std::set<fs::path> filesOf(const Items &items) {
  std::set<fs::path> files;
  for (const auto &item : items)
    files.insert(item.url);
  return files;
}

// Finds files with the place, content and date of files that are gone: the same files under other names.
std::vector<Renaming> renamingsOf(const Items &before, const Items &after) {
  if (before.size() != after.size())
    return {};
  const auto old = filesOf(before);
  const auto now = filesOf(after);
  std::vector<Renaming> renamings;
  for (std::size_t i = 0; i < before.size(); ++i)
    if (before[i].url != after[i].url && before[i].bytes == after[i].bytes &&
        before[i].date == after[i].date && !now.contains(before[i].url) && !old.contains(after[i].url))
      renamings.push_back({.from = before[i].url, .to = after[i].url});
  return renamings;
}

int tileSizeFrom(const fennick::Preferences &preferences) {
  const auto stored = fennick::signedDecimal(preferences.text(kTileSizeKey).value_or(""));
  return static_cast<int>(std::clamp<std::int64_t>(stored.value_or(PhotoWall::kUsualTile),
                                                   PhotoWall::kSmallestTile, PhotoWall::kLargestTile));
}

std::int64_t sizeOfSelected(const Items &items, const PhotoSelection::Paths &selected) {
  std::int64_t bytes = 0;
  for (const auto &item : items)
    if (selected.contains(item.url))
      bytes += item.bytes;
  return bytes;
}

} // namespace

PhotoWall::PhotoWall(const Parts &parts)
    : library_(parts.library), selected_(parts.selection), commands_(parts.commands),
      preferences_(parts.preferences), mainQueue_(parts.mainQueue), known_(library_.items()),
      selection_(selected_), typeAhead_(parts.clock), thumbnails_(parts.thumbnails),
      tileSize_(tileSizeFrom(preferences_)) {
  subscriptions_.push_back(library_.observeItems([this](const Items &items) { follow(items); }));
  subscriptions_.push_back(library_.observeListed([this](bool) { updateState(); }));
  subscriptions_.push_back(
      library_.observeRecentlyAdded([this](const auto &files) { model_.setRecent(files); }));
  connect(&parts.server, &ServerModel::errorChanged, this, &PhotoWall::updateState);
  connect(&selected_, &PhotoSelection::changed, this, [this] {
    model_.setSelected(selected_.files());
    emit selectionChanged();
  });
  model_.setRecent(library_.recentlyAdded());
  show();
}

PhotoWall::~PhotoWall() {
  if (storesTileSize_)
    storeTileSize();
}

template <typename Change>
void PhotoWall::changing(Change change) {
  const auto before = std::pair(currentIndex(), currentFile());
  change();
  if (before != std::pair(currentIndex(), currentFile()))
    emit currentChanged();
}

void PhotoWall::follow(const Items &items) {
  const auto renamings = renamingsOf(known_, items);
  known_ = items;
  if (!renamings.empty())
    changing([&] {
      model_.rename(renamings);
      selection_.rename(renamings);
    });
  show();
}

bool PhotoWall::passes(const PhotoItem &item) const {
  return filter_ == All || item.isVideo == (filter_ == Videos);
}

void PhotoWall::show() {
  Items shown;
  std::ranges::copy_if(known_, std::back_inserter(shown), [this](const auto &item) { return passes(item); });
  WallSelection::Files files;
  std::ranges::transform(shown, std::back_inserter(files), &PhotoItem::url);
  changing([&] {
    model_.setItems(shown);
    selection_.setFiles(std::move(files));
  });
  updateState();
  emit countsChanged();
  emit selectionChanged(); // a changed photo has another size
}

PhotoWall::State PhotoWall::stateNow() const {
  if (count() > 0)
    return Filled;
  if (!known_.empty())
    return NoMatch;
  if (!library_.folder())
    return Empty;
  if (!library_.isListed())
    return Loading;
  return commands_.hasLibraryFolder() ? Empty : Missing;
}

void PhotoWall::updateState() {
  if (std::exchange(state_, stateNow()) != state_)
    emit stateChanged();
}

void PhotoWall::setFilter(Filter filter) {
  if (std::exchange(filter_, filter) == filter)
    return;
  show();
  emit filterChanged();
}

void PhotoWall::setTileSize(int size) {
  const int wanted = std::clamp(size, kSmallestTile, kLargestTile);
  if (std::exchange(tileSize_, wanted) == wanted)
    return;
  emit tileSizeChanged();
  if (std::exchange(storesTileSize_, true))
    return;
  mainQueue_.postAfter(kStoreDelay, lifetime_.guard([this] { storeTileSize(); }));
}

void PhotoWall::storeTileSize() {
  storesTileSize_ = false;
  std::ignore = preferences_.setText(kTileSizeKey, std::to_string(tileSize_));
}

QString PhotoWall::countText() const {
  const auto videos = std::ranges::count_if(model_.items(), &PhotoItem::isVideo);
  const auto photos = count() - videos;
  QStringList parts;
  if (photos > 0)
    parts << tr("%1 张照片").arg(photos);
  if (videos > 0)
    parts << tr("%1 段视频").arg(videos);
  return parts.join(tr(" · "));
}

QString PhotoWall::limitText() const {
  if (known_.size() < fennick::PhotoLibrary::kLimit)
    return {};
  return tr("照片墙最多显示 %1 项，其余的请到文件夹里看").arg(fennick::PhotoLibrary::kLimit);
}

int PhotoWall::selectedCount() const { return static_cast<int>(selected_.files().size()); }

QString PhotoWall::selectionText() const {
  if (selectedCount() == 0)
    return {};
  const auto bytes = sizeOfSelected(known_, selected_.files());
  return tr("已选 %1 项 · %2").arg(selectedCount()).arg(QString::fromStdString(fennick::fileSizeText(bytes)));
}

QUrl PhotoWall::currentFile() const {
  return model_.data(model_.index(currentIndex()), PhotoListModel::urlRole).toUrl();
}

QString PhotoWall::nameOf(int place) const {
  return model_.data(model_.index(place), PhotoListModel::nameRole).toString();
}

void PhotoWall::click(int place, int modifiers) {
  changing([&] { selection_.pick(place, reachOf(modifiers)); });
}

void PhotoWall::grab(int place) {
  changing([&] {
    if (isSelected(place))
      selection_.moveTo(place);
    else
      selection_.pick(place, Reach::only);
  });
}

void PhotoWall::moveCurrent(int delta) {
  if (count() > 0)
    click(std::clamp(currentIndex() + delta, 0, count() - 1), Qt::NoModifier);
}

void PhotoWall::selectAll() { selection_.selectAll(); }

void PhotoWall::selectNone() { selection_.selectNone(); }

bool PhotoWall::press(int key, int modifiers, const QString &text, int columns, int rows) {
  if (count() == 0)
    return false;
  const bool shift = has(modifiers, Qt::ShiftModifier);
  if (has(modifiers, Qt::ControlModifier) && key == Qt::Key_A) {
    shift ? selectNone() : selectAll();
    return true;
  }
  if (has(modifiers, Qt::ControlModifier) && key == Qt::Key_Space) {
    click(currentIndex(), Qt::ControlModifier);
    return true;
  }
  if (key == Qt::Key_Escape && selectedCount() > 0) {
    selectNone();
    return true;
  }
  if (step(key, modifiers, columns, rows))
    return true;
  const bool commands = has(modifiers, Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  const bool types = !commands && !text.isEmpty() && text.front().isPrint() && !text.front().isSpace();
  if (types)
    click(typeAhead_.find(text, currentIndex(), count(), [this](int place) { return nameOf(place); }),
          Qt::NoModifier);
  return types;
}

bool PhotoWall::step(int key, int modifiers, int columns, int rows) {
  const int current = currentIndex();
  const int last = count() - 1;
  // Up and down keep the column; in a shorter last row they go to its last photo.
  const auto down = [&](int lines) {
    const int rowsBelow = last / columns - current / columns;
    return std::min(current + std::min(lines, rowsBelow) * columns, last);
  };
  const auto up = [&](int lines) { return current - std::min(lines, current / columns) * columns; };
  int target = 0;
  switch (key) {
  case Qt::Key_Left:
    target = current - 1;
    break;
  case Qt::Key_Right:
    target = current + 1;
    break;
  case Qt::Key_Up:
    target = up(1);
    break;
  case Qt::Key_Down:
    target = down(1);
    break;
  case Qt::Key_PageUp:
    target = up(std::max(rows, 1));
    break;
  case Qt::Key_PageDown:
    target = down(std::max(rows, 1));
    break;
  case Qt::Key_Home:
    break;
  case Qt::Key_End:
    target = last;
    break;
  default:
    return false;
  }
  target = std::clamp(current < 0 && key != Qt::Key_End ? 0 : target, 0, last);
  const bool focusOnly = has(modifiers, Qt::ControlModifier) && !has(modifiers, Qt::ShiftModifier);
  changing([&] {
    if (focusOnly)
      selection_.moveTo(target);
    else
      selection_.pick(target, reachOf(modifiers));
  });
  return true;
}

void PhotoWall::beginBand(int modifiers) { selection_.beginBand(bandOf(modifiers)); }

void PhotoWall::stretchBand(const QRectF &band, const QSizeF &cell, int columns, double gap) {
  std::vector<int> covered;
  const QSizeF tile(cell.width() - gap, cell.height() - gap);
  for (int place = 0; place < count(); ++place) {
    const QPointF corner((place % columns) * cell.width() + gap / 2,
                         std::floor(place / columns) * cell.height() + gap / 2);
    if (band.intersects(QRectF(corner, tile)))
      covered.push_back(place);
  }
  changing([&] { selection_.coverWithBand(covered); });
}

QVariantMap PhotoWall::dragData() const {
  QStringList addresses;
  for (int place = 0; place < count(); ++place)
    if (isSelected(place))
      addresses << QString::fromLatin1(
          model_.data(model_.index(place), PhotoListModel::urlRole).toUrl().toEncoded());
  return {{"text/uri-list", addresses.join("\r\n")}, {kOwnDrag, QString::number(addresses.size())}};
}

QStringList PhotoWall::dragThumbnails(int most) const {
  QStringList addresses;
  for (int place = 0; place < count() && addresses.size() < most; ++place)
    if (isSelected(place))
      addresses << model_.data(model_.index(place), PhotoListModel::thumbnailRole).toString();
  return addresses;
}

void PhotoWall::lookAgain() {
  library_.scan();
  updateState();
}

void PhotoWall::importFiles(const QList<QUrl> &files) {
  std::vector<fs::path> paths;
  for (const auto &each : files)
    if (each.isLocalFile())
      paths.emplace_back(QFile::encodeName(each.toLocalFile()).toStdString());
  if (!paths.empty())
    commands_.importFiles(std::move(paths));
}

// Pasted pictures are stored unchanged; only the sandboxed decoder reads them.
bool PhotoWall::paste() {
  const auto *content = QGuiApplication::clipboard()->mimeData();
  if (content == nullptr)
    return false;
  if (content->hasUrls()) {
    importFiles(content->urls());
    return true;
  }
  const auto *const format =
      std::ranges::find_if(kPastedFormats, [&](const char *each) { return content->hasFormat(each); });
  if (format == std::end(kPastedFormats))
    return false;
  commands_.importPicture(content->data(*format).toStdString(), tr("粘贴的图片").toStdString());
  return true;
}

void PhotoWall::moveSelectionTo(int place) {
  const auto &selected = selected_.files();
  const auto &shown = model_.items();
  const auto isMoved = [&](const PhotoItem &item) { return selected.contains(item.url); };
  const auto next =
      std::ranges::find_if_not(shown.begin() + std::clamp(place, 0, count()), shown.end(), isMoved);
  std::vector<fs::path> moved;
  std::vector<fs::path> arranged;
  for (const auto &item : known_)
    (isMoved(item) ? moved : arranged).push_back(item.url);
  const auto before = next == shown.end() ? arranged.end() : std::ranges::find(arranged, next->url);
  arranged.insert(before, moved.begin(), moved.end());
  library_.reorder(arranged, lifetime_.guard([this](const auto &stored) {
    if (!stored)
      commands_.reportProblem(
          tr("没能保存照片的顺序：%1").arg(QString::fromStdString(stored.error().message())).toStdString());
  }));
}

} // namespace quarrow
