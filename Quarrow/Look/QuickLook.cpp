#include "Quarrow/Look/QuickLook.h"

#include "FennickCore/Support/Text.h"
#include "Quarrow/Look/LookWords.h"

#include <QFile>

#include <algorithm>
#include <iterator>
#include <ranges>
#include <utility>

namespace quarrow {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostReady = 4; // of at most 8 MB: the neighbours on both sides, and the previous one
// So that flipping through photos does not decode each of them in full.
constexpr fennick::Seconds kSharpenDelay{0.2};

int longerSide(const QSize &size) { return std::max(size.width(), size.height()); }

bool isShowable(const fennick::PhotoItem &item) { return !item.isVideo && !item.isOversized; }

QSize sizeOf(const fennick::PhotoItem &item) {
  return {static_cast<int>(item.pixelWidth.value_or(0)), static_cast<int>(item.pixelHeight.value_or(0))};
}

// Returns the dimensions as shown.
QSize uprightSize(const fennick::PictureFacts &facts) {
  const QSize stored(static_cast<int>(facts.width.value_or(0)), static_cast<int>(facts.height.value_or(0)));
  const auto orientation = facts.orientation.value_or(fennick::kUpright);
  return orientation >= 5 && orientation <= 8 ? stored.transposed() : stored;
}

} // namespace

QuickLook::QuickLook(fennick::PhotoLibrary &library, fennick::PictureDecoder &decoder,
                     fennick::Thumbnails &thumbnails, fennick::MainQueue &mainQueue)
    : library_(library), mainQueue_(mainQueue),
      items_(library.observeItems([this](const Items &) { follow(); })),
      pictures_(decoder, thumbnails, mainQueue) {}

fs::path QuickLook::path() const {
  if (showsOriginal_ && original_)
    return *original_;
  return QFile::encodeName(file_.toLocalFile()).toStdString();
}

const fennick::PhotoItem *QuickLook::listed(const fs::path &file) const {
  const auto &items = library_.items();
  const auto found = std::ranges::find(items, file, &fennick::PhotoItem::url);
  return found == items.end() ? nullptr : &*found;
}

void QuickLook::setOpen(bool open) {
  if (open == open_)
    return;
  open_ = open;
  emit openChanged();
  load();
  if (!open_)
    ready_.clear();
}

void QuickLook::setFile(const QUrl &file) {
  if (file == file_)
    return;
  file_ = file;
  showsOriginal_ = false;
  original_.reset();
  item_.reset();
  emit fileChanged();
  load();
}

void QuickLook::setShowsOriginal(bool shows) {
  if (shows == showsOriginal_ || (shows && !original_))
    return;
  showsOriginal_ = shows;
  emit fileChanged();
  load();
}

void QuickLook::forget() {
  pictures_.forget();
  sharpening_.cancel();
  asksForFull_ = false;
  full_ = screen_ = QImage();
  facts_.reset();
  pixels_ = {};
}

// Loads the file from the beginning.
void QuickLook::load() {
  forget();
  if (!open_ || file_.isEmpty()) {
    setKind(Nothing);
  } else {
    const auto *item = showsOriginal_ ? nullptr : listed(path());
    if (item != nullptr)
      showItem(*item);
    else
      setKind(fennick::isVideoName(path().native()) ? Video : Loading);
    if (kind_ == Loading || kind_ == Picture)
      askForPicture();
    pictures_.askForFacts(path(), [this](const LookFacts &facts) { takeFacts(facts); });
    prepareNeighbours();
  }
  emit pictureChanged();
  emit factsChanged();
}

void QuickLook::showItem(const fennick::PhotoItem &item) {
  item_ = item;
  pixels_ = sizeOf(item);
  if (const QImage *picture = ready(item))
    screen_ = *picture;
  if (item.isVideo)
    setKind(Video);
  else if (item.isOversized)
    setKind(item.isTooLarge() ? Oversized : Damaged);
  else
    setKind(screen_.isNull() ? Loading : Picture);
}

// The photo may have been changed, for example rotated: the old picture stays until the new one is ready.
void QuickLook::follow() {
  const auto *item = open_ && !showsOriginal_ ? listed(path()) : nullptr;
  if (item == nullptr || item_ == *item)
    return;
  const QImage before = screen_;
  const bool isNew = !item_ || item_->url != item->url || !isShowable(*item_);
  item_ = *item;
  if (isNew)
    return load();
  pictures_.forget();
  sharpening_.cancel();
  asksForFull_ = false;
  full_ = QImage();
  pictures_.askForScreen(path(), [this](const QImage &picture) { take(picture); });
  pictures_.askForFacts(path(), [this](const LookFacts &facts) { takeFacts(facts); });
}

void QuickLook::askForPicture() {
  if (screen_.isNull())
    pictures_.askForScreen(path(), [this](const QImage &picture) { take(picture); });
  else
    sharpenSoon();
}

void QuickLook::take(const QImage &screen) {
  if (item_ && !showsOriginal_)
    pixels_ = sizeOf(*item_);
  screen_ = screen;
  if (screen.isNull()) {
    setKind(kind_ == Oversized ? Oversized : Damaged);
  } else {
    if (pixels_.isEmpty())
      pixels_ = screen.size();
    if (item_ && !showsOriginal_)
      keep(*item_, screen);
    setKind(Picture);
    sharpenSoon();
  }
  emit pictureChanged();
  emit factsChanged();
}

void QuickLook::takeFacts(const LookFacts &facts) {
  facts_ = facts;
  if (!showsOriginal_)
    original_ = facts.original;
  if (facts.picture && facts.picture->width && facts.picture->height)
    pixels_ = uprightSize(*facts.picture);
  sharpenSoon();
  emit pictureChanged();
  emit factsChanged();
}

const QImage &QuickLook::picture() const {
  return full_.isNull() || shownPixels_ <= longerSide(screen_.size()) ? screen_ : full_;
}

void QuickLook::setShownPixels(int pixels) {
  if (pixels == shownPixels_)
    return;
  const auto before = picture().cacheKey();
  shownPixels_ = pixels;
  emit shownPixelsChanged();
  if (picture().cacheKey() != before)
    emit pictureChanged();
  sharpenSoon();
}

bool QuickLook::isSharpEnough() const {
  const int longest = longerSide(screen_.size());
  return screen_.isNull() || !full_.isNull() || asksForFull_ || shownPixels_ <= longest ||
         longerSide(pixels_) <= longest;
}

void QuickLook::sharpenSoon() {
  if (isSharpEnough())
    return;
  sharpening_.cancel();
  mainQueue_.postAfter(kSharpenDelay, sharpening_.guard([this] { sharpen(); }));
}

void QuickLook::sharpen() {
  if (isSharpEnough())
    return;
  asksForFull_ = true;
  pictures_.askForFull(path(), LookPictures::fullEdge(pixels_.width(), pixels_.height()),
                       [this](const QImage &picture) {
                         full_ = picture;
                         emit pictureChanged();
                       });
}

// The nearest ones that are pictures; there may be videos in between.
void QuickLook::prepareNeighbours() {
  const auto &items = library_.items();
  const auto here = item_ ? std::ranges::find(items, item_->url, &fennick::PhotoItem::url) : items.end();
  if (here == items.end())
    return;
  const auto prepare = [this](const fennick::PhotoItem &item) {
    if (ready(item) == nullptr)
      pictures_.askForScreen(item.url, [this, item](const QImage &picture) {
        if (!picture.isNull())
          keep(item, picture);
      });
  };
  if (const auto next = std::find_if(std::next(here), items.end(), isShowable); next != items.end())
    prepare(*next);
  const auto before = std::find_if(std::make_reverse_iterator(here), items.rend(), isShowable);
  if (before != items.rend())
    prepare(*before);
}

void QuickLook::keep(const fennick::PhotoItem &item, const QImage &picture) {
  std::erase_if(ready_, [&](const Ready &each) { return each.item.url == item.url; });
  ready_.push_front({.item = item, .picture = picture});
  if (ready_.size() > kMostReady)
    ready_.pop_back();
}

const QImage *QuickLook::ready(const fennick::PhotoItem &item) const {
  const auto found = std::ranges::find(ready_, item, &Ready::item);
  return found == ready_.end() ? nullptr : &found->picture;
}

void QuickLook::setKind(Kind kind) {
  if (kind != kind_) {
    kind_ = kind;
    emit kindChanged();
  }
}

QString QuickLook::name() const {
  return QString::fromStdString(fennick::displayText(path().filename().native()));
}

QString QuickLook::line() const {
  if (kind_ == Nothing)
    return {};
  if (facts_)
    return lookLine(pixels_, facts_->bytes, facts_->date);
  return item_ ? lookLine(pixels_, item_->bytes, item_->date) : QString();
}

QVariantList QuickLook::details() const {
  return facts_ ? lookDetails(name(), pixels_, *facts_) : QVariantList();
}

} // namespace quarrow
