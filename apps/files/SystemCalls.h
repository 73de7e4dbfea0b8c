#ifndef KELVA_APPS_FILES_SYSTEM_CALLS_H_
#define KELVA_APPS_FILES_SYSTEM_CALLS_H_

#include "apps/files/FileCalls.h"

namespace apps {

/// The calls of this system. What a kernel or a file system may lack has a substitute, which tests can ask for.
class SystemCalls : public FileCalls {
 public:
  /// What is taken to be missing: the error with which a system says so, 0 for what is there.
  struct Missing {
    int openBeneath = 0;      ///< one call for a whole path: Linux before 5.6, some sandboxes, macOS (any error)
    int renameNoReplace = 0;  ///< NFS and many file systems in user space (EINVAL, ENOTSUP); old kernels (ENOSYS)
    int hardLinks = 0;        ///< memory cards (FAT, exFAT: EPERM), network folders (EOPNOTSUPP, ENOSYS)
  };

  SystemCalls() = default;
  explicit SystemCalls(const Missing& missing) : missing_(missing) {}

  int Open(int folder, const std::string& path, int flags) override;
  int Create(int folder, const std::string& name) override;
  int MakeFolder(int parent, const std::string& name) override;
  ssize_t Write(int file, std::string_view bytes) override;
  int SetTime(int file, std::time_t changed) override;
  void BeginFlush(int file) noexcept override;
  int Flush(int file) override;
  int FlushFolder(int folder) override;
  int Rename(int folder, const std::string& from, const std::string& to, bool replace) override;
  int Move(int from, const std::string& name, int to) override;
  int Commit(const std::function<int()>& commit) override;

 private:
  int OpenBelow(int folder, const std::string& path, int flags, mode_t mode) const;
  int RenameNoReplace(int folder, const char* from, const char* to) const;
  int LinkAndUnlink(int folder, const char* from, const char* to) const;

  Missing missing_;
};

}  // namespace apps

#endif  // KELVA_APPS_FILES_SYSTEM_CALLS_H_
