// The verb get.
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "apps/camera/CameraPath.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/SafeName.h"
#include "apps/files/StoreFile.h"
#include "apps/kelva/verbs/Each.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

struct Target {
  std::string folder = ".";
  std::optional<std::string> name;  ///< nothing: the name it has on the camera
  bool replace = false;
  bool toOutput = false;
};

Target TargetOf(const Context& context) {
  Target target;
  target.folder = context.call.Value("into").value_or(".");
  target.replace = context.call.Has("force");
  const auto output = context.call.Value("output");
  if (!output) return target;
  if (context.call.words.size() > 1) {
    throw Failure(ExitCode::kUsage, "--output takes one file; use --into for several.");
  }
  if (context.call.Has("into")) throw Failure(ExitCode::kUsage, "Use --output or --into, not both.");
  target.toOutput = *output == "-";
  const std::size_t slash = output->rfind('/');
  if (slash != std::string::npos) target.folder = slash == 0 ? "/" : output->substr(0, slash);
  target.name = slash == std::string::npos ? *output : output->substr(slash + 1);
  if (target.name->empty()) {
    throw Failure(ExitCode::kUsage, "--output takes the name of a file; use --into for a folder.");
  }
  return target;
}

void ToOutput(Context& context, RemoteFile file) {
  file.Read([&](std::span<const char> bytes) { context.out.Write({bytes.data(), bytes.size()}); });
}

void CheckOutput(const Context& context, const Target& target) {
  if (!target.toOutput) return;
  if (context.Json()) {
    throw Failure(ExitCode::kUsage, "--output - and --json both need standard output; leave one out.");
  }
  if (context.out.IsTerminal()) {
    throw Failure(ExitCode::kUsage,
                  "Standard output is a terminal, which would obey the file's bytes; write to a "
                  "file or a pipe.");
  }
}

// `stored` are the names of the files that this command has stored.
Json GetOne(Context& context, const Session& camera, const TargetFolder& folder, const Target& target,
            const std::string& path, std::set<std::string>& stored) {
  context.Doing("read " + Printable(path));
  const std::string name = target.name.value_or(SafeName(Split(path).name));
  if (stored.count(name) != 0) {
    throw Failure(ExitCode::kFailed, "Another of these files is " + Printable(folder.PathOf(name)) +
                                         " already; fetch them into two folders with --into.");
  }
  if (!target.replace && folder.Has(name)) {
    throw Failure(ExitCode::kFailed,
                  "There is a " + Printable(folder.PathOf(name)) +
                      " already, and it was kept; --force replaces it, --output chooses another name.");
  }
  RemoteFile remote(context, camera.Pointer(), path);
  NewFile file(folder);
  remote.Read([&](std::span<const char> bytes) { file.Write(bytes); });
  context.stop.Check();
  target.replace ? NameReplacing(folder, file, name) : NameNew(folder, file, name);
  stored.insert(name);
  return Json::Object().SetBytes("path", path).SetBytes("file", folder.PathOf(name)).Set("size", remote.Size());
}

ExitCode RunGet(Context& context) {
  const Target target = TargetOf(context);
  CheckOutput(context, target);
  std::vector<std::string> paths;
  for (const std::string& word : context.call.words) paths.push_back(ToCameraPath(word));
  if (target.toOutput) {
    const Session camera(context, "read " + Printable(paths[0]));
    ToOutput(context, RemoteFile(context, camera.Pointer(), paths[0]));
    return ExitCode::kDone;
  }
  const TargetFolder folder = TargetFolder::Open(target.folder);
  const Session camera(context, "read " + Printable(paths[0]));
  Each each(context, "files");
  std::set<std::string> stored;
  for (const std::string& path : paths) {
    LetOthers(context);
    each.Try(path, [&] { return GetOne(context, camera, folder, target, path, stored); });
  }
  return each.Finish(CameraResult(camera));
}

constexpr Argument kArguments[] = {
    {"PATH", "A file on the camera; you may write / for \\.", Argument::Count::kOneOrMore}};
constexpr Option kOptions[] = {
    {"output", 'o', "FILE", "Write into this file; - is standard output.", Offer::kFile},
    {"into", 'd', "FOLDER", "Write into this folder instead of the current one.", Offer::kFolder},
    {"force", 'f', "", "Replace an existing file."},
};
constexpr Example kExamples[] = {
    {"kelva get I:/DCIM/100ABCDE/IMG_0001.JPG", "Fetch a picture into the current folder."},
    {"kelva get -o - I:/LOG.TXT | grep error", "Read a file without storing it."},
};

constexpr Verb kVerbs[] = {
    {"get", "Fetch files from the camera", kArguments, kOptions,
     R"(Each file is written under a temporary name in the target folder and flushed to disk. It gets its name only
when it is whole, so an interrupted command leaves nothing behind. An existing file is kept unless you give --force.
Bytes of a name that are not safe here (control characters, a slash, a dot at the start) are written as %XX.

The folder's listing tells an empty file from a missing one. A file that goes on beyond the size that its folder lists
is not kept. With `-o -` the bytes go out as they arrive: the exit code says whether they were the whole file.)",
     R"(serial: of the camera
files: array of path, file (where it was written), size; or of path and error
failed: how many were not fetched)",
     kExamples, RunGet}};

}  // namespace

std::span<const Verb> GetVerbs() {
  return kVerbs;
}

}  // namespace apps
