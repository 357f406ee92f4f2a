#include "FennickCore/Platform/Text.h"

#include "FennickCore/Platform/PathComponent.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>

namespace fennick {
namespace {

using namespace std::literals;

std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

TEST(Text, PercentEscapesAreDecodedWholeOrNotAtAll) {
  const std::pair<std::string_view, std::optional<std::string>> cases[]{
      {"", ""},
      {"a%20b%2Bc+d", "a b+c+d"},
      {"%e7%85%A7%E7%89%87", "照片"},
      {"a%00b", "a\0b"s},
      {"50%", std::nullopt},
      {"50%2", std::nullopt},
      {"%zz", std::nullopt},
      {"%+1", std::nullopt},
      {"%C3%28", std::nullopt}, // decodes to bytes that are not UTF-8
      {"\xC3", std::nullopt},
  };
  for (const auto &[text, decoded] : cases)
    EXPECT_EQ(percentDecoded(text), decoded) << text;
}

TEST(Text, UTF8IsJudgedByEveryByte) {
  for (const auto valid : {std::string_view(), "a\0b"sv, "照片 é 😀"sv, "\xF4\x8F\xBF\xBF"sv})
    EXPECT_TRUE(isValidUTF8(valid)) << valid;
  // Cut short, overlong, a surrogate, past the last character, a lone continuation, after a NUL.
  for (const auto invalid :
       {"\xE7\x85"sv, "\xC0\xAF"sv, "\xED\xA0\x80"sv, "\xF4\x90\x80\x80"sv, "\x80"sv, "a\0\xFF"sv})
    EXPECT_FALSE(isValidUTF8(invalid));
}

TEST(Text, AnythingCanBeShown) {
  EXPECT_EQ(displayText(""), "");
  EXPECT_EQ(displayText({}), "");
  EXPECT_EQ(displayText("照片"), "照片");
  EXPECT_EQ(displayText("a\xFF-b"), "a\xEF\xBF\xBD-b");
  EXPECT_EQ(utf8FromLatin1("caf\xE9"), "café");
}

TEST(Text, Base64GivesBackWhatItWasGiven) {
  EXPECT_EQ(base64(bytesOf("照片")), "54Wn54mH");
  std::string text;
  for (int length = 0; length < 20; ++length) {
    const auto decoded = base64Decoded(base64(bytesOf(text)));
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(std::ranges::equal(*decoded, bytesOf(text))) << length;
    text += static_cast<char>(length * 37 + 200);
  }
}

TEST(Text, Base64OfAnyOtherSpellingIsRejected) {
  for (const std::string_view text : {"=", "====", "A", "AA", "AAA", "AA=", "AA===", "AB==", "AAB=", "A=AA",
                                      "AAAA====", "AA==AAAA", "AA AA", "AAAA\n", "AA-_"})
    EXPECT_FALSE(base64Decoded(text)) << text;
}

TEST(Text, FileSizesChangeUnitBeforeTheyWouldRoundToAThousand) {
  const std::pair<std::int64_t, std::string_view> cases[]{
      {0, "0 KB"},
      {1, "1 字节"},
      {999, "999 字节"},
      {1000, "1 KB"},
      {12'345, "12 KB"},
      {999'499, "999 KB"},
      {999'999, "1 MB"},
      {2'400'000, "2.4 MB"},
      {999'940'000, "999.9 MB"},
      {999'960'000, "1 GB"},
      {1'250'000'000, "1.25 GB"},
      {999'999'999'999, "1 TB"},
      {std::numeric_limits<std::int64_t>::max(), "9223372.04 TB"},
  };
  for (const auto &[bytes, text] : cases)
    EXPECT_EQ(fileSizeText(bytes), text) << bytes;
}

TEST(PathComponent, ANameCannotLeaveItsFolder) {
  for (const auto &name : {"IMG_1.jpg"s, "..."s, " "s, "照片"s, "a\\b"s, std::string(255, 'x')})
    EXPECT_TRUE(PathComponent::make(name)) << name;
  for (const auto &name : {""s, "."s, ".."s, "/"s, "a/b"s, "../a"s, "a\0.jpg"s, std::string(256, 'x')})
    EXPECT_FALSE(PathComponent::make(name)) << name;
}

TEST(PathComponent, ExtensionsAreLowerCasedAndNeedAName) {
  EXPECT_EQ(lowerCasedExtension("a.b.JPEG"), "jpeg");
  for (const auto *without : {"a", "a.", ".jpg", ""})
    EXPECT_EQ(lowerCasedExtension(without), "") << without;
}

} // namespace
} // namespace fennick
