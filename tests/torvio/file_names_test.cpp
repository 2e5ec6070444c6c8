// Names of files in UTF-16, as Windows has them.
#if defined(_WIN32)
#include "torvio/explain/file_names.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace oldtorvio::explain;

TEST(FileNames, BecomeUtf16AndBackUnchanged) {
  for (const std::wstring& name :
       {std::wstring(L"nest.sheet"), std::wstring(L"Gro\u00dfteil \u677f.sheet"), std::wstring(L"\xd83d\xdd29"),
        // Halves of pairs in the wrong order, and at the end.
        std::wstring(L"\xdd29\xd83d"), std::wstring(L"a\xd83d"), std::wstring(L"\x7f\x80\u07ff\u0800\uffff")})
    EXPECT_EQ(wideName(narrowName(name)), name);
  EXPECT_EQ(narrowName(L"\u00df"), "\xc3\x9f");
  EXPECT_EQ(narrowName(L"\u677f"), "\xe6\x9d\xbf");
  EXPECT_EQ(narrowName(L"\xd83d\xdd29"), "\xf0\x9f\x94\xa9");
}

TEST(FileNames, ThatAreNotUtf8AreEmpty) {
  for (const char* name :
       {"\x80", "a\xff", "\xc3", "\xc0\xaf", "\xe0\x80\x80", "\xf0\x80\x80\x80", "\xf4\x90\x80\x80", "\xe6\x9d",
        "\xe6\x9d"
        "a"})
    EXPECT_EQ(wideName(name), L"") << name;
}

TEST(FileNames, AreAbsoluteIfTheyAreLong) {
  EXPECT_EQ(systemName("C:/nests/a.sheet"), L"C:/nests/a.sheet");
  const std::string folder(100, 'x');
  const std::string path = "C:/" + folder + "/./" + folder + "/../" + folder + "/" + folder + ".sheet";
  const std::wstring wide(100, L'x');
  EXPECT_EQ(systemName(path), L"\\\\?\\C:\\" + wide + L"\\" + wide + L"\\" + wide + L".sheet");
  EXPECT_EQ(systemName("//server/share/" + folder + "/" + folder + "/" + folder),
            L"\\\\?\\UNC\\server\\share\\" + wide + L"\\" + wide + L"\\" + wide);
  EXPECT_EQ(systemName("\\\\?\\C:\\" + folder + "/a"), L"\\\\?\\C:\\" + wide + L"\\a");
  EXPECT_TRUE(systemName(folder + "/" + folder + "/" + folder).starts_with(L"\\\\?\\"));
}

}  // namespace
#endif
