// The verbs crash-logs and calibration.
#include <functional>
#include <string>
#include <vector>

#include "apps/camera/ReadLimit.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Progress.h"
#include "apps/files/SafeName.h"
#include "apps/files/Sha1.h"
#include "apps/files/StoreFile.h"
#include "apps/kelva/verbs/Each.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

TargetFolder Into(const Context& context) {
  return TargetFolder::OpenOrMake(context.call.Value("into").value_or("."));
}

// The last component: crash logs are named by their whole path on the camera.
std::string LocalName(const std::string& name) {
  return SafeName(name.substr(name.rfind('\\') + 1));
}

Json Store(const TargetFolder& folder, const _Sha1obj& file) {
  const Stored stored = StoreBeside(folder, LocalName(file.name), file.data, Sha1(file.data));
  Json members = Json::Object().SetBytes("name", file.name).SetBytes("file", folder.PathOf(stored.name));
  return std::move(members.Set("size", file.data.size()).Set("new", !stored.wasThere));
}

std::string Line(const _Sha1obj& file) {
  return Printable(file.name) + "  " + Bytes(file.data.size()) + "\n";
}

struct Bundle {
  std::string_view title;  ///< beside the progress bar
  std::string file;        ///< what one of its files is called
  std::string_view member;
};

// Stores what `read` fetches. Only the crash logs have the option --delete.
ExitCode Fetch(Context& context, const Bundle& bundle,
               const std::function<std::vector<_Sha1obj>(Camera&, Progress&)>& read) {
  const TargetFolder folder = Into(context);
  const Session camera(context, "read the " + bundle.file + "s");
  std::vector<_Sha1obj> files;
  {
    Progress progress(context.reporter, context.stop, bundle.title, 0);
    files = read(*camera, progress);
  }
  Each each(context, bundle.member, CameraResult(camera));
  for (const _Sha1obj& file : files) {
    each.Try(file.name, [&] {
      context.Doing("store the " + bundle.file + " " + Printable(file.name));
      Json members = Store(folder, file);
      if (!context.call.Has("delete")) return members;
      // Only now: what is deleted on the camera is on this computer's disk.
      folder.Sync();
      context.Doing("delete the " + bundle.file + " " + Printable(file.name));
      return std::move(members.Set("deleted", camera->DeleteFile(file.name.c_str())));
    });
    if (!context.Json()) context.out.Add(Line(file));
  }
  folder.Sync();
  if (files.empty()) context.reporter.Note("There are no " + bundle.file + "s on the camera.");
  return each.Finish(CameraResult(camera));
}

ExitCode RunCrashLogs(Context& context) {
  return Fetch(context, {"crash logs", "crash log", "logs"}, [](Camera& camera, Progress& progress) {
    ReadLimit limit = ReadLimit::OfBundle("the crash logs", kLargestBundle, Progress::Callback, progress);
    return camera.ReadCrashLogs(ReadLimit::Check, &limit, false, true);
  });
}

ExitCode RunCalibration(Context& context) {
  return Fetch(context, {"calibration", "calibration file", "files"}, [](Camera& camera, Progress& progress) {
    ReadLimit limit = ReadLimit::OfBundle("the calibration files", kLargestBundle, Progress::Callback, progress);
    return camera.ReadCalibration(ReadLimit::Check, &limit, true);
  });
}

constexpr Option kInto{"into", 'd', "FOLDER",
                       "Write into this folder instead of the current one; it is created if it does not exist.",
                       Offer::kFolder};
constexpr Option kCrashOptions[] = {
    kInto, {"delete", 0, "", "Delete each log on the camera once it is on this computer's disk."}};
constexpr Option kCalibrationOptions[] = {kInto};
constexpr Example kCrashExamples[] = {{"kelva crash-logs --into crashes --delete", "Move them here."}};
constexpr Example kCalibrationExamples[] = {
    {"kelva calibration --into calibration", "Keep them in a folder of their own."}};

constexpr Verb kVerbs[] = {
    {"crash-logs", "Fetch the camera's crash logs", kNoArguments, kCrashOptions,
     R"(All logs come in one bundle, of which 64 MiB are read at most; `kelva get` fetches the logs of a larger one. They stay on the camera unless you give --delete. A log that is in the folder
already is not written again. An existing file with other content is kept, and the new log gets a number.)",
     R"(logs: array of name, file, size, new, and with --delete deleted; or of path and error
failed: how many were not stored)",
     kCrashExamples, RunCrashLogs},
    {"calibration", "Fetch the camera's calibration files", kNoArguments, kCalibrationOptions,
     "The camera sends at most 31 files, in one bundle, of which 64 MiB are read at most.",
     "files: array of name, file, size, new; or of path and error\nfailed: how many were not stored",
     kCalibrationExamples, RunCalibration},
};

}  // namespace

std::span<const Verb> BundleVerbs() {
  return kVerbs;
}

}  // namespace apps
