#include "Quarrow/Views/Arrivals.h"

#include "FennickCore/Support/Text.h"
#include "Quarrow/Views/Registration.h"

#include <algorithm>

namespace quarrow {

Arrivals::Arrivals(const UploadProgress &progress, QObject *parent) : QObject(parent), progress_(progress) {
  connect(&progress_, &UploadProgress::changed, this, &Arrivals::changed);
}

Arrivals *Arrivals::create(QQmlEngine *engine, QJSEngine *) {
  return new Arrivals(*ProgressSingleton::instance, engine);
}

QString Arrivals::sentence() const { return tr("正在接收 %1 个文件").arg(progress_.uploads()); }

QString Arrivals::pace() const {
  const auto speed = fennick::fileSizeText(static_cast<std::int64_t>(progress_.bytesPerSecond()));
  return tr("%1 % · %2/s").arg(static_cast<int>(share() * 100)).arg(QString::fromStdString(speed));
}

double Arrivals::share() const {
  const auto expected = static_cast<double>(progress_.expectedBytes());
  return expected > 0 ? std::min(1.0, static_cast<double>(progress_.receivedBytes()) / expected) : 0;
}

} // namespace quarrow
