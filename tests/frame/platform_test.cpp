// Folders of the host, and the end of the process.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "src/frame/entry.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace {

using namespace oldtorvio::frame;
using namespace testing_support;

TEST(Platform, FilesOfAFolderAreWalkedUntilOneIsEnough) {
  const TempFolder folder;
  for (const char* name : {"a", "b", "c.spt"}) (void)folder.write(name, Bytes().u8(1));
  std::filesystem::create_directory(folder.path("inside"));
  std::filesystem::create_directory(folder.path("d.spt"));
  std::set<std::string> names;
  walkFolder(folder.path(), [&](const std::string& name, const std::string&) { return names.insert(name).second; });
  EXPECT_EQ(names, (std::set<std::string>{"a", "b", "c.spt"}));
  int visits = 0;
  walkFolder(folder.path(), [&](const std::string&, const std::string&) { return ++visits < 2; });
  EXPECT_EQ(visits, 2);
}

TEST(Platform, AFinalSeparatorIsLeftOutOfTheFolderThatIsWalked) {
  const TempFolder folder;
  std::filesystem::create_directory(folder.path("d"));
  folder.write("d/one", Bytes().i32(1));
  const auto walked = [](const std::string& path) {
    std::set<std::string> names;
    walkFolder(path, [&](const std::string& name, const std::string&) { return names.insert(name).second; });
    return names;
  };
  EXPECT_EQ(walked(folder.path("d") + '\\'), std::set<std::string>{"one"});
  EXPECT_EQ(walked(folder.path("dx")), std::set<std::string>{}) << "only a separator is left out";

  // The shortest name there is.
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  EXPECT_EQ(walked("d\\"), std::set<std::string>{"one"});
  std::filesystem::current_path(before);
}

TEST(EndProcess, Aborts) { EXPECT_EXIT(oldtorvio::EndProcess(), endedByTheLibrary(), ""); }

}  // namespace
