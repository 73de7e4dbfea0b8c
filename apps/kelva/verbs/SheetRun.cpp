// `kelva pictures --sheet`: writes a contact sheet.
#include "apps/kelva/verbs/SheetRun.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "apps/camera/Clock.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/NewFile.h"
#include "apps/kelva/sheet/Page.h"
#include "apps/kelva/sheet/Sheet.h"

namespace apps {
namespace {

struct SheetPath {
  std::string folder;
  std::string name;
};

SheetPath Understand(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  SheetPath split{slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash), path.substr(slash + 1)};
  if (split.name.empty() || split.name == "." || split.name == "..") {
    throw Failure(ExitCode::kUsage, "--sheet takes the name of a file, for example pictures.html.");
  }
  return split;
}

Failure Taken(const TargetFolder& folder, const std::string& name) {
  return Failure(ExitCode::kFailed,
                 "There is a " + Printable(folder.PathOf(name)) + " already, and it was kept; --force replaces it.");
}

// A page of pictures being written; one picture of it is in memory.
class SheetFile {
 public:
  explicit SheetFile(const TargetFolder& folder) : folder_(folder), file_(folder) {}

  void Add(const std::string& html) {
    file_.Write(html);
    size_ += html.size();
  }
  void Finish(const std::string& name, bool replace) {
    file_.Flush();
    if (replace) {
      file_.ReplaceName(name);
    } else if (!file_.TakeName(name)) {
      throw Taken(folder_, name);
    }
    folder_.Sync();
  }
  unsigned long long Size() const { return size_; }

 private:
  const TargetFolder& folder_;
  NewFile file_;
  unsigned long long size_ = 0;
};

// A list that cannot be read costs links and time, and is no reason to draw nothing.
Manifest ManifestOf(Context& context, const TargetFolder& folder) {
  try {
    return Manifest(folder, false);
  } catch (const Failure& failure) {
    context.reporter.Note(failure.what());
    return {};
  }
}

PageFacts FactsOf(const RegistryCamera& camera, const std::vector<DcfObj>& catalogue) {
  PageFacts facts{camera.product, camera.serial, catalogue.size(), "", ""};
  for (const DcfObj& picture : catalogue) {
    const auto time = PictureTime(picture);
    if (!time) continue;
    facts.first = facts.first.empty() ? *time : std::min(facts.first, *time);
    facts.last = std::max(facts.last, *time);
  }
  return facts;
}

std::string Made() {
  return "Made with kelva " KELVA_VERSION " at " + HostTimeText(false, std::chrono::system_clock::now()) + ".";
}

std::string Line(const SheetTotals& totals, const std::string& path, unsigned long long size) {
  std::string text = Printable(path) + ": " + std::to_string(totals.drawn) + " drawn (" + Bytes(size) + "), ";
  if (totals.without != 0) text += std::to_string(totals.without) + " without a JPEG file, ";
  return text + std::to_string(totals.failed) + " failed\n";
}

ExitCode Finish(Context& context, const Session& camera, Sheet& sheet, const std::string& path,
                unsigned long long size) {
  const SheetTotals& totals = sheet.Totals();
  const ExitCode code = totals.failed == 0 ? ExitCode::kDone : ExitCode::kPartial;
  Json members = CameraResult(camera);
  members.SetBytes("file", path)
      .Set("size", size)
      .Set("drawn", totals.drawn)
      .Set("fetched", totals.fetched)
      .Set("kept", totals.kept);
  members.Set("without_jpeg", totals.without).Set("failed", totals.failed).Set("pictures", sheet.TakeList());
  return context.Result(std::move(members), Line(totals, path, size), code);
}

}  // namespace

ExitCode RunSheet(Context& context, const std::string& path) {
  const SheetPath target = Understand(path);
  const bool replace = context.call.Has("force");
  const Session camera(context, "read the picture catalogue");
  const TargetFolder folder = TargetFolder::OpenOrMakeMissing(target.folder);
  if (!replace && folder.Has(target.name)) throw Taken(folder, target.name);
  const std::vector<DcfObj> catalogue = InSheetOrder(ReadPictures(*camera));
  context.Doing("list the folders of the pictures");
  const std::vector<FileSizes> sizes = ReadFileSizes(context.stop, *camera, catalogue);

  SheetFile file(folder);
  Page page;
  file.Add(page.Start(FactsOf(camera.Facts(), catalogue)));
  Manifest manifest = ManifestOf(context, folder);
  DrawnBefore drawn(DrawnBefore::Folder(), camera.Facts().serial);
  Sheet sheet(context, camera.Pointer(), {folder, manifest, camera.Facts().serial, catalogue}, &drawn,
              camera.Facts().serial);
  sheet.Draw(catalogue, sizes, [&](const Card& card) { file.Add(page.Picture(card)); });
  file.Add(page.End(Made()));
  context.stop.Check();
  file.Finish(target.name, replace);
  drawn.Finish();
  return Finish(context, camera, sheet, path, file.Size());
}

}  // namespace apps
