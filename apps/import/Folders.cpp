// Opens the folders below a target, sweeps each once, and flushes those with new names in them.
#include "apps/import/Folders.h"

#include <cerrno>
#include <utility>

#include "apps/commandline/Failure.h"
#include "apps/files/NewFile.h"

namespace apps {
namespace {

std::string NameOf(const Folders::Way& way) {
  std::string name;
  for (const std::string& component : way) name += component + "/";
  return name;
}

}  // namespace

std::shared_ptr<const TargetFolder> Folders::For(const LocalPath& path) {
  const std::scoped_lock lock(mutex_);
  constexpr std::size_t kMostOpen = 128;
  std::shared_ptr<const TargetFolder> folder(&target_, [](const TargetFolder*) {});
  std::string name;
  for (const std::string& component : path.folders) {
    const std::string parent = name;
    name += component + "/";
    std::shared_ptr<const TargetFolder>& known = open_[name];
    if (!known) known = std::make_shared<const TargetFolder>(folder->Below(component));
    folder = known;
    if (!seen_.insert(name).second) continue;
    // Also when the folder was there: the run that made it may have been killed before it flushed.
    unflushed_.insert(parent);
    RemoveLeftovers(*folder, [this, &name](const std::string& file) { return keeps_ && keeps_(name + file); });
  }
  if (open_.size() > kMostOpen) open_.clear();
  return folder;
}

std::string Folders::Try(const LocalPath& path) {
  const std::string name = NameOf(path.folders);
  {
    const std::scoped_lock lock(mutex_);
    const auto tried = tried_.find(name);
    if (tried != tried_.end()) return tried->second;
  }
  std::string why = WhyNot(path);
  const std::scoped_lock lock(mutex_);
  return tried_.emplace(name, std::move(why)).first->second;
}

std::string Folders::WhyNot(const LocalPath& path) {
  try {
    const auto folder = For(path);
    const NewFile trial(*folder);
    return "";
  } catch (const Failure& failure) {
    // A name that is too long, a file or a link in its place: that is for this folder alone.
    const int error = failure.SystemError();
    if (error != 0 && error != ENOTDIR && error != ELOOP && error != ENAMETOOLONG) throw;
    return failure.what();
  }
}

void Folders::Flush(const std::set<Way>& ways) {
  std::set<Way> above;
  for (const Way& way : ways) {
    For({way, ""})->Sync();
    for (std::size_t i = 0; i < way.size(); ++i) {
      above.emplace(way.begin(), way.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }
  for (const Way& way : above) FlushNewNamesIn(way);
}

void Folders::FlushNewNamesIn(const Way& way) {
  {
    // Taken off before the flush: a folder that is made meanwhile puts it on again.
    const std::scoped_lock lock(mutex_);
    if (unflushed_.erase(NameOf(way)) == 0) return;
  }
  For({way, ""})->Sync();
}

}  // namespace apps
