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

// Nothing for a path in a folder that the camera refuses to list: the folder is not there.
std::optional<CameraDirent> EntryIfListed(Context& context, KnownListings& listings, const std::string& path) {
  try {
    return listings.Find(path);
  } catch (const CameraError& error) {
    if (Explain(error, context).code != ExitCode::kRefused) throw;
    return std::nullopt;
  }
}

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

GetFiles::GetFiles(Context& context, const Session& camera, const TargetFolder& target, GetOptions options)
    : context_(context),
      camera_(camera),
      // What lies in a folder may be the part of a file with which a sync will go on.
      folders_(target, [](const std::string&) { return true; }),
      options_(std::move(options)),
      each_(context, "files", CameraResult(camera)),
      listings_(*camera),
      sizes_(*camera) {
  each_.TellAtEnd([done = done_, members = CameraResult(camera)] {
    Json all = members;
    all.Set("fetched", done->files.load()).Set("bytes", done->bytes.load());
    const std::string words = Counted(done->files, "file") + " fetched (" + Bytes(done->bytes) + ")";
    return SoFar::Done{done->areMany ? words : "", std::move(all)};
  });
}

void GetFiles::Get(const std::string& typed) {
  if (diskIsFull_) return;
  const std::string path = ToCameraPath(typed);
  LetOthers(context_);
  context_.Doing("read " + ShownPath(path));
  try {
    GetMeant(typed, path);
  } catch (const std::exception&) {
    const std::exception_ptr error = std::current_exception();
    each_.Try(path, [&error]() -> Json { std::rethrow_exception(error); });
  }
}

void GetFiles::GetMeant(const std::string& typed, const std::string& path) {
  if (Split(path).name.empty()) return GetFolder(path);
  if (!IsPattern(path)) {
    const auto entry = EntryIfListed(context_, listings_, path);
    // A name in another case of letters is another file for some cameras; Meant finds how the camera writes it.
    if (entry && entry->name == Split(path).name) return GetEntry(path, *entry);
  }
  const std::vector<std::string> meant = FilesMeant(context_, *camera_, typed);
  if (meant.size() > 1) done_->areMany = true;
  for (const std::string& one : meant) {
    if (diskIsFull_) return;
    LetOthers(context_);
    if (const auto size = sizes_.SizeOf(one)) {
      GetFile(one, *size, {{}, SafeName(Split(one).name)});
    } else {
      GetEntry(one, EntryIfListed(context_, listings_, one).value_or(CameraDirent{}));
    }
  }
}

void GetFiles::GetEntry(const std::string& path, const CameraDirent& entry) {
  if (entry.name.empty() && IsPattern(path)) {
    throw Failure(ExitCode::kFailed, "Nothing on the camera matches " + ShownPath(path) + ".");
  }
  if (entry.name.empty()) FileEntry(*camera_, path);  // throws what is wrong
  if (!IsFolder(entry)) return GetFile(path, SizeOf(entry), {{}, SafeName(Split(path).name)});
  GetFolder(path);
}

// Each file below, under the folder's own name.
void GetFiles::GetFolder(const std::string& path) {
  if (!options_.recursive) {
    throw Failure(ExitCode::kFailed, ShownPath(path) + " is a folder; --recursive fetches all that is in it.");
  }
  done_->areMany = true;
  FolderWalk walk(context_, *camera_, {path});
  std::vector<std::string> base;
  AddNames(Split(path).name, base);
  const auto next = [&]() -> std::optional<FolderWalk::Listing> {
    std::optional<FolderWalk::Listing> listing;
    bool fails = true;
    while (fails) {
      fails = false;
      try {
        listing = walk.Next();
      } catch (const CameraError&) {
        fails = true;
        const std::exception_ptr error = std::current_exception();
        each_.Try(walk.Folder(), [&error]() -> Json { std::rethrow_exception(error); });
      }
    }
    return listing;
  };
  while (const auto listing = next()) {
    std::vector<std::string> folders = base;
    AddNames(std::string_view(listing->folder).substr(path.size()), folders);
    for (const CameraDirent& file : listing->files) {
      if (diskIsFull_) return;
      LetOthers(context_);
      GetFile(listing->folder + "\\" + file.name, SizeOf(file), {folders, SafeName(file.name)});
    }
  }
  if (walk.IsCut()) {
    throw Failure(ExitCode::kFailed,
                  ShownPath(path) + " has too many folders, or folders too deep; name some of them.");
  }
}

void GetFiles::GetFile(const std::string& path, unsigned long long size, const LocalPath& local) {
  context_.stop.Check();
  each_.Try(path, [&] {
    try {
      return Fetch(path, size, local);
    } catch (const Failure& failure) {
      diskIsFull_ = EndsAllWriting(failure.SystemError());
      throw;
    }
  });
}

Json GetFiles::Fetch(const std::string& path, unsigned long long size, const LocalPath& local) {
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
  remote.Read([&](std::span<const char> bytes) { file.Write(bytes); });
  context_.stop.Check();
  options_.replace ? NameReplacing(*folder, file, name) : NameNew(*folder, file, name);
  stored_.insert(stored.Text());
  if (!local.folders.empty()) ways_.insert(local.folders);
  ++done_->files;
  done_->bytes += remote.Size();
  return Json::Object().SetBytes("path", path).SetBytes("file", folder->PathOf(name)).Set("size", remote.Size());
}

ExitCode GetFiles::Finish() {
  folders_.Flush(ways_);
  const std::string text = std::to_string(done_->files) + " fetched (" + Bytes(done_->bytes) + "), " +
                           std::to_string(each_.Failed()) + " failed\n";
  Json members = CameraResult(camera_);
  members.Set("fetched", done_->files.load()).Set("bytes", done_->bytes.load());
  return each_.Finish(std::move(members), done_->areMany ? text : "");
}

}  // namespace apps
