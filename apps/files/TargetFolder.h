#ifndef KELVA_APPS_FILES_TARGET_FOLDER_H_
#define KELVA_APPS_FILES_TARGET_FOLDER_H_

#include <sys/types.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "base/FileDescriptor.h"

namespace apps {

/// A folder that files of a camera are written into. It stays open, so that it cannot be exchanged meanwhile.
class TargetFolder {
 public:
  /// Opens a folder that the user named; symbolic links in `path` are the user's own. Throws Failure.
  static TargetFolder Open(const std::string& path);
  /// As Open; nothing for a folder that is missing.
  static std::optional<TargetFolder> OpenIfThere(const std::string& path);
  /// As Open, but makes the folder first if it is missing, and those above it. Their names are on disk when this returns.
  static TargetFolder OpenOrMake(const std::string& path);
  /// As OpenOrMake for a folder that is missing, otherwise as Open.
  static TargetFolder OpenOrMakeMissing(const std::string& path);
  /// Opens, and makes if need be, a folder directly below this one. Never follows a symbolic link. Throws Failure.
  TargetFolder Below(const std::string& name) const;

  int Fd() const { return folder_.Get(); }
  /// The folder as the user named it, for messages.
  const std::string& Path() const { return path_; }
  std::string PathOf(const std::string& name) const;
  bool Has(const std::string& name) const;
  /// Flushes the folder, so that the names in it survive a power cut. Throws Failure.
  void Sync() const;
  /// The permissions that the system gives a new file here: by the umask, or by the folder's default ACL. Any thread.
  mode_t UsualMode() const;

 private:
  static constexpr mode_t kUnknownMode = static_cast<mode_t>(-1);

  TargetFolder(base::FileDescriptor folder, std::string path) : folder_(std::move(folder)), path_(std::move(path)) {}

  base::FileDescriptor folder_;
  std::string path_;
  std::shared_ptr<std::atomic<mode_t>> usualMode_ = std::make_shared<std::atomic<mode_t>>(kUnknownMode);
};

}  // namespace apps

#endif  // KELVA_APPS_FILES_TARGET_FOLDER_H_
