#pragma once

#include <QString>
#include <QStringList>
#include <QTranslator>

#include <memory>

namespace quarrow {

// Returns the translation into the first of `languages` ("de-DE", "eo"; best first) that has a catalogue in
// `folder`, named tevrin_<language>.qm. Returns null if that language is Chinese, the language of the
// sources, or if there is no catalogue. Any thread.
[[nodiscard]] std::unique_ptr<QTranslator> catalogueFor(const QStringList &languages,
                                                        const QString &folder = ":/i18n");

} // namespace quarrow
