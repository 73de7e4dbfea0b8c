// The verb get.
#include <optional>
#include <string>
#include <vector>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Meant.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/files/TargetFolder.h"
#include "apps/kelva/verbs/GetFiles.h"
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
  if (context.call.words.size() > 1 || context.call.Has("recursive")) {
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

ExitCode RunGet(Context& context) {
  const Target target = TargetOf(context);
  CheckOutput(context, target);
  std::vector<std::string> paths;
  for (const std::string& word : context.call.words) paths.push_back(ToCameraPath(word));
  if (target.toOutput) {
    const Session camera(context, "read " + ShownPath(paths[0]));
    ToOutput(context, RemoteFile(context, camera.Pointer(), FileMeant(context, *camera, context.call.words[0])));
    return ExitCode::kDone;
  }
  // First, so that a camera that is not there leaves no folder behind.
  const Session camera(context, "read " + ShownPath(paths[0]));
  const TargetFolder folder = TargetFolder::OpenOrMakeMissing(target.folder);
  GetFiles get(context, camera, folder, {target.name, target.replace, context.call.Has("recursive")});
  for (const std::string& word : context.call.words) get.Add(word);
  return get.Fetch();
}

constexpr Argument kArguments[] = {{"PATH",
                                    "A file on the camera, also by its name alone, a pattern with * ? and [...], or "
                                    "with -r a folder; you may write / for "
                                    "\\.",
                                    Argument::Count::kOneOrMore, Offer::kCameraPath}};
constexpr Option kOptions[] = {
    {"output", 'o', "FILE", "Write into this file; - is standard output.", Offer::kFile},
    {"into", 'd', "FOLDER", "Write into this folder, which is made if need be, instead of the current one.",
     Offer::kFolder},
    {"recursive", 'r', "", "Fetch folders with all that is in them, and keep their names below the target folder."},
    {"force", 'f', "", "Replace an existing file."},
};
constexpr Example kExamples[] = {
    {"kelva get I:/DCIM/100ABCDE/IMG_0001.JPG", "Fetch a picture into the current folder."},
    {"kelva get IMG_0001.JPG", "The same, in whatever folder below DCIM the picture lies."},
    {"kelva get 'DCIM/*/*.MP4' -d ~/Videos", "Fetch all videos, in quotes so that the camera's names are matched."},
    {"kelva get -r I:/DCIM/100ABCDE -d ~/Pictures", "Fetch a folder and all below it."},
    {"kelva get -o - I:/LOG.TXT | grep error", "Read a file without storing it."},
};

constexpr Verb kVerbs[] = {
    {"get", "Fetch files from the camera", kArguments, kOptions,
     R"(Each file is written under a temporary name in the target folder and flushed to disk. It gets its name only
when it is whole, so an interrupted command leaves nothing behind. An existing file is kept unless you give --force.
Bytes of a name that are not safe here (control characters, a slash, a dot at the start) are written as %XX.

A name without a folder, such as IMG_0001.JPG or 'IMG_00*.JPG', means what is directly on the drive I:, and otherwise files
in the picture folders below DCIM. A name that lies in several of them needs its folder too: 100ABCDE/IMG_0001.JPG.

A pattern and a folder may mean many files: a summary ends the command, and a file that fails leaves the rest (exit
status 6). With --recursive a folder keeps its name and those of the folders in it. All folders are listed before the first
file is fetched. A full disk ends the command (exit status 1). Whatever ends it early, it says how many files are left.

The folder's listing tells an empty file from a missing one. A file that goes on beyond the size that its folder lists
is not kept. With `-o -` the bytes go out as they arrive: the exit code says whether they were the whole file.)",
     R"(serial: of the camera
files: array of path, file (where it was written), size; or of path and error
fetched, bytes: how many were fetched, and their total size
left: how many are not fetched, the failed ones included
failed: how many failed
error: what ended the command early)",
     kExamples, RunGet}};

}  // namespace

std::span<const Verb> GetVerbs() {
  return kVerbs;
}

}  // namespace apps
