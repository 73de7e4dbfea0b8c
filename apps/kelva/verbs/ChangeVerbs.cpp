// The verbs put and rm.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <span>
#include <string>
#include <vector>

#include "apps/camera/CameraPath.h"
#include "apps/camera/FolderListing.h"
#include "apps/camera/Meant.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "apps/kelva/verbs/Consent.h"
#include "apps/kelva/verbs/Each.h"
#include "apps/kelva/verbs/LocalFile.h"
#include "apps/kelva/verbs/Verbs.h"
#include "base/FileDescriptor.h"

namespace apps {
namespace {

std::string BaseName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

// "I:/NOTES/" and a folder that exists take the file's own name.
std::string TargetPath(Context& context, Camera& camera, const std::string& typed, const std::string& file) {
  const std::string path = InListedFolder(context, camera, ToCameraPath(typed));
  const bool isFolder = typed.ends_with('/') || typed.ends_with('\\');
  RequireFolder(camera, isFolder ? path : Split(path).folder);
  if (isFolder) return path + "\\" + BaseName(file);
  if (Split(path).name.empty()) return path + "\\" + BaseName(file);
  const auto entry = FindEntry(camera, path);
  const bool folder = entry && (entry->attributes & kelva::kAttributeDirectory) != 0;
  return folder ? path + "\\" + BaseName(file) : path;
}

ExitCode RunPut(Context& context) {
  const std::string& file = context.call.words[0];
  const std::string target = ToCameraPath(context.call.words[1]);  // an error before anything is read
  LocalFile local(file, kLargestFile);
  const Session camera(context, "write " + ShownPath(target));
  const std::string path = TargetPath(context, *camera, context.call.words[1], file);
  context.Doing("write " + ShownPath(path));
  if (!context.call.Has("force") && FindEntry(*camera, path)) {
    throw Failure(ExitCode::kFailed,
                  "There is a " + ShownPath(path) + " on the camera already, and it was kept; --force replaces it.");
  }
  WriteRemoteFile(context, camera.Pointer(), path, local.Size(), [&](std::span<char> chunk) { local.Read(chunk); });
  return context.Result(CameraResult(camera).SetBytes("file", file).SetBytes("path", path).Set("size", local.Size()),
                        "");
}

FewOf Shown(const std::vector<std::string>& paths) {
  FewOf shown;
  for (const std::string& path : paths) shown.Add(ShownPath(path));
  return shown;
}

ExitCode ShowWhatWouldGo(Context& context, const Session& camera, const std::vector<std::string>& paths) {
  Each each(context, "files", CameraResult(camera));
  KnownListings listings(*camera);
  for (const std::string& path : paths) {
    each.Try(path, [&] {
      const auto entry = FileEntry(listings, path);
      context.out.Add(context.Json() ? "" : ShownPath(path) + "  " + Bytes(SizeOf(entry)) + "\n");
      return Json::Object().SetBytes("path", path).Set("size", SizeOf(entry));
    });
  }
  return each.FinishDry(CameraResult(camera), "file");
}

ExitCode RunRm(Context& context) {
  std::vector<std::string> paths;
  for (const std::string& word : context.call.words) paths.push_back(ToCameraPath(word));
  const Session camera(context, "delete " + ShownPath(paths[0]));
  paths = AllFilesMeant(context, *camera, context.call.words);
  if (context.call.Has("dry-run")) return ShowWhatWouldGo(context, camera, paths);
  AskOnTerminal(context, {Counted(paths.size(), "file") + " to delete on the camera:", "Delete?", "nothing was deleted",
                          Shown(paths)});
  Each each(context, "files", CameraResult(camera));
  RemoteDeletions deletions(*camera);
  const auto letOthers = [&] {
    if (LetOthers(context)) deletions.Renew();
    context.stop.Check();
  };
  for (const std::string& path : paths) {
    letOthers();
    each.TryUnchecked(path, [&] {
      context.Doing("delete " + ShownPath(path));
      deletions.Delete(path);
      return Json::Object().SetBytes("path", path);
    });
  }
  each.Check([&](const std::string& path) {
    letOthers();
    context.Doing("see whether " + ShownPath(path) + " is gone");
    deletions.CheckGone(path);
  });
  return each.Finish(CameraResult(camera));
}

constexpr Argument kPutArguments[] = {{"FILE", "A file of this computer.", Argument::Count::kOne, Offer::kFile},
                                      {"PATH", "The target on the camera; in a folder the file keeps its name.",
                                       Argument::Count::kOne, Offer::kCameraPath}};
constexpr Option kPutOptions[] = {{"force", 'f', "", "Replace an existing file on the camera."}};
constexpr Example kPutExamples[] = {{"kelva put settings.txt I:/MISC/", "Send a file and check that it arrived."}};
constexpr Argument kRmArguments[] = {{"PATH", "A file on the camera, also by its name alone, or a pattern in quotes.",
                                      Argument::Count::kOneOrMore, Offer::kCameraPath}};
constexpr Option kRmOptions[] = {kDryRunOption, kYesOption};
constexpr Example kRmExamples[] = {{"kelva rm DCIM/100ABCDE/IMG_0001.JPG", "Delete one file."},
                                   {"kelva rm IMG_0001.JPG", "The same, in whatever folder below DCIM it lies."},
                                   {"kelva rm -n 'DCIM/*/*.MP4'", "Show which files a pattern would delete."}};

constexpr Verb kVerbs[] = {
    {"put", "Send a file to the camera", kPutArguments, kPutOptions,
     R"(The camera does not confirm what it writes, so the file is read back and compared. An existing file on the
camera is kept unless you give --force. After Ctrl-C or an error the unfinished file is deleted from the camera. Files
of 4 GiB and more cannot be sent.)",
     "file: of this computer\npath: on the camera\nsize: bytes", kPutExamples, RunPut},
    {"rm", "Delete files on the camera", kRmArguments, kRmOptions,
     R"(On a terminal it names the files and asks first; elsewhere the command itself is consent. Lists each folder
before, and once more after all the files: one that is not there, or that stays, is an error. `kelva pictures rm` deletes a
picture with all its files.

A name without a folder, such as IMG_0001.JPG or 'IMG_00*.JPG', means what is directly on the drive I:, and otherwise files
in the picture folders below DCIM. If it lies in several of them and is no pattern, nothing is deleted (exit status 2);
100ABCDE/IMG_0001.JPG names one.

In a pattern * ? and [...] match within a name, in any case of letters. Put it in quotes, so that the shell leaves it
alone.)",
     R"(files: array of path, or of path and error; with --dry-run of path and size
failed: how many were not deleted
dry_run: true with --dry-run)",
     kRmExamples, RunRm},
};

}  // namespace

std::span<const Verb> ChangeVerbs() {
  return kVerbs;
}

}  // namespace apps
