#include "FennickCore/HTTP/HTTPResponse.h"

#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace fennick {
namespace {

using namespace std::literals;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(HTTPResponse, IsSerialisedToTheByte) {
  EXPECT_EQ(HTTPResponse::notFound().serialise(false),
            "HTTP/1.1 404 Not Found\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: 9\r\n"
            "Cache-Control: no-store\r\nConnection: close\r\n\r\nnot found");
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
  EXPECT_THAT(HTTPResponse::text(418, "").serialise(false), StartsWith("HTTP/1.1 418 Unknown\r\n"));
  EXPECT_THAT(HTTPResponse::json({{"a", "\xFF"}}).serialise(false), EndsWith("\r\n\r\n{}"));
}

TEST(HTTPResponse, TheHeadAloneAnnouncesTheWholeLength) {
  const auto head = HTTPResponse::text(200, std::string(1 << 20, 'x')).serialise(true);
  EXPECT_THAT(head, AllOf(HasSubstr("Content-Length: 1048576\r\n"), EndsWith("\r\n\r\n")));
}

TEST(HTTPResponse, TheCallersOwnCachingRuleStandsAlone) {
  auto response = HTTPResponse::html("");
  response.headers.emplace_back("cache-control", "max-age=60");
  EXPECT_THAT(response.serialise(false),
              AllOf(HasSubstr("cache-control: max-age=60\r\n"), Not(HasSubstr("no-store"))));
}

TEST(HTTPResponse, NoHeaderCanBeginALineOfItsOwn) {
  auto response = HTTPResponse::text(200, "");
  const auto lines = [&] { return std::ranges::count(response.serialise(true), '\n'); };
  const auto before = lines();
  response.headers.emplace_back("X-A\r\nSet-Cookie: a", "b\r\nSet-Cookie: c\n\rd\0e\x7F"s);
  EXPECT_EQ(lines(), before + 1);
  EXPECT_THAT(response.serialise(true), HasSubstr("\r\nX-A  Set-Cookie: a: b  Set-Cookie: c  d e \r\n"));
}

TEST(HTTPResponse, DownloadsAreAttachmentsUnderAnEncodedName) {
  const test::TemporaryFolder folder;
  const auto file = folder.write("IMG 1.jpg", "12345");
  const auto dispositionOf = [&](const std::optional<std::string> &name) {
    return HTTPResponse::file(file, "image/jpeg", name).value().headers.back().second;
  };
  const auto response = HTTPResponse::file(file, "image/jpeg").value();
  EXPECT_EQ(response.serialise(false),
            "HTTP/1.1 200 OK\r\nContent-Type: image/jpeg\r\nX-Content-Type-Options: nosniff\r\n"
            "Content-Disposition: attachment; filename*=UTF-8''IMG%201%2Ejpg\r\nContent-Length: 5\r\n"
            "Cache-Control: no-store\r\nConnection: close\r\n\r\n");

  const std::pair<std::string, std::string> names[]{
      {"照片 é.heic", "照片%20é%2Eheic"},
      {"a-b_c~", "a%2Db%5Fc%7E"},
      {"x\"\r\nY: z", "x%22%0D%0AY%3A%20z"},
      {"😀", "%F0%9F%98%80"},
      {"\xFF.jpg", "file"},
      {"", ""},
  };
  for (const auto &[name, encoded] : names)
    EXPECT_EQ(dispositionOf(name), "attachment; filename*=UTF-8''" + encoded) << name;
}

TEST(HTTPResponse, WhatIsNoRegularFileIsNotOffered) {
  const test::TemporaryFolder folder;
  std::filesystem::create_symlink(folder.write("a.jpg"), folder / "link.jpg");
  for (const auto *name : {"missing.jpg", "link.jpg", ""})
    EXPECT_FALSE(HTTPResponse::file(folder / name, "image/jpeg")) << name;
}

} // namespace
} // namespace fennick
