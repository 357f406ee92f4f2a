#include "Quarrow/Desktop/Catalogue.h"

#include <gtest/gtest.h>

namespace quarrow {
namespace {

TEST(CatalogueTest, UsesTheFirstLanguageWithACatalogueOrChinese) {
  const auto texts = catalogueFor({"de-DE", "eo-XX", "eo"}, TEVRIN_CATALOGUES);
  ASSERT_NE(texts, nullptr);
  EXPECT_EQ(texts->translate("Panel", "退出"), QString("Fini"));
  EXPECT_EQ(catalogueFor({"zh-Hant-TW", "eo"}, TEVRIN_CATALOGUES), nullptr);
  EXPECT_EQ(catalogueFor({"zh", "eo"}, TEVRIN_CATALOGUES), nullptr);
  EXPECT_EQ(catalogueFor({"de-DE", "fr"}, TEVRIN_CATALOGUES), nullptr);
}

} // namespace
} // namespace quarrow
