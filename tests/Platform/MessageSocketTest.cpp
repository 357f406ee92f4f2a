#include "FennickCore/Platform/Processes/MessageSocket.h"

#include "FennickCore/Platform/Files/MemoryFile.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>

namespace fennick {
namespace {

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST(MessageSocketTest, ClosesSurplusDescriptors) {
  auto ends = MessageSocket::makePair().value();
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
  cmsghdr *rights = CMSG_FIRSTHDR(&header);
  rights->cmsg_level = SOL_SOCKET;
  rights->cmsg_type = SCM_RIGHTS;
  rights->cmsg_len = CMSG_LEN(sizeof two);
  std::memcpy(CMSG_DATA(rights), two.data(), sizeof two);
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(::sendmsg(ends.first.descriptor().get(), &header, 0), 1);
    std::array<std::byte, 8> buffer{};
    EXPECT_EQ(ends.second.receive(buffer)->bytes, 1U);
  }
  EXPECT_EQ(openDescriptors(), before);
}

TEST(MemoryFileTest, ReadsOnlySealedFiles) {
  const auto sealed = sealedMemoryFile("picture").value();
  EXPECT_EQ(readSealedMemoryFile(sealed, 7), "picture");
  EXPECT_EQ(readSealedMemoryFile(sealed, 6).error(), std::errc::file_too_large);
  EXPECT_LT(::write(sealed.get(), "x", 1), 0);
  const FileDescriptor open(::memfd_create("open", MFD_ALLOW_SEALING));
  EXPECT_EQ(::fcntl(open.get(), F_ADD_SEALS, F_SEAL_GROW | F_SEAL_SHRINK), 0);
  EXPECT_FALSE(readSealedMemoryFile(open, 100));
}

} // namespace
} // namespace fennick
