#ifndef KELVA_APPS_KELVA_VERBS_PRIVATE_FILES_H_
#define KELVA_APPS_KELVA_VERBS_PRIVATE_FILES_H_

#include <sys/stat.h>

namespace apps {

/// While it lives, only their owner may read new files and folders of this process.
class PrivateFiles {
 public:
  PrivateFiles() : before_(::umask(S_IRWXG | S_IRWXO)) {}
  ~PrivateFiles() { ::umask(before_); }
  PrivateFiles(const PrivateFiles&) = delete;
  PrivateFiles& operator=(const PrivateFiles&) = delete;

 private:
  const mode_t before_;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_PRIVATE_FILES_H_
