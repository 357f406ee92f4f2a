#include "Quarrow/Actions/ExportForm.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Storage/Leftovers.h"
#include "FennickCore/Support/Text.h"
#include "Quarrow/App/InputLimits.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <utility>

namespace quarrow {

namespace fs = std::filesystem;
namespace PhotoExport = fennick::PhotoExport;

namespace {

constexpr fennick::Seconds kTypingPause{0.12};
constexpr fennick::Seconds kTimeout{90}; // for one picture, as for a received one
constexpr std::int64_t kKilobyte = 1000;
constexpr double kLowestQuality = static_cast<int>(InputLimits::LowestQuality) / 100.0;

QString sizeText(std::int64_t bytes) { return QString::fromStdString(fennick::fileSizeText(bytes)); }

QString reasonOf(const fennick::ImagePipeline::Failure &failure) {
  if (const auto *error = std::get_if<std::error_code>(&failure))
    return reasonText(*error);
  return QString::fromStdString(fennick::ImagePipeline::description(failure));
}

// Returns "4032 像素 · 2.4 MB", or only the size if there are no pixels.
QString measureText(const std::optional<std::int64_t> &longEdge, std::int64_t bytes) {
  return longEdge ? ExportForm::tr("长边 %1 像素 · %2").arg(*longEdge).arg(sizeText(bytes)) : sizeText(bytes);
}

} // namespace

ExportForm::ExportForm(const Parts &parts, std::function<Paths()> selected,
                       std::function<fs::path()> saveFolder)
    : tools_(parts.tools), desktop_(parts.desktop), mainQueue_(parts.mainQueue), jobs_(parts.jobs),
      selected_(std::move(selected)), saveFolder_(std::move(saveFolder)) {}

// Waits for a pause, so that a drag or fast typing computes the example once.
template <typename T>
void ExportForm::edit(T &field, const T &value) {
  if (std::exchange(field, value) == value)
    return;
  edition_.cancel();
  mainQueue_.postAfter(kTypingPause, edition_.guard([this] { look(); }));
  emit changed();
}

void ExportForm::setLongEdge(int pixels) { edit(longEdge_, std::max(pixels, 0)); }
void ExportForm::setMostKilobytes(int kilobytes) { edit(mostKilobytes_, std::max(kilobytes, 0)); }
void ExportForm::setQuality(double quality) { edit(quality_, std::clamp(quality, kLowestQuality, 1.0)); }
void ExportForm::setMetadata(int metadata) {
  edit(metadata_, std::clamp<int>(metadata, KeepMetadata, WithoutMetadata));
}
void ExportForm::setFormat(const QString &format) {
  if (fennick::outputFormat(format.toStdString()))
    edit(format_, format);
}

fennick::ImagingOptions ExportForm::options() const {
  fennick::ImagingOptions options;
  if (longEdge_ > 0)
    options.maxPixels = longEdge_;
  if (mostKilobytes_ > 0)
    options.maxBytes = mostKilobytes_ * kKilobyte;
  options.format = fennick::outputFormat(format_.toStdString()).value_or(fennick::OutputFormat::keep);
  options.quality = quality_;
  options.stripLocation = metadata_ == WithoutLocation;
  options.stripAllMetadata = metadata_ == WithoutMetadata;
  return options;
}

fs::path ExportForm::folder() const {
  return chosenFolder_.value_or(saveFolder_() / std::string(fennick::kExportFolder));
}

QString ExportForm::folderText() const {
  const QString path = QFile::decodeName(folder().c_str());
  const QString home = QDir::homePath();
  return path.startsWith(home + "/") ? "~" + path.sliced(home.size()) : path;
}

void ExportForm::chooseFolder(const QUrl &folder) {
  if (!folder.isLocalFile())
    return;
  chosenFolder_ = fs::path(QFile::encodeName(folder.toLocalFile()).toStdString());
  emit changed();
}

void ExportForm::useReservedFolder() {
  chosenFolder_.reset();
  emit changed();
}

void ExportForm::begin() {
  photos_ = selected_();
  stage_ = Choosing;
  example_.clear();
  exampleCopy_.clear();
  edition_.cancel();
  look();
  emit changed();
}

void ExportForm::look() {
  if (photos_.empty())
    return;
  jobs_.ask(
      [file = photos_.front(), options = options(), &decoder = tools_.decoder] {
        return Sample{.file = file,
                      .outlook = PhotoExport::outlook(file, options, decoder),
                      .canWriteHEIC = decoder.canEncodeHEIC()};
      },
      edition_.guard([this](const Sample &sample) { show(sample); }));
}

void ExportForm::show(const Sample &sample) {
  canWriteHEIC_ = sample.canWriteHEIC;
  example_ = nameText(sample.file);
  if (!sample.outlook) {
    exampleCopy_ = reasonOf(sample.outlook.error());
  } else if (sample.outlook->copied) {
    example_ += tr("（%1）").arg(measureText(sample.outlook->longEdge, sample.outlook->bytes));
    exampleCopy_ = tr("%1，原样复制").arg(QString::fromStdString(sample.outlook->name));
  } else {
    example_ += tr("（%1）").arg(measureText(sample.outlook->longEdge, sample.outlook->bytes));
    exampleCopy_ = tr("%1，长边 %2 像素")
                       .arg(QString::fromStdString(sample.outlook->name))
                       .arg(sample.outlook->newLongEdge.value_or(0));
    if (mostKilobytes_ > 0)
      exampleCopy_ += tr("，不超过 %1").arg(sizeText(mostKilobytes_ * kKilobyte));
  }
  emit changed();
}

// Runs on the jobs' thread.
ExportForm::Report ExportForm::exportAll(const Paths &photos, const fs::path &folder,
                                         const fennick::ImagingOptions &options, const FileTools &tools,
                                         FileJobs::Ticket &ticket) {
  fennick::clearLeftovers(folder, tools.files);
  Report report;
  for (int step = 0; const auto &photo : photos) {
    if (!ticket.reached(step++)) {
      report.stopped = true;
      break;
    }
    const auto exported = PhotoExport::exportFile(photo, folder, options, kTimeout,
                                                  {.decoder = tools.decoder, .files = tools.files});
    if (!exported) {
      report.failures.add(photo, reasonOf(exported.error()).toStdString());
      continue;
    }
    report.copies.push_back(exported->file);
    report.withMetadata += exported->keepsMetadata ? 1 : 0;
    report.tooLarge += exported->withinMaxBytes ? 0 : 1;
  }
  return report;
}

void ExportForm::apply() {
  if (stage_ != Choosing || photos_.empty())
    return;
  stage_ = Exporting;
  jobs_.run(
      count(),
      [photos = photos_, target = folder(), options = options(), tools = tools_](FileJobs::Ticket &ticket) {
        return exportAll(photos, target, options, tools, ticket);
      },
      lifetime_.guard([this](Report report) { finish(std::move(report)); }));
  emit changed();
}

void ExportForm::finish(Report report) {
  stage_ = Finished;
  copies_ = std::move(report.copies);
  failures_ = std::move(report.failures);
  const auto done = copies_.size();
  if (report.stopped)
    result_ = tr("已停止，导出了 %1 项").arg(done);
  else if (failures_.isEmpty())
    result_ = tr("已导出 %1 项").arg(done);
  else
    result_ = tr("导出了 %1 项，%2 项没能导出").arg(done).arg(failures_.count());
  QStringList remarks;
  if (report.withMetadata > 0)
    remarks.append(
        tr("%1 项是视频、动图或多页图片，只能原样复制，拍摄信息还在里面。").arg(report.withMetadata));
  if (report.tooLarge > 0)
    remarks.append(tr("%1 项已到最小尺寸和质量，仍超出大小上限。").arg(report.tooLarge));
  remark_ = remarks.join("\n");
  emit changed();
}

void ExportForm::showCopies() {
  if (!copies_.empty())
    desktop_.showInFolder(copies_);
}

} // namespace quarrow
