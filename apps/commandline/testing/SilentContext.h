#ifndef KELVA_APPS_COMMANDLINE_TESTING_SILENT_CONTEXT_H_
#define KELVA_APPS_COMMANDLINE_TESTING_SILENT_CONTEXT_H_

#include <unistd.h>

#include <string>

#include "apps/commandline/Context.h"
#include "base/FileDescriptor.h"
#include "base/testing/UnnamedFile.h"

namespace apps {

/// What a command works with, writing into memory. A fixture derives from it.
struct SilentContext {
  explicit SilentContext(ReportStyle style = {}) : reporter_("kelva", saidFile_.Get(), style) {
    ::dup2(diversion_.Real(), STDOUT_FILENO);  // where an expectation says how it failed
  }

  /// What came to standard output.
  std::string Printed() const { return TextOf(printedFile_); }
  /// What came to standard error.
  std::string Said() const { return TextOf(saidFile_); }

  base::FileDescriptor printedFile_{base::test::UnnamedFile()};
  base::FileDescriptor saidFile_{base::test::UnnamedFile()};
  Invocation call_;
  Output out_{printedFile_.Get()};
  Reporter reporter_;
  Stop stop_;
  StdoutDiversion diversion_;
  Context context_{call_, out_, reporter_, stop_, diversion_};

 private:
  static std::string TextOf(const base::FileDescriptor& file) {
    std::string text(static_cast<std::size_t>(::lseek(file.Get(), 0, SEEK_END)), '\0');
    return text.substr(0, static_cast<std::size_t>(::pread(file.Get(), text.data(), text.size(), 0)));
  }
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_TESTING_SILENT_CONTEXT_H_
