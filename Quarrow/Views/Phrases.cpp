#include "Quarrow/Views/Phrases.h"

#include "Quarrow/App/AddressEntry.h"

#include <QDir>
#include <QSet>

namespace quarrow {

namespace {

QString nameOf(const AddressEntry &entry) {
  if (entry.kind == "wifi")
    return Phrases::tr("Wi-Fi");
  if (entry.kind == "wired")
    return Phrases::tr("有线网络");
  if (entry.kind == "hotspot")
    return Phrases::tr("热点");
  return entry.interface;
}

QVariantMap choice(const QString &text, const QVariant &value) { return {{"text", text}, {"value", value}}; }

} // namespace

QString Phrases::folder(const QString &path) {
  const QString home = QDir::homePath();
  if (path == home)
    return "~";
  return path.startsWith(home + "/") ? "~" + path.sliced(home.size()) : path;
}

QVariantList Phrases::addressChoices(const QVariantList &addresses, const QString &preferred) {
  QVariantList choices{choice(tr("自动选择地址"), QString())};
  QSet<QString> seen;
  for (const auto &each : addresses) {
    const auto entry = each.value<AddressEntry>();
    if (seen.contains(entry.interface))
      continue;
    seen.insert(entry.interface);
    choices.append(choice(tr("%1 · %2").arg(nameOf(entry), entry.address), entry.interface));
  }
  if (seen.size() < 2)
    return {};
  if (!preferred.isEmpty() && !seen.contains(preferred))
    choices.append(choice(tr("%1（未连接）").arg(preferred), preferred));
  return choices;
}

QVariantList Phrases::hotKeyChoices(const QVariantList &presets) {
  QVariantList choices{choice(tr("不使用"), -1)};
  for (const auto &each : presets)
    choices.append(choice(each.toMap().value("title").toString(), each.toMap().value("id")));
  return choices;
}

QString Phrases::curlCommand(const QString &uploadURL) {
  if (uploadURL.isEmpty())
    return {};
  return "curl --data-binary @photo.jpg \"" + uploadURL + "\"";
}

} // namespace quarrow
