#pragma once

#include "Quarrow/App/UploadProgress.h"

#include <QObject>
#include <QQmlEngine>
#include <QString>

namespace quarrow {

// The uploads in progress as a sentence and a fraction. Main thread.
class Arrivals : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(bool busy READ busy NOTIFY changed)
  Q_PROPERTY(QString sentence READ sentence NOTIFY changed) // "正在接收 2 个文件"
  Q_PROPERTY(QString pace READ pace NOTIFY changed)         // "42 % · 8.4 MB/s"
  Q_PROPERTY(double share READ share NOTIFY changed)        // 0 to 1

public:
  // `progress` outlives the object.
  explicit Arrivals(const UploadProgress &progress, QObject *parent = nullptr);
  static Arrivals *create(QQmlEngine *engine, QJSEngine *);

  [[nodiscard]] bool busy() const { return progress_.uploads() > 0; }
  [[nodiscard]] QString sentence() const;
  [[nodiscard]] QString pace() const;
  [[nodiscard]] double share() const;

signals:
  void changed();

private:
  const UploadProgress &progress_;
};

} // namespace quarrow
