// The verbs ls and tree.
#include <algorithm>
#include <string>
#include <vector>

#include "apps/camera/CameraPath.h"
#include "apps/camera/FolderListing.h"
#include "apps/camera/Meant.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Columns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

constexpr int kDeepest = 64;  // a camera that lies about its tree must not lead round in circles

bool IsFolder(const CameraDirent& entry) {
  return (entry.attributes & kelva::kAttributeDirectory) != 0;
}

std::vector<CameraDirent> Listing(Camera& camera, const std::string& path) {
  std::vector<CameraDirent> entries = ListFolder(camera, path);
  std::erase_if(entries, [](const CameraDirent& entry) { return !IsNamed(entry); });
  return entries;
}

std::string Attributes(const CameraDirent& entry) {
  static constexpr struct {
    int bit;
    char letter;
  } kBits[] = {{kelva::kAttributeDirectory, 'd'},
               {kelva::kAttributeReadOnly, 'r'},
               {kelva::kAttributeHidden, 'h'},
               {kelva::kAttributeSystem, 's'},
               {kelva::kAttributeArchive, 'a'}};
  std::string text;
  for (const auto& row : kBits) text += (entry.attributes & row.bit) != 0 ? row.letter : '-';
  return text;
}

Json Members(const CameraDirent& entry) {
  Json members = Json::Object().SetBytes("name", entry.name).Set("type", IsFolder(entry) ? "folder" : "file");
  return members.Set("size", SizeOf(entry)).Set("attributes", entry.attributes);
}

std::string Rows(const std::vector<CameraDirent>& entries) {
  std::vector<std::vector<std::string>> rows;
  rows.reserve(entries.size());
  for (const CameraDirent& entry : entries) {
    rows.push_back({Attributes(entry), IsFolder(entry) ? "" : std::to_string(SizeOf(entry)), ShownName(entry.name)});
  }
  return Columns(rows, {1});
}

std::string WantedFolder(const Context& context) {
  return ToCameraPath(context.call.words.empty() ? "/" : context.call.words[0]);
}

// The folder that is meant. Cameras answer for a folder that is not there with an empty listing or a bare refusal; its
// parent knows.
std::string FolderMeant(Context& context, Camera& camera, const std::string& typed) {
  std::string path = MeantOne(context, camera, typed);
  if (Split(path).name.empty()) return path;
  path = RequireFolder(camera, Split(path).folder) + "\\" + Split(path).name;
  KnownListings listings(camera);
  const auto entry = EntryIfListed(listings, path);
  if (!entry) throw Failure(ExitCode::kFailed, "There is no folder " + ShownPath(path) + " on the camera.");
  if (!IsFolder(*entry)) throw Failure(ExitCode::kFailed, ShownPath(path) + " is a file; `kelva get` fetches it.");
  return path;
}

ExitCode RunLs(Context& context) {
  const std::string typed = WantedFolder(context);
  const Session camera(context, "list " + ShownPath(typed));
  const std::string path = FolderMeant(context, *camera, typed);
  const std::vector<CameraDirent> entries = Listing(*camera, path);
  Json list = Json::ArrayFrom([&entries](const Json::Give& give) {
    for (const CameraDirent& entry : entries) give(Members(entry));
  });
  return context.Result(CameraResult(camera).SetBytes("path", path).Set("entries", std::move(list)),
                        context.Json() ? "" : Rows(entries));
}

// Walks a tree and gives each entry with its path and depth, in the camera's order.
class Walk {
 public:
  Walk(Context& context, Camera& camera) : context_(context), camera_(camera) {}

  template <typename Visit>
  void Run(const std::string& path, int depth, const Visit& visit) {
    LetOthers(context_);
    for (const CameraDirent& entry : Listing(camera_, path)) {
      context_.stop.Check();
      const std::string below = path + "\\" + entry.name;
      visit(entry, below, depth);
      if (!IsFolder(entry)) continue;
      if (depth == kDeepest) {
        throw Failure(ExitCode::kFailed, "The camera's folders are nested too deep at " + ShownPath(below) + ".");
      }
      Run(below, depth + 1, visit);
    }
  }

 private:
  Context& context_;
  Camera& camera_;
};

ExitCode RunTree(Context& context) {
  const std::string typed = WantedFolder(context);
  const Session camera(context, "walk through " + ShownPath(typed));
  const std::string path = FolderMeant(context, *camera, typed);
  unsigned long long files = 0;
  unsigned long long bytes = 0;
  Json list = Json::Array();
  if (!context.Json()) context.out.Add(ShownPath(path) + "\n");
  Walk(context, *camera).Run(path, 0, [&](const CameraDirent& entry, const std::string& below, int depth) {
    files += IsFolder(entry) ? 0U : 1U;
    bytes += IsFolder(entry) ? 0ULL : SizeOf(entry);
    if (context.Json()) {
      list.Push(Members(entry).SetBytes("path", below));
      return;
    }
    const std::string size = IsFolder(entry) ? "/" : "  " + Bytes(SizeOf(entry));
    context.out.Add(std::string(static_cast<std::size_t>(depth) * 2 + 2, ' ') + ShownName(entry.name) + size + "\n");
  });
  Json members = CameraResult(camera).SetBytes("path", path).Set("files", files).Set("bytes", bytes);
  members.Set("entries", std::move(list));
  return context.Result(std::move(members), Counted(files, "file") + ", " + Bytes(bytes) + "\n");
}

constexpr Argument kPath[] = {{"FOLDER", "A folder on the camera, such as DCIM; the drive I: unless given.",
                               Argument::Count::kOptional, Offer::kCameraPath}};
constexpr Example kLsExamples[] = {{"kelva ls I:/DCIM", "The picture folders."}};
constexpr Example kTreeExamples[] = {{"kelva tree", "Everything on the camera."}};

constexpr Verb kVerbs[] = {
    {"ls", "List a folder of the camera", kPath, kNoOptions,
     R"(One line for each entry, in the camera's order: attributes (d folder, r read-only, h hidden, s system, a
archive), size in bytes, name. A name is in quotes where a shell needs them, and bytes that a terminal would obey are shown
as \xNN: typed behind its folder and a slash, it means the same file. The drive I: may be left out, and letters may be typed in
either case.)",
     "path: the folder\nentries: array of name, type (file or folder), size, attributes (FAT bits)", kLsExamples,
     RunLs},
    {"tree", "Show a folder of the camera with everything below it", kPath, kNoOptions,
     "Asks the camera for one folder after another, so a large tree takes a while.",
     R"(path: the folder
files: how many
bytes: their total size
entries: array of path, name, type, size, attributes)",
     kTreeExamples, RunTree},
};

}  // namespace

std::span<const Verb> FolderVerbs() {
  return kVerbs;
}

}  // namespace apps
