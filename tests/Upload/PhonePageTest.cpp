#include "tests/Upload/UploadStage.h"

#include <regex>

namespace fennick {
namespace {

class PhonePageTest : public test::UploadStage {
protected:
  HTTPResponse page() { return std::get<HTTPRespond>(decide("GET /?k=secret")).response; }

  // The nonce that the page's policy allows.
  static std::string allowedNonce(const HTTPResponse &page) {
    for (const auto &[name, value] : page.headers)
      if (std::smatch found;
          name == "Content-Security-Policy" &&
          std::regex_search(value, found, std::regex("script-src 'nonce-([A-Za-z0-9+/]{22}==)'")))
        return found[1];
    return "none";
  }
};

TEST_F(PhonePageTest, EveryPageHasAFreshNonceThatItsPolicyAllows) {
  disk.write("bundle/PhonePage.html", "<script nonce=__NONCE__></script><style nonce=__NONCE__></style>");
  const HTTPResponse first = page();
  const HTTPResponse second = page();
  for (const auto &response : {first, second})
    EXPECT_EQ(response.body,
              fmt::format("<script nonce={0}></script><style nonce={0}></style>", allowedNonce(response)));
  EXPECT_NE(allowedNonce(first), allowedNonce(second));
}

TEST_F(PhonePageTest, ThePageShowsTheLimitAsItIsNow) {
  disk.write("bundle/PhonePage.html", "__MAX_BYTES__,__MAX_BYTES__");
  maxBytes = 5;
  EXPECT_EQ(page().body, "5,5");
  maxBytes = 12'345'678'901;
  EXPECT_EQ(page().body, "12345678901,12345678901");
}

TEST_F(PhonePageTest, AMissingOrUnreadableTemplateGivesTheFallbackForGood) {
  const char *fallback = "<!doctype html><p>fennick page missing</p>";
  EXPECT_EQ(page().body, fallback);
  disk.write("bundle/PhonePage.html", "late");
  EXPECT_EQ(page().body, fallback);
  EXPECT_EQ(allowedNonce(page()).size(), 24U);
  disk.write("bundle/PhonePage.html", "caf\xE9");
  EXPECT_EQ(PhonePage(disk / "bundle").html(), fallback);
}

} // namespace
} // namespace fennick
