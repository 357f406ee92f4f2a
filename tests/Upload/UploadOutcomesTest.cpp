#include "FennickCore/Upload/UploadQuery.h"
#include "tests/Upload/UploadStage.h"

#include <array>
#include <fstream>
#include <functional>
#include <latch>
#include <thread>
#include <tuple>

namespace fennick {
namespace {

using test::kJPEG;
using test::Operation;
using Outcome = UploadOutcomes::Outcome;
using Saved = UploadOutcomes::Saved;

std::string idOf(std::size_t number) { return fmt::format("{:032x}", number); }
std::string headerOf(std::size_t number) { return fmt::format("x-upload-id: {}\r\n", idOf(number)); }

class UploadOutcomesTest : public test::UploadStage {
protected:
  std::string query(std::size_t number) {
    const std::string answer = ask(fmt::format("GET /quota?k=secret&upload={}", idOf(number)));
    const std::size_t at = answer.find(R"("uploads":)");
    return at == std::string::npos ? answer : answer.substr(at + 10);
  }
  std::string offer(std::size_t number, std::string_view length = "10") {
    return ask("POST /upload?k=secret", fmt::format("Content-Length: {}\r\n{}", length, headerOf(number)));
  }
  static std::string answer(std::size_t number, std::string_view outcome) {
    return fmt::format(R"({{"{}":{}}}}})", idOf(number), outcome);
  }
  static std::string unknown(std::size_t number) { return answer(number, R"({"state":"unknown"})"); }
  static std::string rejected(std::size_t number, int status, std::string_view text) {
    return answer(number, fmt::format(R"({{"state":"rejected","status":{},"text":"{}"}})", status, text));
  }
};

TEST_F(UploadOutcomesTest, TracksAnUploadAndSavesItOnce) {
  EXPECT_EQ(query(1), unknown(1));
  auto sink = admit(kJPEG.size(), headerOf(1));
  ASSERT_TRUE(sink->write(std::as_bytes(std::span(kJPEG).first(7))));
  EXPECT_EQ(query(1), answer(1, R"({"state":"receiving","bytes":7})"));
  EXPECT_TRUE(offer(1).starts_with("respond 409 "));
  EXPECT_EQ(query(1), answer(1, R"({"state":"receiving","bytes":7})")); // the repeated upload changed nothing
  EXPECT_EQ(finish(std::move(sink), std::string_view(kJPEG).substr(7)), "200 IMG_001.jpg");
  EXPECT_EQ(query(1), answer(1, R"({"state":"saved","name":"IMG_001.jpg"})"));

  policy = {.folderLimit = 1, .autoPrune = false}; // would refuse a new photo
  remote = "192.168.1.99";
  EXPECT_EQ(offer(1), "respond 200 IMG_001.jpg");
  EXPECT_EQ(photos().size(), 1);
  EXPECT_EQ(reported().size(), 1);
}

TEST_F(UploadOutcomesTest, KeepsARefusalUntilTheUploadIsTriedAgain) {
  const auto send = [&](std::string_view body) { upload(body, headerOf(1)); };
  const std::tuple<int, std::string, std::function<void()>> refusals[] = {
      {413, "文件太大 / too large (limit 1000000 bytes)", [&] { offer(1, "1000001"); }},
      {415, "不支持的文件类型，只接收照片和视频 / Unsupported file type; photos and videos only",
       [&] { send("no photo at all"); }},
      {500, "write failed",
       [&] {
         files.failNext(Operation::write, ENOSPC);
         send(kJPEG);
       }},
      {507, "Mac 磁盘空间不足，已停止接收 / Not enough disk space on the Mac",
       [&] {
         files.setAvailableBytes(0);
         offer(1);
         files.setAvailableBytes(100'000'000'000);
       }},
      {403, "文件夹已满（上限 0 张）/ Folder is full (limit 0)", [&] {
         policy = {.folderLimit = 0, .autoPrune = false};
         offer(1);
         policy = {};
       }}};
  for (const auto &[status, text, refuse] : refusals) {
    refuse();
    EXPECT_EQ(query(1), rejected(1, status, text));
  }
  EXPECT_EQ(upload(kJPEG, headerOf(1)), "200 IMG_001.jpg");
  EXPECT_EQ(query(1), answer(1, R"({"state":"saved","name":"IMG_001.jpg"})"));
}

TEST_F(UploadOutcomesTest, ForgetsInterruptedAndUnauthorisedUploads) {
  admit(kJPEG.size(), headerOf(1))->abort();
  EXPECT_EQ(query(1), unknown(1));
  EXPECT_TRUE(ask("POST /upload?k=wrong", headerOf(2)).starts_with("reject 403"));
  EXPECT_EQ(query(2), unknown(2));
  for (const char *malformed :
       {"", "12", "0123456789ABCDEF0123456789ABCDEF", "0123456789abcdef0123456789abcdef0"})
    EXPECT_EQ(ask("POST /upload?k=secret", fmt::format("x-upload-id: {}\r\n", malformed)),
              "respond 400 x-upload-id must be 32 hexadecimal digits");
}

TEST_F(UploadOutcomesTest, AdmitsOneOfTwoEqualUploads) {
  for (std::size_t number = 1; number <= 50; ++number) {
    std::latch together(2);
    std::array<HTTPRouteDecision, 2> decisions;
    {
      std::vector<std::jthread> phones;
      for (auto &decision : decisions)
        phones.emplace_back([&] {
          together.arrive_and_wait();
          decision = decide("POST /upload?k=secret", "Content-Length: 9\r\n" + headerOf(number));
        });
    }
    EXPECT_NE(std::holds_alternative<HTTPReceive>(decisions[0]),
              std::holds_alternative<HTTPReceive>(decisions[1]));
  }
}

TEST_F(UploadOutcomesTest, ExtendsTheStatusOnlyOnRequest) {
  const std::string plain = R"(respond 200 {"gallery":false,"video":true,"diskLow":false)";
  EXPECT_EQ(ask("GET /quota?k=secret"), plain + "}");
  EXPECT_EQ(ask("GET /quota?k=secret&upload="),
            plain + R"(,"maxBytes":1000000,"roomBytes":99000000000,"uploads":{}})");
  files.setAvailableBytes(5);
  EXPECT_TRUE(ask("GET /quota?k=secret&upload=").contains(R"("roomBytes":0)"));
  std::string list = idOf(0);
  for (std::size_t i = 1; i < UploadQuery::kMostIDs; ++i)
    list += "," + idOf(i);
  EXPECT_TRUE(ask("GET /quota?k=secret&upload=" + list).starts_with("respond 200"));
  for (const auto &wrong : {list + "," + idOf(99), std::string("12"), idOf(1) + ","})
    EXPECT_TRUE(ask("GET /quota?k=secret&upload=" + wrong).starts_with("respond 400")) << wrong;
}

TEST_F(UploadOutcomesTest, KnowsSavedUploadsInTheNextRun) {
  const auto file = disk / "state/uploads.jsonl";
  const auto saved = [](std::size_t number) { return Outcome(Saved{fmt::format("IMG_{}.jpg", number)}); };
  const auto save = [&](UploadOutcomes &run, std::size_t number) {
    run.begin(idOf(number))->answered(HTTPResponse::text(200, fmt::format("IMG_{}.jpg", number)));
  };
  const std::size_t many = 5 * UploadOutcomes::kMost;
  {
    UploadOutcomes run(file);
    for (std::size_t number = 0; number < many; ++number)
      save(run, number);
    EXPECT_EQ(run.at(idOf(0)), Outcome());
    EXPECT_EQ(run.at(idOf(many - UploadOutcomes::kMost)), saved(many - UploadOutcomes::kMost));
  }
  EXPECT_LT(std::filesystem::file_size(file), 4 * UploadOutcomes::kMost * 70);
  std::ofstream(file, std::ios::app) << R"({"id":"0000)"; // as after a crash while writing
  {
    UploadOutcomes run(file);
    EXPECT_EQ(run.at(idOf(many - 1)), saved(many - 1));
    save(run, many);
  }
  EXPECT_EQ(UploadOutcomes(file).at(idOf(many)), saved(many));
}

TEST_F(UploadOutcomesTest, FindsUploadsMovedBeforeACrash) {
  const auto file = disk / "state/uploads.jsonl";
  UploadOutcomes killed(file);
  std::vector<UploadOutcomes::Attempt> attempts;
  const auto place = [&](std::size_t number) {
    attempts.push_back(killed.begin(idOf(number)).value());
    const auto part = disk.write(fmt::format("{}.part", number), kJPEG);
    attempts.back().willAppear(part, disk / fmt::format("{}.jpg", number));
    return part;
  };
  std::filesystem::rename(place(1), disk / "1.jpg");
  place(2);
  place(3);
  disk.write("3.jpg", "somebody else's photo");
  UploadOutcomes next(file);
  EXPECT_EQ(next.at(idOf(1)), Outcome(Saved{"1.jpg"}));
  EXPECT_EQ(next.at(idOf(2)), Outcome());
  EXPECT_EQ(next.at(idOf(3)), Outcome());
  std::filesystem::remove(disk / "1.jpg");
  EXPECT_EQ(UploadOutcomes(file).at(idOf(1)), Outcome(Saved{"1.jpg"})); // recorded by now
}

TEST_F(UploadOutcomesTest, AcceptsUploadsIfTheRecordCannotBeWritten) {
  UploadOutcomes run(disk.write("occupied") / "uploads.jsonl");
  run.begin(idOf(1))->answered(HTTPResponse::text(200, "IMG_1.jpg"));
  EXPECT_EQ(run.at(idOf(1)), Outcome(Saved{"IMG_1.jpg"}));
}

TEST_F(UploadOutcomesTest, CountsAFormerKeyOncePerBurst) {
  const auto counts = [&](const std::string &target) {
    const auto decision = decide("GET " + target);
    return std::get<HTTPReject>(decision).failure == HTTPReject::Failure::counted;
  };
  EXPECT_TRUE(counts("/thumb/a.jpg?k=former"));
  EXPECT_FALSE(counts("/thumb/b.jpg?k=former"));
  EXPECT_FALSE(counts("/?k=former"));
  EXPECT_TRUE(counts("/quota?k=guess"));
  EXPECT_TRUE(counts("/quota?k=guess"));
  EXPECT_TRUE(counts("/quota"));
  remote = "192.168.1.21";
  EXPECT_TRUE(counts("/quota?k=former"));
  clock.advance(Seconds(10));
  EXPECT_TRUE(counts("/quota?k=former"));
}

} // namespace
} // namespace fennick
