// A locale with a decimal comma, as a host may have set it for the whole process.
#pragma once
#include <clocale>
#include <cstdlib>
#include <string>

#include "tests/support/files.h"

namespace testing_support {

// Set while it lives, if the host has such a locale or the sources of one.
class CommaLocale {
 public:
  CommaLocale() {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de-DE", "German"})
      if (set(name)) return;
    // One of the test's own, so that it does not depend on what is installed.
    const std::string command = "localedef -i de_DE -f UTF-8 '" + folder_.path("comma") + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0 && !std::filesystem::exists(folder_.path("comma"))) return;
    setEnvironment("LOCPATH", folder_.path());
    (void)set("comma");
    unsetEnvironment("LOCPATH");
  }
  ~CommaLocale() { (void)std::setlocale(LC_ALL, "C"); }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

  bool isSet() const { return isSet_; }

 private:
  bool set(const char* name) {
    isSet_ = std::setlocale(LC_ALL, name) != nullptr && std::string(std::localeconv()->decimal_point) == ",";
    return isSet_;
  }

  TempFolder folder_;
  bool isSet_ = false;
};

}  // namespace testing_support
