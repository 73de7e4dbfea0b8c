// The verb thumb.
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Catalogue.h"
#include "apps/camera/ListedSizes.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "apps/camera/PictureStart.h"
#include "apps/camera/RemoteFile.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/SafeName.h"
#include "apps/files/StoreFile.h"
#include "apps/kelva/verbs/Each.h"
#include "apps/kelva/verbs/Verbs.h"
#include "apps/thumbnails/Thumbnail.h"

namespace apps {
namespace {

// The file that a thumbnail is of; of a picture without a JPEG file the first that it has.
std::string ShownFile(const DcfObj& picture) {
  const std::vector<int> types = FileTypes(picture);
  return PicturePath(picture, types.empty() ? kFirstFileType : types.front());
}

// Thumbnails of a camera's pictures, stored in a folder.
class Thumbs {
 public:
  Thumbs(Context& context, const Session& camera, const TargetFolder& folder)
      : context_(context), camera_(camera), folder_(folder), replace_(context.call.Has("force")), sizes_(*camera) {}

  Json Store(const DcfObj& picture) {
    context_.stop.Check();
    const std::string path = ShownFile(picture);
    context_.Doing("read " + ShownPath(path));
    const std::string name = SafeName(PictureStem(picture)) + "_thumb.jpg";
    CheckFree(name);
    const Thumbnail thumbnail = DrawOrFail(picture, path);
    NewFile file(folder_);
    file.Write(thumbnail.jpeg);
    replace_ ? NameReplacing(folder_, file, name) : NameNew(folder_, file, name);
    stored_.insert(name);
    if (!context_.Json()) context_.out.Add(Printable(folder_.PathOf(name)) + "\n");
    Json members = Json::Object().SetBytes("path", path).SetBytes("file", folder_.PathOf(name));
    members.Set("width", thumbnail.width).Set("height", thumbnail.height);
    return std::move(members.Set("time", thumbnail.time ? Json(*thumbnail.time) : Json()));
  }

 private:
  void CheckFree(const std::string& name) const {
    const std::string shown = Printable(folder_.PathOf(name));
    if (stored_.count(name) != 0) {
      throw Failure(ExitCode::kFailed, "The thumbnail of another of these pictures is " + shown +
                                           " already; put them into two folders with --into.");
    }
    if (replace_ || !folder_.Has(name)) return;
    throw Failure(ExitCode::kFailed, "There is a " + shown + " already, and it was kept; --force replaces it.");
  }

  Thumbnail DrawOrFail(const DcfObj& picture, const std::string& path) {
    const auto none = [&](const std::string& reason) {
      return Failure(ExitCode::kFailed, "There is no thumbnail of " + ShownPath(path) + ": " + reason + ".");
    };
    if (picture.hasJpg == 0) throw none("the picture has no JPEG file");
    try {
      return Draw(picture, path);
    } catch (const NoPicture& reason) {
      throw none(reason.what());
    }
  }

  Thumbnail Draw(const DcfObj& picture, const std::string& path) {
    const PictureStart start = ReadStart(camera_.Pointer(), picture);
    if (!start.IsWhole()) {
      try {
        return DrawThumbnailInStart(thumbnailer_, start.bytes, context_.stop);
      } catch (const NoThumbnail&) {
        // The whole file is drawn.
      }
    }
    return DrawThumbnail(thumbnailer_, ReadWhole(path), context_.stop);
  }

  std::vector<char> ReadWhole(const std::string& path) {
    RemoteFile remote(context_, camera_.Pointer(), path, sizes_.SizeOf(path));
    if (remote.Size() > kLargestPicture) throw NoPicture("it is larger than a file that a thumbnail is drawn from");
    std::vector<char> bytes;
    remote.Read([&](std::span<const char> piece) { bytes.insert(bytes.end(), piece.begin(), piece.end()); });
    return bytes;
  }

  Context& context_;
  const Session& camera_;
  const TargetFolder& folder_;
  const bool replace_;
  ListedSizes sizes_;  // of the files that are read in full
  Thumbnailer thumbnailer_;
  std::set<std::string> stored_;
};

// The pictures that a word means; nothing when it means none, which is reported.
std::vector<DcfObj> PicturesOf(Each& each, const std::vector<DcfObj>& catalogue, const std::string& word) {
  try {
    return FindPictures(catalogue, word);
  } catch (const Failure& failure) {
    each.Try(word, [&]() -> Json { throw Failure(failure); });
    return {};
  }
}

ExitCode RunThumb(Context& context) {
  // First, so that a camera that is not there leaves no folder behind.
  const Session camera(context, "read the picture catalogue");
  const TargetFolder folder = TargetFolder::OpenOrMakeMissing(context.call.Value("into").value_or("."));
  const std::vector<DcfObj> catalogue = ReadPictures(*camera);
  Thumbs thumbs(context, camera, folder);
  Each each(context, "pictures", CameraResult(camera));
  std::set<std::string> named;
  for (const std::string& word : context.call.words) {
    for (const DcfObj& picture : PicturesOf(each, catalogue, word)) {
      if (!named.insert(PictureName(picture)).second) continue;
      LetOthers(context);
      each.Try(ShownFile(picture), [&] { return thumbs.Store(picture); });
    }
  }
  return each.Finish(CameraResult(camera));
}

constexpr Argument kArguments[] = {{"PICTURE",
                                    "A picture, such as IMG_0001 or IMG_0001.JPG, its path, or a pattern in quotes. "
                                    "Where two have the same name, add the folder: 100ABCDE/IMG_0001.",
                                    Argument::Count::kOneOrMore, Offer::kPicture}};
constexpr Option kOptions[] = {
    {"into", 'd', "FOLDER", "Write into this folder, which is made if need be, instead of the current one.",
     Offer::kFolder},
    {"force", 'f', "", "Replace existing files."},
};
constexpr Example kExamples[] = {
    {"kelva thumb IMG_0001", "Write IMG_0001_thumb.jpg into the current folder."},
    {"kelva thumb '100ABCDE/*' -d /tmp/small", "Look at a whole folder of the camera."},
};

constexpr Verb kVerbs[] = {
    {"thumb", "Fetch thumbnails of pictures", kArguments, kOptions,
     R"(Writes a small JPEG file for each picture: PICTURE_thumb.jpg, upright as the camera was held, with at most 400 pixels
on its longer side. The thumbnail that a camera puts into the first 64 KiB of a JPEG file (EXIF) is taken where there is
one; it is often 160 by 120 pixels. Otherwise the file is read in full and drawn.

Pictures are decoded in a process without rights, kelva-thumbnail. Each file gets its name when it is whole and on disk. An
existing file is kept unless you give --force.)",
     R"(pictures: array of path, file (where the thumbnail was written), width, height and time (null if the picture has
  none); or of path and error
failed: how many have no thumbnail)",
     kExamples, RunThumb}};

}  // namespace

std::span<const Verb> ThumbVerbs() {
  return kVerbs;
}

}  // namespace apps
