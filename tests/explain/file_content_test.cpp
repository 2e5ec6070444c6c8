// A file is opened once and read to its end, or there is a reason why not.
#include "torvio/explain/file_content.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>
#if !defined(_WIN32)
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#endif

#include "tests/support/files.h"
#include "tests/support/io_faults.h"
#include "tests/support/special_tool_files.h"
#include "torvio/explain/file_map.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using explain::FileContent;

constexpr std::size_t kMiB = std::size_t{1} << 20U;

Bytes counted(std::size_t size) {
  Bytes bytes;
  for (std::size_t i = 0; i < size; ++i) bytes.u8(static_cast<std::uint8_t>(i * 7 + i / 256));
  return bytes;
}

TEST(FileContent, HoldsEveryByteOfAFile) {
  const TempFolder folder;
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{65535}, std::size_t{65536},
                                 std::size_t{65537}, std::size_t{200000}}) {
    const Bytes bytes = counted(size);
    const FileContent content(folder.write("f", bytes));
    EXPECT_EQ(content.error(), "");
    EXPECT_EQ(Bytes::of(content.bytes()), bytes) << size;
  }
}

TEST(FileContent, OpenFileIsReadFromWhereItIsAndStaysOpen) {
  const TempFolder folder;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      std::fopen(folder.write("f", counted(100000)).c_str(), "rb"), std::fclose);
  ASSERT_NE(file, nullptr);
  ASSERT_EQ(std::fseek(file.get(), 10, SEEK_SET), 0);
  const FileContent content(file.get());
  EXPECT_EQ(content.error(), "");
  EXPECT_EQ(content.bytes().size(), 100000U - 10);
  EXPECT_EQ(Bytes::of(content.bytes()), Bytes::of(counted(100000).span().subspan(10)));
  EXPECT_EQ(std::ftell(file.get()), 100000);
}

TEST(FileContent, FileOfTheLargestSizeIsReadAndALargerOneIsNot) {
  const TempFolder folder;
  const std::string path = folder.write("f", counted(kMiB));
  EXPECT_EQ(FileContent(path, 1).bytes().size(), kMiB);
  EXPECT_EQ(FileContent(path, 1).error(), "");
  folder.write("f", counted(kMiB).zeros(1));
  EXPECT_EQ(FileContent(path, 1).error(), "is larger than 1 MiB");
  EXPECT_TRUE(FileContent(path, 1).bytes().empty());
  EXPECT_EQ(FileContent(path, 2).bytes().size(), kMiB + 1);
}

TEST(FileContent, NothingIsReadOfAFileThatIsKnownToBeTooLarge) {
  const TempFolder folder;
  const std::string path = folder.write("f", {});
  std::filesystem::resize_file(path, kMiB + 1);
  const IoWatch watch({IoCall::open, kNever});
  EXPECT_EQ(FileContent(path, 1).error(), "is larger than 1 MiB");
  EXPECT_EQ(watch.counts()[static_cast<std::size_t>(IoCall::read)], 0U);
  EXPECT_EQ(watch.stillOpen(), 0U);
}

TEST(FileContent, UnreadableFileHasAReasonAndNoBytes) {
  const TempFolder folder;
  const struct {
    std::string path;
    const char* reason;
  } cases[] = {{folder.path("none"), "cannot be opened: No such file or directory"},
               {"", "cannot be opened: No such file or directory"},
               {folder.path(), "is a folder"}};
  for (const auto& one : cases) {
    const FileContent content(one.path);
    EXPECT_EQ(content.error(), one.reason) << one.path;
    EXPECT_TRUE(content.bytes().empty());
    const explain::FileReport report = explain::checkFile(one.path, explain::FileKind::part);
    EXPECT_EQ(report.status, -2);
    ASSERT_TRUE(report.fault);
    EXPECT_EQ(report.fault->reason, one.reason);
    EXPECT_EQ(explain::mapFile(one.path, explain::FileKind::part, [](const explain::MapLine&) {}).fault->reason,
              one.reason);
  }
}

#if !defined(_WIN32)
TEST(FileContent, SocketIsNoFolderAndCannotBeOpened) {
  const TempFolder folder;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = folder.path("socket");
  ASSERT_LT(path.size(), sizeof address.sun_path);
  path.copy(address.sun_path, path.size());
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  const FileContent content(path);
  EXPECT_TRUE(content.error().starts_with("cannot be opened: ")) << content.error();
  EXPECT_TRUE(content.bytes().empty());
  EXPECT_EQ(::close(socket), 0);
}
#endif

TEST(FileContent, PipeIsReadToItsEnd) {
  if (!kIsPosix) GTEST_SKIP() << "no named pipes";
  const TempFolder folder;
  const std::string pipe = folder.path("pipe");
  std::string output;
  ASSERT_EQ(runCommand("mkfifo " + pipe, output), 0);
  const auto contentOf = [&](const Bytes& bytes, std::uint64_t largestMiB) {
    // The reader may go before everything is written.
    std::thread writer([&] { (void)runCommand("cat " + folder.write("f", bytes) + " >" + pipe, output); });
    FileContent content(pipe, largestMiB);
    writer.join();
    return content;
  };
  for (const std::size_t size : {std::size_t{0}, std::size_t{3}, std::size_t{65536}, kMiB}) {
    const Bytes bytes = counted(size);
    const FileContent content = contentOf(bytes, 1);
    EXPECT_EQ(content.error(), "");
    EXPECT_TRUE(Bytes::of(content.bytes()) == bytes) << size;
  }
  const FileContent larger = contentOf(counted(kMiB).zeros(1), 1);
  EXPECT_EQ(larger.error(), "is larger than 1 MiB");
  EXPECT_TRUE(larger.bytes().empty());
}

TEST(FileContent, DeviceWithoutEndIsTooLarge) {
  if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "no such device";
  EXPECT_EQ(FileContent("/dev/zero", 1).error(), "is larger than 1 MiB");
}

TEST(FileContent, FailedReadIsAnErrorAndNotTheEndOfTheFile) {
  constexpr const char* kUnreadable = "/proc/self/mem";
  if (!kIsPosix || !std::filesystem::exists(kUnreadable)) GTEST_SKIP() << "no file that opens and cannot be read";
  const FileContent content(kUnreadable);
  EXPECT_EQ(content.error(), "cannot be read: Input/output error");
  EXPECT_TRUE(content.bytes().empty());
}

TEST(FileContent, EveryFunctionOpensAFileOnceAndClosesIt) {
  if (!kIsPosix) GTEST_SKIP() << "files are opened by another function, which is not watched";
  const TempFolder folder;
  const std::string path = folder.write("f", specialToolFile(60, {3}));
  const auto opens = [](const auto& look) {
    const IoWatch watch({IoCall::open, kNever});
    look();
    EXPECT_EQ(watch.stillOpen(), 0U);
    return watch.opened();
  };
  EXPECT_EQ(opens([&] { FileContent content(path); }), 1U);
  EXPECT_EQ(opens([&] { (void)explain::checkFile(path, explain::FileKind::part); }), 1U);
  EXPECT_EQ(opens([&] { (void)explain::mapFile(path, explain::FileKind::part, [](const explain::MapLine&) {}); }), 1U);
  EXPECT_EQ(opens([&] {
              const FileContent content(path);
              (void)explain::mapFile(content.bytes(), explain::FileKind::part, [](const explain::MapLine&) {});
              (void)explain::checkFile(content.bytes(), explain::FileKind::part);
            }),
            1U);
}

TEST(FileContent, UnreadBytesAreCounted) {
  explain::FileReport report;
  report.walked = 5;
  report.size = 6;
  EXPECT_EQ(report.unread(), "1 unread byte after the last field");
  report.size = 42;
  EXPECT_EQ(report.unread(), "37 unread bytes after the last field");
}

}  // namespace
