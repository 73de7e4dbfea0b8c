// Fetches files and folders of a camera into a folder.
#include "apps/kelva/verbs/GetFiles.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "apps/camera/CameraPath.h"
#include "apps/camera/FolderWalk.h"
#include "apps/camera/Meant.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "apps/files/DiskErrors.h"
#include "apps/files/SafeName.h"
#include "apps/files/StoreFile.h"

namespace apps {
namespace {

// The safe names between two backslashes.
void AddNames(std::string_view path, std::vector<std::string>& names) {
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('\\'), path.size());
    if (end != 0) names.push_back(SafeName(path.substr(0, end)));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
}

bool IsFolder(const CameraDirent& entry) {
  return (entry.attributes & kelva::kAttributeDirectory) != 0;
}

}  // namespace

std::string GetFiles::Counts::Text() const {
  if (!isListed) return "nothing was fetched yet";
  return std::to_string(files) + " of " + Counted(expected, "file") + " fetched (" + Bytes(bytes) + "), " +
         std::to_string(Left()) + " left";
}

Json GetFiles::Counts::Members(Json camera) const {
  return camera.Set("fetched", files.load()).Set("bytes", bytes.load()).Set("left", Left());
}

GetFiles::GetFiles(Context& context, const Session& camera, const TargetFolder& target, GetOptions options)
    : context_(context),
      camera_(camera),
      // What lies in a folder may be the part of a file with which a sync will go on.
      folders_(target, [](const std::string&) { return true; }),
      options_(std::move(options)),
      each_(context, "files", CameraResult(camera)),
      progress_(context.reporter, context.stop, "", 0),
      listings_(*camera),
      sizes_(*camera) {
  each_.TellAtEnd([done = done_, camera = CameraResult(camera)] {
    const bool isOne = done->isListed && done->expected == 1;
    return SoFar::Done{isOne ? "" : done->Text(), done->Members(camera)};
  });
}

void GetFiles::Add(const std::string& typed) {
  const std::string path = ToCameraPath(typed);
  LetOthers(context_);
  context_.Doing("read " + ShownPath(path));
  try {
    AddMeant(typed, path);
  } catch (const std::exception&) {
    Fail(path, std::current_exception());
  }
}

void GetFiles::Fail(const std::string& path, const std::exception_ptr& error) {
  ++done_->expected;
  each_.Try(path, [&error]() -> Json { std::rethrow_exception(error); });
}

void GetFiles::AddMeant(const std::string& typed, const std::string& path) {
  if (Split(path).name.empty()) return AddFolder(path);
  if (!IsPattern(path)) {
    const auto entry = EntryIfListed(listings_, path);
    // A name in another case of letters is another file for some cameras; FilesMeant finds how the camera writes it.
    if (entry && entry->name == Split(path).name) return AddEntry(path, *entry);
  }
  const std::vector<std::string> meant =
      options_.name ? std::vector{FileMeant(context_, *camera_, typed)} : FilesMeant(context_, *camera_, typed);
  if (meant.size() > 1) areMany_ = true;
  for (const std::string& one : meant) {
    LetOthers(context_);
    try {
      if (const auto size = sizes_.SizeOf(one)) {
        AddFile(one, *size);
      } else {
        AddEntry(one, EntryIfListed(listings_, one).value_or(CameraDirent{}));
      }
    } catch (const Failure&) {
      Fail(one, std::current_exception());
    }
  }
}

void GetFiles::AddEntry(const std::string& path, const CameraDirent& entry) {
  if (entry.name.empty() && IsPattern(path)) {
    throw Failure(ExitCode::kFailed, "Nothing on the camera matches " + ShownPath(path) + ".");
  }
  if (entry.name.empty()) FileEntry(*camera_, path);  // throws what is wrong
  IsFolder(entry) ? AddFolder(path) : AddFile(path, SizeOf(entry));
}

// Each file below, under the folder's own name.
void GetFiles::AddFolder(const std::string& path) {
  if (!options_.recursive) {
    throw Failure(ExitCode::kFailed, ShownPath(path) + " is a folder; --recursive fetches all that is in it.");
  }
  areMany_ = true;
  FolderWalk walk(context_, *camera_, {path});
  Folders::Way base;
  AddNames(Split(path).name, base);
  const auto next = [&]() -> std::optional<FolderWalk::Listing> {
    while (true) {
      try {
        return walk.Next();
      } catch (const CameraError&) {
        Fail(walk.Folder(), std::current_exception());
      }
    }
  };
  while (const auto listing = next()) {
    Group group{listing->folder, base, {}};
    AddNames(std::string_view(listing->folder).substr(path.size()), group.into);
    for (const CameraDirent& file : listing->files) group.files.emplace_back(file.name, SizeOf(file));
    AddGroup(std::move(group));
  }
  if (walk.IsCut()) {
    throw Failure(ExitCode::kFailed,
                  ShownPath(path) + " has too many folders, or folders too deep; name some of them.");
  }
}

void GetFiles::AddFile(const std::string& path, unsigned long long size) {
  const SplitPath split = Split(path);
  AddGroup({split.folder, {}, {{split.name, size}}});
}

void GetFiles::AddGroup(Group group) {
  done_->expected += group.files.size();
  for (const auto& file : group.files) bytes_ += file.second;
  groups_.push_back(std::move(group));
}

ExitCode GetFiles::Fetch() {
  done_->isListed = true;
  progress_.Phase(done_->expected > 1 ? "reading" : "", bytes_);
  try {
    for (const Group& group : groups_) FetchGroup(group);
  } catch (const std::exception& error) {
    // A camera that has gone; all else was reported.
    ended_ = Explain(error, context_);
    context_.reporter.Error(ended_->sentence, ended_->code);
  }
  return Finish();
}

void GetFiles::Show(const std::string& name) {
  progress_.Name(name);
  if (done_->expected > 1) progress_.Files(tried_++, done_->expected);
}

void GetFiles::FetchGroup(const Group& group) {
  for (const auto& [name, size] : group.files) {
    if (ended_) return;
    LetOthers(context_);
    context_.stop.Check();
    Show(name);
    FetchFile(group.folder + "\\" + name, size, {group.into, SafeName(name)});
  }
}

void GetFiles::FetchFile(const std::string& path, unsigned long long size, const LocalPath& local) {
  each_.Try(path, [&] {
    try {
      return Store(path, size, local);
    } catch (const Failure& failure) {
      if (EndsAllWriting(failure.SystemError())) ended_ = Outcome{ExitCode::kFailed, failure.what()};
      throw;
    }
  });
}

Json GetFiles::Store(const std::string& path, unsigned long long size, const LocalPath& local) {
  context_.Doing("read " + ShownPath(path));
  const auto folder = folders_.For(local);
  const std::string name = options_.name.value_or(local.name);
  LocalPath stored = local;
  stored.name = name;
  if (stored_.count(stored.Text()) != 0) {
    throw Failure(ExitCode::kFailed, "Another of these files is " + Printable(folder->PathOf(name)) +
                                         " already; fetch them into two folders with --into.");
  }
  if (!options_.replace && folder->Has(name)) {
    throw Failure(ExitCode::kFailed,
                  "There is a " + Printable(folder->PathOf(name)) + " already, and it was kept; --force replaces it, " +
                      (options_.recursive ? "--into chooses another folder." : "--output chooses another name."));
  }
  RemoteFile remote(context_, camera_.Pointer(), path, size);
  NewFile file(*folder);
  remote.Read(progress_, done_->bytes, [&](std::span<const char> bytes) { file.Write(bytes); });
  context_.stop.Check();
  options_.replace ? NameReplacing(*folder, file, name) : NameNew(*folder, file, name);
  stored_.insert(stored.Text());
  if (!local.folders.empty()) ways_.insert(local.folders);
  ++done_->files;
  done_->bytes += remote.Size();
  return Json::Object().SetBytes("path", path).SetBytes("file", folder->PathOf(name)).Set("size", remote.Size());
}

ExitCode GetFiles::Finish() {
  progress_.Clear();
  folders_.Flush(ways_);
  std::string text = std::to_string(done_->files) + " fetched (" + Bytes(done_->bytes) + "), " +
                     std::to_string(each_.Failed()) + " failed";
  if (ended_) text += ", " + std::to_string(done_->Left()) + " left";
  const bool tells = areMany_ || (ended_ && done_->expected > 1);
  Json members = done_->Members(CameraResult(camera_));
  if (ended_) members.Set("error", ended_->sentence);
  return each_.Finish(std::move(members), tells ? text + "\n" : "",
                      ended_ ? std::optional(ended_->code) : std::nullopt);
}

}  // namespace apps
