// The verb capture.
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "apps/camera/CameraPath.h"
#include "apps/camera/NewPictures.h"
#include "apps/camera/Picture.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Session.h"
#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/SafeName.h"
#include "apps/files/StoreFile.h"
#include "apps/kelva/verbs/Each.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

void TakePicture(Context& context, const Session& camera) {
  if (!camera->CaptureImage(true)) {
    throw Failure(ExitCode::kRefused, "The camera did not accept the command to take a picture.");
  }
  context.reporter.Note("The camera was told to take a picture.");
}

Json FetchOne(Context& context, const Session& camera, const TargetFolder& folder, const std::string& path,
              const std::string& name) {
  context.Doing("read " + ShownPath(path));
  if (folder.Has(name)) {
    throw Failure(ExitCode::kFailed, "There is a " + Printable(folder.PathOf(name)) +
                                         " already, and it was kept; `kelva get` fetches the new picture into another "
                                         "folder.");
  }
  RemoteFile remote(context, camera.Pointer(), path);
  NewFile file(folder);
  remote.Read([&](std::span<const char> bytes) { file.Write(bytes); });
  context.stop.Check();
  NameNew(folder, file, name);
  if (!context.Json()) context.out.Add(Printable(folder.PathOf(name)) + "\n");
  return Json::Object().SetBytes("path", path).SetBytes("file", folder.PathOf(name)).Set("size", remote.Size());
}

ExitCode CaptureInto(Context& context, const std::string& into) {
  const TargetFolder folder = TargetFolder::OpenOrMake(into);
  { const NewFile trial(folder); }  // a picture that could not be stored is not taken
  const Session camera(context, "read the picture catalogue");
  NewPictures pictures;
  pictures.Look(*camera);
  context.Doing("take a picture");
  TakePicture(context, camera);
  context.Doing("wait for the new picture");
  // With --timeout the supervisor ends the wait.
  const auto patience = context.call.Has("timeout") ? std::chrono::hours(24 * 365) : 30s;
  const auto pause = [&] {
    std::this_thread::sleep_for(300ms);
    LetOthers(context);
  };
  Each each(context, "files", CameraResult(camera));
  for (const DcfObj& picture : AwaitPictures(pictures, *camera, context.stop, pause, patience)) {
    for (const int type : FileTypes(picture)) {
      const std::string path = PicturePath(picture, type);
      const std::string name = SafeName(PictureFileName(picture, type));
      each.Try(path, [&] { return FetchOne(context, camera, folder, path, name); });
    }
  }
  return each.Finish(CameraResult(camera));
}

ExitCode RunCapture(Context& context) {
  if (const auto into = context.call.Value("into")) return CaptureInto(context, *into);
  const Session camera(context, "take a picture");
  TakePicture(context, camera);
  return context.Result(CameraResult(camera), "");
}

constexpr Option kOptions[] = {{"into", 'd', "FOLDER",
                                "Wait for the new picture, and fetch its files into this folder, made if need be.",
                                Offer::kFolder}};
constexpr Example kExamples[] = {
    {"kelva capture", "Take a picture."},
    {"kelva capture --into ~/Pictures", "Take a picture and fetch it."},
};

constexpr Verb kVerbs[] = {
    {"capture", "Take a picture", kNoArguments, kOptions,
     R"(Without --into it returns as soon as the camera has accepted the command. The picture appears in the catalogue when
it is stored.

With --into it waits until the catalogue has a picture that was not there before and its files no longer grow, at most 30
seconds or as long as --timeout says (exit status 8), fetches all its files as `kelva get` does, and prints where they are.
A file that is there already is kept, and the new one stays on the camera. A picture that somebody takes with the camera's
own button meanwhile is fetched too.)",
     R"(files: with --into, array of path, file (where it was written), size; or of path and error
failed: with --into, how many were not fetched)",
     kExamples, RunCapture}};

}  // namespace

std::span<const Verb> CaptureVerbs() {
  return kVerbs;
}

}  // namespace apps
