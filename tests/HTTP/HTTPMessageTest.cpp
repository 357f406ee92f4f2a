#include "FennickCore/HTTP/Compression.h"
#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "FennickCore/HTTP/HTTPResponse.h"

#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <tuple>

namespace fennick {
namespace {

using namespace std::literals;
using ::testing::ElementsAre;
using ::testing::Pair;
using enum HTTPParseError;

HTTPRequestHead headWith(const std::string &lines) {
  return HTTPRequestHead::parse("GET / HTTP/1.1\r\n" + lines).value();
}

TEST(HTTPRequestHead, RequiresExactlyThreeWordsInTheRequestLine) {
  const HTTPRequestHead get{.method = "GET", .path = "/x", .query = {}, .headers = {}};
  for (const auto line : {"get /x HTTP/1.0\r\n\r\n"sv, "  GET   /x HTTP/1.1 "sv, "GET /x HTTP/1.1\n"sv})
    EXPECT_EQ(HTTPRequestHead::parse(line), get) << line;
  const std::pair<std::string_view, HTTPParseError> refused[]{
      {"\r\nGET /x HTTP/1.1", malformedRequestLine},       {"GET /x", malformedRequestLine},
      {"GET /a b HTTP/1.1", malformedRequestLine},         {"GET /x HTTP/2", unsupportedVersion},
      {"GET /x HTTP/1.1\nHost:a\r\n", unsupportedVersion}, // with one CRLF, a bare LF no longer ends lines
      {"GET /x HTTP/1.1\r\nno colon", malformedHeader},    {"GET /x HTTP/1.1\r\n \t: value", malformedHeader},
  };
  for (const auto &[text, error] : refused)
    EXPECT_EQ(HTTPRequestHead::parse(text), std::unexpected(error)) << text;
}

TEST(HTTPRequestHead, SplitsTheTargetAndDecodesOnlyTheQuery) {
  const std::tuple<std::string, std::string, std::map<std::string, std::string>> cases[]{
      {"/a%20b?key=a%2Bb+c", "/a%20b", {{"key", "a+b c"}}},
      {"/p?a=1&&b=2&=v&k", "/p", {{"a", "1"}, {"b", "2"}, {"k", ""}}},
      {"/p?a=1&a=b=c?d&%62=%E7%85%A7", "/p", {{"a", "b=c?d"}, {"b", "照"}}},
      {"/p?key=50%&a+b%=c+%C3%28", "/p", {{"key", "50%"}, {"a+b%", "c+%C3%28"}}}, // broken: as it came
  };
  for (const auto &[target, path, query] : cases) {
    const auto head = HTTPRequestHead::parse("GET " + target + " HTTP/1.1").value();
    EXPECT_EQ(head.path, path);
    EXPECT_EQ(head.query, query) << target;
  }
}

TEST(HTTPRequestHead, TrimsHeadersAndKeepsTheLastOfAName) {
  EXPECT_THAT(
      headWith("X-Key:  abc  \r\nhost: a:8080\r\n\r\nCookie: 1\r\nCOOKIE :\t2\r\nempty:").headers,
      ElementsAre(Pair("cookie", "2"), Pair("empty", ""), Pair("host", "a:8080"), Pair("x-key", "abc")));
  EXPECT_EQ(headWith("X-Name: 照片").header("x-NAME"), "照片");
  // One byte that is not UTF-8 makes the whole head Latin-1.
  EXPECT_EQ(headWith("A: \xFF\r\nB: \xC3\xA9").header("b"), "Ã©");
  EXPECT_EQ(headWith("X-\x01Na\0me: a\nb\0c"s).header("x-\x01na\0me"sv), "a\nb\0c"s);
}

TEST(HTTPRequestHead, ReadsTheBodyLengthAsSigned64BitNumber) {
  for (const auto &[value, length] : {std::pair(" 42 ", 42L), std::pair("-1", -1L), std::pair("+7", 7L),
                                      std::pair("9223372036854775807", 9223372036854775807L)})
    EXPECT_EQ(headWith("Content-Length:"s + value).contentLength(), length) << value;
  for (const auto *value : {"9223372036854775808", "18446744073709551617", "-9223372036854775809", "42abc",
                            "4 2", "42, 42", "+-1", "-", "0x10", ""})
    EXPECT_EQ(headWith("Content-Length:"s + value).contentLength(), std::nullopt) << value;
}

TEST(HTTPRequestHead, ReadsBodyHeadersInAnyCase) {
  EXPECT_EQ(headWith("Content-Type: Image/JPEG ; charset=x").contentType(), "image/jpeg");
  EXPECT_TRUE(headWith("Transfer-Encoding: gzip, Chunked").isChunked());
  EXPECT_TRUE(headWith("Expect: 100-Continue").expectsContinue());
  EXPECT_FALSE(headWith("Expect: 100-continue, x").expectsContinue());
}

TEST(HTTPResponse, SerialisesExactBytes) {
  EXPECT_EQ(HTTPResponse::notFound().serialise(true),
            "HTTP/1.1 404 Not Found\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: 9\r\n"
            "Cache-Control: no-store\r\nConnection: close\r\n\r\n");
  EXPECT_EQ(HTTPResponse::json({{"b", 1}, {"a", "照"}}).serialise(false),
            "HTTP/1.1 200 OK\r\nContent-Type: application/json; charset=utf-8\r\n"
            "X-Content-Type-Options: nosniff\r\nContent-Length: 17\r\nCache-Control: no-store\r\n"
            "Connection: close\r\n\r\n{\"b\":1,\"a\":\"照\"}");
  EXPECT_EQ(HTTPResponse::page("<p>", "n0nce").serialise(false),
            "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\n"
            "Content-Security-Policy: default-src 'none'; script-src 'nonce-n0nce'; style-src 'nonce-n0nce'; "
            "img-src 'self' blob:; connect-src 'self'; media-src 'self' blob:; base-uri 'none'; "
            "form-action 'none'; frame-ancestors 'none'\r\n"
            "X-Content-Type-Options: nosniff\r\nX-Frame-Options: DENY\r\nReferrer-Policy: no-referrer\r\n"
            "Content-Length: 3\r\nCache-Control: no-store\r\nConnection: close\r\n\r\n<p>");
  EXPECT_TRUE(HTTPResponse::json({{"a", "\xFF"}}).serialise(false).ends_with("\r\n\r\n{}"));
}

TEST(HTTPResponse, PreventsHeaderInjectionAndKeepsTheCallersCaching) {
  auto response = HTTPResponse::text(418, "");
  response.headers.emplace_back("X-A\r\nSet-Cookie: a", "b\r\nSet-Cookie: c\n\rd\0e\x7F"s);
  response.headers.emplace_back("cache-control", "max-age=60");
  EXPECT_EQ(response.serialise(true),
            "HTTP/1.1 418 Unknown\r\nContent-Type: text/plain; charset=utf-8\r\n"
            "X-A  Set-Cookie: a: b  Set-Cookie: c  d e \r\ncache-control: max-age=60\r\n"
            "Content-Length: 0\r\nConnection: close\r\n\r\n");
}

TEST(HTTPResponse, SendsRegularFilesAsAttachmentsWithEncodedNames) {
  const test::TemporaryFolder folder;
  const auto file = folder.write("IMG 1.jpg", "12345");
  EXPECT_EQ(HTTPResponse::file(file, "image/jpeg").value().serialise(false),
            "HTTP/1.1 200 OK\r\nContent-Type: image/jpeg\r\nX-Content-Type-Options: nosniff\r\n"
            "Content-Disposition: attachment; filename*=UTF-8''IMG%201%2Ejpg\r\nContent-Length: 5\r\n"
            "Cache-Control: no-store\r\nConnection: close\r\n\r\n");
  const std::pair<std::string, std::string> names[]{{"照片 é.heic", "照片%20é%2Eheic"},
                                                    {"a-b_c~", "a%2Db%5Fc%7E"},
                                                    {"x\"\r\nY: z", "x%22%0D%0AY%3A%20z"},
                                                    {"\xFF.jpg", "file"}};
  for (const auto &[name, encoded] : names)
    EXPECT_EQ(HTTPResponse::file(file, "image/jpeg", name).value().headers.back().second,
              "attachment; filename*=UTF-8''" + encoded);
  std::filesystem::create_symlink(file, folder / "link.jpg");
  EXPECT_FALSE(HTTPResponse::file(folder / "link.jpg", "image/jpeg"));
}

TEST(Compression, IsUsedOnlyForClientsThatAcceptGzip) {
  const std::pair<std::string, bool> cases[] = {
      {"", false},         {"gzip, deflate, br", true}, {"br;q=1.0, GZIP;q=0.8", true},
      {"gzip;q=0", false}, {"gzip;q=0.0, *", false},    {"*", true},
      {"*;q=0", false},    {"identity, x-gzip", false}};
  for (const auto &[value, isAccepted] : cases)
    EXPECT_EQ(acceptsGzip(HTTPRequestHead::parse("GET / HTTP/1.1\r\nAccept-Encoding: " + value).value()),
              isAccepted)
        << value;
  EXPECT_FALSE(acceptsGzip(HTTPRequestHead::parse("GET / HTTP/1.1").value()));

  const auto answer = gzipped(HTTPResponse::html(std::string(100'000, 'x')));
  EXPECT_TRUE(answer.body.starts_with("\x1F\x8B"));
  EXPECT_LT(answer.body.size(), 1000);
  EXPECT_TRUE(answer.serialise(true).contains("\r\nContent-Encoding: gzip\r\nVary: Accept-Encoding\r\n"));
}

} // namespace
} // namespace fennick
