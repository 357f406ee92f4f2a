#include "FennickCore/HTTP/HTTPRequestHead.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fennick {
namespace {

using namespace std::literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using enum HTTPParseError;

HTTPRequestHead headWith(const std::string &lines) {
  return HTTPRequestHead::parse("GET / HTTP/1.1\r\n" + lines).value();
}

TEST(HTTPRequestHead, TheRequestLineIsThreeWords) {
  const HTTPRequestHead get{.method = "GET", .path = "/x", .query = {}, .headers = {}};
  for (const auto line : {"GET /x HTTP/1.1"sv, "get /x HTTP/1.0\r\n\r\n"sv, "  GET   /x HTTP/1.1 "sv,
                          "GET /x HTTP/1.1\n"sv, "GET /x HTTP/1.1\r\n\r\n\r\n"sv})
    EXPECT_EQ(HTTPRequestHead::parse(line), get) << line;

  const std::pair<std::string_view, HTTPParseError> refused[]{
      {"", malformedRequestLine},
      {"\r\n\r\n", malformedRequestLine},
      {"\r\nGET /x HTTP/1.1", malformedRequestLine},
      {"GET /x", malformedRequestLine},
      {"GET /a b HTTP/1.1", malformedRequestLine},
      {"GET\t/x\tHTTP/1.1", malformedRequestLine},
      {"GET /x HTTP/2", unsupportedVersion},
      {"GET /x http/1.1", unsupportedVersion},
      {"GET /x HTTP/1.1\nHost:a\r\n", unsupportedVersion}, // one CRLF, and a bare LF ends no line any more
      {"GET /x HTTP/1.1\r\nno colon", malformedHeader},
      {"GET /x HTTP/1.1\r\n: value", malformedHeader},
      {"GET /x HTTP/1.1\r\n \t: value", malformedHeader},
  };
  for (const auto &[text, error] : refused)
    EXPECT_EQ(HTTPRequestHead::parse(text), std::unexpected(error)) << text;
}

TEST(HTTPRequestHead, TheTargetIsSplitAndOnlyItsQueryDecoded) {
  using Pairs = std::map<std::string, std::string>;
  const struct {
    std::string_view target;
    std::string path;
    Pairs query;
  } cases[]{
      {"/upload?key=a%2Bb+c", "/upload", {{"key", "a+b c"}}},
      {"/a%20b", "/a%20b", {}},
      {"/p?", "/p", {}},
      {"/p?a=1&&b=2", "/p", {{"a", "1"}, {"b", "2"}}},
      {"/p?=v&k", "/p", {{"k", ""}}},
      {"/p?a=b=c?d", "/p", {{"a", "b=c?d"}}},
      {"/p?a=1&a=2&%61=3", "/p", {{"a", "3"}}},
      {"/p?a+b=+%E7%85%A7+", "/p", {{"a b", " 照 "}}},
      // Text with a broken escape stays as it came, its "+" as well.
      {"/p?key=50%&a+b%=c+d%zz", "/p", {{"key", "50%"}, {"a+b%", "c+d%zz"}}},
      {"/p?a=%C3%28+", "/p", {{"a", "%C3%28+"}}},
      {"../..//?x#y", "../..//", {{"x#y", ""}}},
  };
  for (const auto &[target, path, query] : cases) {
    const auto head = HTTPRequestHead::parse("GET " + std::string(target) + " HTTP/1.1").value();
    EXPECT_EQ(head.path, path) << target;
    EXPECT_EQ(head.query, query) << target;
  }
}

TEST(HTTPRequestHead, HeadersAreTrimmedAndTheLastOfANameWins) {
  EXPECT_THAT(
      headWith("X-Key:  abc  \r\nhost: a:8080\r\n\r\nCookie: 1\r\nCOOKIE :\t2\r\nempty:").headers,
      ElementsAre(Pair("cookie", "2"), Pair("empty", ""), Pair("host", "a:8080"), Pair("x-key", "abc")));
  EXPECT_EQ(headWith("X-Key: abc").header("x-KEY"), "abc");
  EXPECT_EQ(headWith("X-Key: abc").header("x-ke"), std::nullopt);
}

TEST(HTTPRequestHead, OddBytesBecomeText) {
  EXPECT_EQ(headWith("X-Name: \xE9t\xE9").header("x-name"), "été");
  EXPECT_EQ(headWith("X-Name: 照片").header("x-name"), "照片");
  // Latin-1 is all or nothing: one stray byte and every other is read so, too.
  EXPECT_EQ(headWith("A: \xFF\r\nB: \xC3\xA9").header("b"), "Ã©");
  EXPECT_EQ(headWith("X-\x01Na\0me: a\nb\0c"s).header("x-\x01na\0me"sv), "a\nb\0c"s);
}

TEST(HTTPRequestHead, TheBodyLengthIsASigned64BitNumberOrNothing) {
  const std::pair<std::string, std::optional<std::int64_t>> cases[]{
      {" 42 ", 42},
      {"-1", -1},
      {"+7", 7},
      {"9223372036854775807", 9223372036854775807},
      {"9223372036854775808", std::nullopt},
      {"18446744073709551617", std::nullopt},
      {"-9223372036854775809", std::nullopt},
      {"42abc", std::nullopt},
      {"4 2", std::nullopt},
      {"42, 42", std::nullopt},
      {"+-1", std::nullopt},
      {"++1", std::nullopt},
      {"-", std::nullopt},
      {"0x10", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto &[value, length] : cases)
    EXPECT_EQ(headWith("Content-Length:" + value).contentLength(), length) << value;
  EXPECT_EQ(headWith("").contentLength(), std::nullopt);
}

TEST(HTTPRequestHead, TheBodyIsDescribedInAnyCase) {
  EXPECT_EQ(headWith("Content-Type: Image/JPEG ; charset=x").contentType(), "image/jpeg");
  for (const auto *none : {"", "Content-Type:", "Content-Type: ;charset=x"})
    EXPECT_EQ(headWith(none).contentType(), std::nullopt) << none;
  EXPECT_TRUE(headWith("Transfer-Encoding: gzip, Chunked").isChunked());
  EXPECT_FALSE(headWith("Transfer-Encoding: gzip").isChunked());
  EXPECT_TRUE(headWith("Expect: 100-Continue").expectsContinue());
  EXPECT_FALSE(headWith("Expect: 100-continue, x").expectsContinue());
}

} // namespace
} // namespace fennick
