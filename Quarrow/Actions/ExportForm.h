#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Storage/PhotoExport.h"
#include "Quarrow/Actions/Failures.h"
#include "Quarrow/Actions/FileJobs.h"
#include "Quarrow/Actions/FileTools.h"
#include "Quarrow/App/Desktop.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quarrow {

// The export dialog: the user's choices, an example with the first photo, and the result. The choices last as
// long as the program runs. Main thread.
class ExportForm : public QObject {
  Q_OBJECT
  Q_PROPERTY(int longEdge READ longEdge WRITE setLongEdge NOTIFY changed) // pixels; 0: unchanged
  Q_PROPERTY(int mostKilobytes READ mostKilobytes WRITE setMostKilobytes NOTIFY changed) // 0: unlimited
  Q_PROPERTY(QString format READ format WRITE setFormat NOTIFY changed)   // "keep", "jpeg", "heic", "png"
  Q_PROPERTY(double quality READ quality WRITE setQuality NOTIFY changed) // 0.3 to 1
  Q_PROPERTY(int metadata READ metadata WRITE setMetadata NOTIFY changed) // of Metadata
  // The target folder as text; the reserved folder unless the user chose another one.
  Q_PROPERTY(QString folder READ folderText NOTIFY changed)
  Q_PROPERTY(bool usesReservedFolder READ usesReservedFolder NOTIFY changed)
  Q_PROPERTY(int count READ count NOTIFY changed)
  Q_PROPERTY(bool canWriteHEIC READ canWriteHEIC NOTIFY changed) // true until it is known
  // An example with the first photo, in two lines: the photo, and the copy.
  Q_PROPERTY(QString example READ example NOTIFY changed)
  Q_PROPERTY(QString exampleCopy READ exampleCopy NOTIFY changed)
  Q_PROPERTY(int stage READ stage NOTIFY changed) // of Stage
  // The result: a sentence, further remarks, and a line for each file that failed.
  Q_PROPERTY(QString result READ result NOTIFY changed)
  Q_PROPERTY(QString remark READ remark NOTIFY changed)
  Q_PROPERTY(QStringList failures READ failures NOTIFY changed)
  Q_PROPERTY(bool hasCopies READ hasCopies NOTIFY changed)

public:
  using Paths = std::vector<std::filesystem::path>;
  enum Metadata { KeepMetadata, WithoutLocation, WithoutMetadata };
  Q_ENUM(Metadata)
  enum Stage { Choosing, Exporting, Finished };
  Q_ENUM(Stage)

  // All outlive the form.
  struct Parts {
    FileTools tools;
    Desktop &desktop;
    fennick::MainQueue &mainQueue;
    FileJobs &jobs;
  };
  // `selected` returns the photos in their order, `saveFolder` the folder that contains the reserved one.
  ExportForm(const Parts &parts, std::function<Paths()> selected,
             std::function<std::filesystem::path()> saveFolder);

  [[nodiscard]] int longEdge() const { return longEdge_; }
  void setLongEdge(int pixels);
  [[nodiscard]] int mostKilobytes() const { return mostKilobytes_; }
  void setMostKilobytes(int kilobytes);
  [[nodiscard]] const QString &format() const { return format_; }
  void setFormat(const QString &format);
  [[nodiscard]] double quality() const { return quality_; }
  void setQuality(double quality);
  [[nodiscard]] int metadata() const { return metadata_; }
  void setMetadata(int metadata);
  [[nodiscard]] QString folderText() const;
  [[nodiscard]] bool usesReservedFolder() const { return !chosenFolder_; }
  [[nodiscard]] int count() const { return static_cast<int>(photos_.size()); }
  [[nodiscard]] bool canWriteHEIC() const { return canWriteHEIC_; }
  [[nodiscard]] const QString &example() const { return example_; }
  [[nodiscard]] const QString &exampleCopy() const { return exampleCopy_; }
  [[nodiscard]] int stage() const { return stage_; }
  [[nodiscard]] const QString &result() const { return result_; }
  [[nodiscard]] const QString &remark() const { return remark_; }
  [[nodiscard]] QStringList failures() const { return failures_.lines(); }
  [[nodiscard]] bool hasCopies() const { return !copies_.empty(); }

  // Starts with the photos that are selected now.
  Q_INVOKABLE void begin();
  Q_INVOKABLE void chooseFolder(const QUrl &folder);
  Q_INVOKABLE void useReservedFolder();
  Q_INVOKABLE void apply();
  Q_INVOKABLE void showCopies();

signals:
  void changed();

private:
  struct Report {
    Paths copies{};
    Failures failures{};
    int withMetadata = 0; // copied with metadata that was to be removed
    int tooLarge = 0;     // as small as they get, and still larger than wanted
    bool stopped = false;
  };
  struct Sample {
    std::filesystem::path file;
    std::expected<fennick::PhotoExport::Outlook, fennick::ImagePipeline::Failure> outlook;
    bool canWriteHEIC = true;
  };

  [[nodiscard]] fennick::ImagingOptions options() const;
  [[nodiscard]] std::filesystem::path folder() const;
  [[nodiscard]] static Report exportAll(const Paths &photos, const std::filesystem::path &folder,
                                        const fennick::ImagingOptions &options, const FileTools &tools,
                                        FileJobs::Ticket &ticket);
  template <typename T>
  void edit(T &field, const T &value);
  void look();
  void show(const Sample &sample);
  void finish(Report report);

  const FileTools tools_;
  Desktop &desktop_;
  fennick::MainQueue &mainQueue_;
  FileJobs &jobs_;
  const std::function<Paths()> selected_;
  const std::function<std::filesystem::path()> saveFolder_;
  fennick::Lifetime lifetime_;

  int longEdge_ = 2048;
  int mostKilobytes_ = 0;
  QString format_ = QStringLiteral("jpeg");
  double quality_ = 0.85;
  int metadata_ = WithoutLocation;
  std::optional<std::filesystem::path> chosenFolder_;
  Paths photos_;
  bool canWriteHEIC_ = true;
  QString example_;
  QString exampleCopy_;
  Stage stage_ = Choosing;
  QString result_;
  QString remark_;
  Failures failures_;
  Paths copies_;
  fennick::Lifetime edition_; // of the current choices
};

} // namespace quarrow
