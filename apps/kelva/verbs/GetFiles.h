#ifndef KELVA_APPS_KELVA_VERBS_GET_FILES_H_
#define KELVA_APPS_KELVA_VERBS_GET_FILES_H_

#include <atomic>
#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/FolderListing.h"
#include "apps/camera/ListedSizes.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Progress.h"
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

  /// A file, a pattern, or with `recursive` a folder with all below it, as it was typed (FilesMeant), is to be fetched. Throws
  /// Stopped, and what ends the whole.
  void Add(const std::string& typed);
  /// Fetches all and gives the result. Throws Stopped.
  ExitCode Fetch();

 private:
  // Files of one folder of the camera.
  struct Group {
    std::string folder;
    Folders::Way into;                                              // below the target
    std::vector<std::pair<std::string, unsigned long long>> files;  // name and size
  };

  void AddMeant(const std::string& typed, const std::string& path);
  void AddEntry(const std::string& path, const CameraDirent& entry);
  void AddFolder(const std::string& path);
  void AddFile(const std::string& path, unsigned long long size);
  void AddGroup(Group group);
  void Fail(const std::string& path, const std::exception_ptr& error);
  void FetchGroup(const Group& group);
  void Show(const std::string& name);
  void FetchFile(const std::string& path, unsigned long long size, const LocalPath& local);
  Json Store(const std::string& path, unsigned long long size, const LocalPath& local);
  ExitCode Finish();

  // Read by the thread that ends the program, too.
  struct Counts {
    std::atomic<unsigned long long> expected = 0;  ///< files, and what was named in vain
    std::atomic<unsigned long long> files = 0;
    std::atomic<unsigned long long> bytes = 0;
    std::atomic<bool> isListed = false;  ///< all that is expected is known

    unsigned long long Left() const { return expected - files; }
    std::string Text() const;
    Json Members(Json camera) const;
  };

  Context& context_;
  const Session& camera_;
  Folders folders_;
  const GetOptions options_;
  Each each_;
  Progress progress_;
  unsigned long long bytes_ = 0;  ///< of all files, as they are listed
  std::size_t tried_ = 0;
  KnownListings listings_;  ///< of paths that were named; each file is held against its size when it is read
  ListedSizes sizes_;
  std::vector<Group> groups_;
  bool areMany_ = false;          ///< more files than were named
  std::set<std::string> stored_;  ///< paths of the files that this command has stored
  std::set<Folders::Way> ways_;   ///< folders with files of this command
  std::shared_ptr<Counts> done_ = std::make_shared<Counts>();
  std::optional<Outcome> ended_;  ///< what ended the command before all were tried
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_GET_FILES_H_
