#include "FennickCore/Platform/Processes/InstanceGuard.h"

#include "FennickCore/Platform/Processes/MessageSocket.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <filesystem>

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

  test::TemporaryFolder folder;
  fs::path state = folder / "share/state";
};

TEST_F(InstanceGuardTest, ForwardsArgumentsToTheRunningInstance) {
  EXPECT_EQ(handOver({}), "No such file or directory");
  std::optional<InstanceGuard> first = claim();
  ASSERT_TRUE(first);
  EXPECT_EQ(claim(), std::nullopt);
  EXPECT_EQ(fs::status(state).permissions(), fs::perms(0700));
  EXPECT_EQ(fs::status(state / "tevrin.socket").permissions(), fs::perms(0600));
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
  EXPECT_EQ(InstanceGuard::claim(state, std::string(101, 'n')).error(), std::errc::filename_too_long);
}

TEST_F(InstanceGuardTest, StartsAfterAKilledInstanceInALongDirectory) {
  for (int level = 0; level < 4; ++level)
    state /= std::string(200, 'd');
  state /= ""; // a path that ends in a slash
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

TEST_F(InstanceGuardTest, DropsMalformedMessagesAndThoseOfOtherUsers) {
  const auto guard = claim();
  ASSERT_TRUE(guard);
  const FileDescriptor stranger(::socket(AF_UNIX, SOCK_DGRAM, 0)); // any program could make one
  sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
  std::ranges::copy((state / "tevrin.socket").string(), std::begin(address.sun_path));
  ASSERT_EQ(::connect(stranger.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
  const auto send = [&](std::string_view text) {
    return ::send(stranger.get(), text.data(), text.size(), 0) == std::ssize(text);
  };
  for (const std::string &garbage :
       {std::string(), std::string("[\"cut"), std::string(R"(["a", 1])"), std::string(R"({"a": "b"})"),
        std::string("[\"\xFF\"]"), std::string(50'000, '['), "[\"" + std::string(70'000, 'x') + "\"]"})
    EXPECT_TRUE(send(garbage));
  EXPECT_EQ(handOver({"after"}), "delivered");
  EXPECT_THAT(guard->receive(), ElementsAre(Arguments{"after"}));

  if (::geteuid() != 0)
    GTEST_SKIP() << "only the superuser can become somebody else";
  constexpr uid_t kNobody = 65534;
  const pid_t child = ::fork();
  if (child == 0)
    ::_exit(::setresuid(kNobody, kNobody, kNobody) == 0 && send(R"(["evil"])") ? 0 : 1);
  int status = 0;
  ::waitpid(child, &status, 0);
  ASSERT_EQ(status, 0);
  EXPECT_THAT(guard->receive(), IsEmpty());
  ASSERT_EQ(::chown((state / "tevrin.socket").c_str(), kNobody, kNobody), 0);
  EXPECT_EQ(handOver({"secret"}), "Permission denied");
}

TEST(MessageSocketTest, ClosesSurplusDescriptors) {
  auto ends = MessageSocket::makePair().value();
  const auto openDescriptors = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
  const auto before = openDescriptors();
  const std::array<int, 2> two{0, 1};
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof two)> control{};
  char letter = 'x';
  iovec piece{.iov_base = &letter, .iov_len = 1};
  msghdr header{};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  header.msg_control = control.data();
  header.msg_controllen = control.size();
  *CMSG_FIRSTHDR(&header) = {
      .cmsg_len = CMSG_LEN(sizeof two), .cmsg_level = SOL_SOCKET, .cmsg_type = SCM_RIGHTS};
  std::memcpy(CMSG_DATA(CMSG_FIRSTHDR(&header)), two.data(), sizeof two);
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(::sendmsg(ends.first.descriptor().get(), &header, 0), 1);
    std::array<std::byte, 8> buffer{};
    EXPECT_EQ(ends.second.receive(buffer)->bytes, 1U);
  }
  EXPECT_EQ(openDescriptors(), before);
}

} // namespace
} // namespace fennick
