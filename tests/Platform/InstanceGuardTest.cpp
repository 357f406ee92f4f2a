#include "FennickCore/Platform/Processes/InstanceGuard.h"

#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Arguments = InstanceGuard::Arguments;

class InstanceGuardTest : public ::testing::Test {
protected:
  [[nodiscard]] std::optional<InstanceGuard> claim() const {
    auto guard = InstanceGuard::claim(state, "tevrin");
    EXPECT_TRUE(guard) << guard.error().message();
    return guard ? std::move(*guard) : std::nullopt;
  }
  // Returns "delivered", or the error.
  [[nodiscard]] std::string handOver(const Arguments &arguments) const {
    const auto done = InstanceGuard::handOver(state, "tevrin", arguments);
    return done ? "delivered" : done.error().message();
  }
  // Returns a socket connected to the running instance, as any program could make one.
  [[nodiscard]] FileDescriptor connected() const {
    FileDescriptor fd(::socket(AF_UNIX, SOCK_DGRAM, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    std::ranges::copy((state / "tevrin.socket").string(), std::begin(address.sun_path));
    EXPECT_EQ(::connect(fd.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    return fd;
  }
  static void send(const FileDescriptor &to, std::string_view text) {
    EXPECT_EQ(::send(to.get(), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
  }
  static mode_t modeOf(const fs::path &file) {
    struct stat status{};
    EXPECT_EQ(::lstat(file.c_str(), &status), 0) << file;
    return status.st_mode & 07777;
  }

  test::TemporaryFolder folder;
  fs::path state = folder / "share/state";
};

TEST_F(InstanceGuardTest, ForwardsArgumentsToTheRunningInstance) {
  EXPECT_EQ(handOver({}), "No such file or directory");
  std::optional<InstanceGuard> first = claim();
  ASSERT_TRUE(first);
  EXPECT_EQ(claim(), std::nullopt);
  EXPECT_EQ(modeOf(state), 0700U);
  EXPECT_EQ(modeOf(state / "tevrin.socket"), 0600U);
  EXPECT_THAT(first->receive(), IsEmpty());

  const Arguments odd{"--set", "", "照片\n\"1\"", std::string("a\0b", 3)};
  const Arguments largest{std::string(InstanceGuard::kLargestHandOver - 4, 'x')};
  EXPECT_EQ(handOver(odd), "delivered");
  EXPECT_EQ(handOver({}), "delivered");
  EXPECT_EQ(handOver(largest), "delivered");
  EXPECT_EQ(handOver({largest[0] + "x"}), "Message too long");
  EXPECT_EQ(handOver({"\xFF"}), "Invalid or incomplete multibyte or wide character");
  const InstanceGuard moved = std::move(*first);
  first.reset();
  EXPECT_THAT(moved.receive(), ElementsAre(odd, Arguments(), largest));
  EXPECT_TRUE(InstanceGuard::claim(state, "other").value()); // another name is another program
}

TEST_F(InstanceGuardTest, StartsAfterAKilledInstance) {
  int ready[2];
  ASSERT_EQ(::pipe(ready), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    const auto guard = InstanceGuard::claim(state, "tevrin");
    const char held = guard && *guard ? 'y' : 'n';
    std::ignore = ::write(ready[1], &held, 1);
    while (true)
      ::pause();
  }
  char held = 0;
  ASSERT_EQ(::read(ready[0], &held, 1), 1);
  EXPECT_EQ(held, 'y');
  EXPECT_EQ(claim(), std::nullopt);
  EXPECT_EQ(handOver({"1"}), "delivered");
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  EXPECT_EQ(handOver({"2"}), "Connection refused");
  const auto next = claim();
  ASSERT_TRUE(next);
  EXPECT_EQ(handOver({"3"}), "delivered");
  EXPECT_THAT(next->receive(), ElementsAre(Arguments{"3"}));
}

TEST_F(InstanceGuardTest, DropsMalformedMessages) {
  const auto guard = claim();
  ASSERT_TRUE(guard);
  const auto stranger = connected();
  for (const std::string &garbage :
       {std::string(), std::string("[\"cut"), std::string(R"(["a", 1])"), std::string(R"({"a": "b"})"),
        std::string("[\"\xFF\"]"), std::string(50'000, '['), "[\"" + std::string(70'000, 'x') + "\"]"})
    send(stranger, garbage);
  EXPECT_EQ(handOver({"after"}), "delivered");
  EXPECT_THAT(guard->receive(), ElementsAre(Arguments{"after"}));
}

TEST_F(InstanceGuardTest, IgnoresInstancesOfOtherUsers) {
  if (::geteuid() != 0)
    GTEST_SKIP() << "only the superuser can become somebody else";
  constexpr uid_t kNobody = 65534;
  const auto guard = claim();
  ASSERT_TRUE(guard);
  const auto stranger = connected(); // connected before access to the directory is withdrawn
  const pid_t child = ::fork();
  if (child == 0) {
    const std::string_view text = R"(["evil"])";
    const bool sent = ::setresuid(kNobody, kNobody, kNobody) == 0 &&
                      ::send(stranger.get(), text.data(), text.size(), 0) > 0;
    ::_exit(sent ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_EQ(status, 0);
  EXPECT_THAT(guard->receive(), IsEmpty());
  ASSERT_EQ(::chown((state / "tevrin.socket").c_str(), kNobody, kNobody), 0);
  EXPECT_EQ(handOver({"secret"}), "Permission denied");
}

} // namespace
} // namespace fennick
