#pragma once

#include "Quarrow/App/ServerModel.h"

#include <QObject>
#include <QQmlEngine>
#include <QString>

namespace quarrow {

// Whether phones can send photos now, as one sentence. Main thread.
class ServiceStatus : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(Status)
  QML_SINGLETON
  Q_PROPERTY(Tone tone READ tone NOTIFY changed)
  Q_PROPERTY(QString sentence READ sentence NOTIFY changed)

public:
  // Good: photos can arrive. Pending: unknown yet. Warning: phones may not get through. Bad: nothing can
  // arrive.
  enum Tone { Good, Pending, Warning, Bad };
  Q_ENUM(Tone)

  // `server` outlives the object.
  explicit ServiceStatus(ServerModel &server, QObject *parent = nullptr);
  static ServiceStatus *create(QQmlEngine *engine, QJSEngine *);

  [[nodiscard]] Tone tone() const { return state().tone; }
  [[nodiscard]] QString sentence() const { return state().sentence; }

signals:
  void changed();

private:
  struct State {
    Tone tone;
    QString sentence;
  };
  [[nodiscard]] State state() const;
  [[nodiscard]] State listening() const;

  ServerModel &server_;
};

} // namespace quarrow
