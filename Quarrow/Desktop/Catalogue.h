#pragma once

#include <QString>
#include <QStringList>
#include <QTranslator>

#include <memory>

namespace quarrow {

// The texts of the program in the first of `languages` ("de-DE", "eo"; best first) that there is a catalogue
// for in `folder`, as tevrin_<language>.qm. Nothing where that is Chinese, in which the sources are written,
// or where there is none. Any thread.
[[nodiscard]] std::unique_ptr<QTranslator> catalogueFor(const QStringList &languages,
                                                        const QString &folder = ":/i18n");

} // namespace quarrow
