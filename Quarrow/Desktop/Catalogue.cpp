#include "Quarrow/Desktop/Catalogue.h"

namespace quarrow {

namespace {

bool isSourceLanguage(const QString &language) { return language == "zh" || language.startsWith("zh-"); }

} // namespace

std::unique_ptr<QTranslator> catalogueFor(const QStringList &languages, const QString &folder) {
  for (QString language : languages) {
    if (isSourceLanguage(language))
      return nullptr;
    auto catalogue = std::make_unique<QTranslator>();
    if (catalogue->load("tevrin_" + language.replace(u'-', u'_'), folder))
      return catalogue;
  }
  return nullptr;
}

} // namespace quarrow
