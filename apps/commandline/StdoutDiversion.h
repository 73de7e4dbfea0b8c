#ifndef KELVA_APPS_COMMANDLINE_STDOUT_DIVERSION_H_
#define KELVA_APPS_COMMANDLINE_STDOUT_DIVERSION_H_

#include <string>

#include "base/FileDescriptor.h"

namespace apps {

/// Keeps standard output for the tool's own results: while this lives, descriptor 1 leads into a pipe, so that a line
/// that a library prints cannot get between them. Real() is the real standard output.
class StdoutDiversion {
 public:
  StdoutDiversion();
  ~StdoutDiversion();
  StdoutDiversion(const StdoutDiversion&) = delete;
  StdoutDiversion& operator=(const StdoutDiversion&) = delete;
  /// The real standard output; -1 when the process was started without one.
  int Real() const { return real_.Get(); }
  /// The first 4 KiB of what was printed since the last call. What a pipe does not hold (16 KiB or more) is lost.
  std::string Taken();

 private:
  void Empty();

  base::FileDescriptor real_;
  base::FileDescriptor printed_;
};

/// Opens /dev/null for each of the three standard descriptors that the process was started without, so that no file of
/// ours gets its number.
void FillStandardDescriptors();

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_STDOUT_DIVERSION_H_
