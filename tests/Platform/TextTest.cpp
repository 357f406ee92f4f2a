#include "FennickCore/Support/Text.h"

#include "FennickCore/Platform/Files/PathComponent.h"
#include "FennickCore/Platform/System/Log.h"

#include <gtest/gtest.h>

namespace fennick {
namespace {

using namespace std::literals;

TEST(Text, ValidatesUTF8) {
  for (const auto valid : {""sv, "a\0b"sv, "照片 é 😀"sv, "\xF4\x8F\xBF\xBF"sv})
    EXPECT_TRUE(isValidUTF8(valid)) << valid;
  // Truncated, overlong, a surrogate, past the last character, a lone continuation, after a NUL.
  for (const auto invalid :
       {"\xE7\x85"sv, "\xC0\xAF"sv, "\xED\xA0\x80"sv, "\xF4\x90\x80\x80"sv, "\x80"sv, "a\0\xFF"sv})
    EXPECT_FALSE(isValidUTF8(invalid));
  for (const auto broken : {"50%", "50%2", "%+1", "%C3%28"})
    EXPECT_EQ(percentDecoded(broken), std::nullopt) << broken;
}

TEST(Text, ChangesTheUnitBeforeRoundingToAThousand) {
  const std::pair<std::int64_t, std::string_view> cases[]{
      {0, "0 KB"},           {999, "999 字节"},     {999'499, "999 KB"},       {999'999, "1 MB"},
      {2'400'000, "2.4 MB"}, {999'960'000, "1 GB"}, {1'250'000'000, "1.25 GB"}};
  for (const auto &[bytes, text] : cases)
    EXPECT_EQ(fileSizeText(bytes), text) << bytes;
}

TEST(Text, PreventsPathTraversalAndForgedLogLines) {
  for (const auto &name : {""s, "."s, ".."s, "a/b"s, "../a"s, "a\0.jpg"s, std::string(256, 'x')})
    EXPECT_FALSE(PathComponent::make(name)) << name;
  EXPECT_TRUE(PathComponent::make(std::string(255, 'x')));
  std::string line;
  logTo([&](std::string_view text) { line += text; });
  log("received \"照片\r\nfennick: forged\x1B[2J\x7F\t.jpg\"");
  logTo({});
  EXPECT_EQ(line, "fennick: received \"照片  fennick: forged [2J  .jpg\"");
}

} // namespace
} // namespace fennick
