#ifndef KELVA_APPS_COMMANDLINE_SCRATCH_H_
#define KELVA_APPS_COMMANDLINE_SCRATCH_H_

#include <string>

namespace apps {

/// Remembers the temporary files of this process, so that every way out, an abort included, can remove them.
/// A record names a file by an open folder and its name there; both stay valid while the record lives.
class ScratchRecord {
 public:
  /// Throws std::length_error when more files are open at once than there are records, or the name is too long.
  ScratchRecord(int folder, const std::string& name);
  ~ScratchRecord();
  ScratchRecord(const ScratchRecord&) = delete;
  ScratchRecord& operator=(const ScratchRecord&) = delete;

  /// Forgets the file, which has its final name or is gone.
  void Forget();

 private:
  int index_;
};

/// Removes every file that is still remembered. Async-signal-safe.
void RemoveScratchFiles() noexcept;

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_SCRATCH_H_
