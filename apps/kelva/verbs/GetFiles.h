#ifndef KELVA_APPS_KELVA_VERBS_GET_FILES_H_
#define KELVA_APPS_KELVA_VERBS_GET_FILES_H_

#include <atomic>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "apps/camera/FolderListing.h"
#include "apps/camera/ListedSizes.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/files/TargetFolder.h"
#include "apps/import/Folders.h"
#include "apps/kelva/verbs/Each.h"

namespace apps {

/// How `get` stores.
struct GetOptions {
  std::optional<std::string> name;  ///< nothing: the names that the files have on the camera
  bool replace = false;
  bool recursive = false;
};

/// Fetches files and folders into a folder, one after the other. One that fails is reported, and the rest goes on.
class GetFiles {
 public:
  /// All outlive this.
  GetFiles(Context& context, const Session& camera, const TargetFolder& target, GetOptions options);

  /// A file, a pattern, or with `recursive` a folder with all below it, as it was typed (FilesMeant). Throws Stopped, and what
  /// ends the whole.
  void Get(const std::string& typed);
  /// Gives the result of all.
  ExitCode Finish();

 private:
  void GetMeant(const std::string& typed, const std::string& path);
  void GetEntry(const std::string& path, const CameraDirent& entry);
  void GetFolder(const std::string& path);
  void GetFile(const std::string& path, unsigned long long size, const LocalPath& local);
  Json Fetch(const std::string& path, unsigned long long size, const LocalPath& local);

  // Read by the thread that ends the program, too.
  struct Counts {
    std::atomic<unsigned long long> files = 0;
    std::atomic<unsigned long long> bytes = 0;
    std::atomic<bool> areMany = false;  ///< more files than were named
  };

  Context& context_;
  const Session& camera_;
  Folders folders_;
  const GetOptions options_;
  Each each_;
  KnownListings listings_;  ///< of paths that were named; each file is held against its size when it is read
  ListedSizes sizes_;
  std::set<std::string> stored_;  ///< paths of the files that this command has stored
  std::set<Folders::Way> ways_;   ///< folders with files of this command
  std::shared_ptr<Counts> done_ = std::make_shared<Counts>();
  bool diskIsFull_ = false;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_GET_FILES_H_
