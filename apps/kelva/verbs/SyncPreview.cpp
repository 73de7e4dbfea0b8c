// What sync --dry-run shows.
#include "apps/kelva/verbs/SyncPreview.h"

#include <map>
#include <optional>
#include <string>

#include "apps/camera/CameraPath.h"
#include "apps/camera/ListedSizes.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FreeSpace.h"
#include "apps/import/Coming.h"
#include "apps/import/SyncSummary.h"
#include "apps/kelva/verbs/ToDelete.h"

namespace apps {
namespace {

struct Preview {
  Coming all;
  std::map<std::string, Coming> folders;  ///< below the target
  Coming gone;                            ///< from the camera
};

std::string FolderIn(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash);
}

void ShowFile(Context& context, const std::string& path, const std::string& file,
              std::optional<unsigned long long> size, Preview& preview) {
  preview.all.Add(size);
  preview.folders[FolderIn(file)].Add(size);
  Json members = Json::Object().SetBytes("path", path).SetBytes("file", file);
  if (size) members.Set("size", *size);
  context.Event("would_store", std::move(members),
                ShownPath(path) + "  ->  " + ShellWord(file) + "  " + (size ? Bytes(*size) : "unknown size") + "\n");
}

void ShowDeletion(Context& context, const std::string& path, std::optional<unsigned long long> size, Preview& preview) {
  preview.gone.Add(size);
  Json members = Json::Object().SetBytes("path", path);
  if (size) members.Set("size", *size);
  context.Event("would_delete", std::move(members), ShownPath(path) + "  would be deleted on the camera\n");
}

Json InJson(const std::map<std::string, Coming>& folders) {
  Json all = Json::Array();
  for (const auto& [name, coming] : folders) {
    all.Push(Json::Object().SetBytes("folder", name).Set("files", coming.files).Set("bytes", coming.bytes));
  }
  return all;
}

std::string TotalsInWords(const Preview& preview, std::size_t known, std::optional<unsigned long long> free) {
  std::string text = preview.all.files + preview.gone.files == 0 ? "" : "\n";
  for (const auto& [name, coming] : preview.folders) text += Printable(name) + ": " + coming.Text() + "\n";
  text += "To fetch: " + preview.all.Text() + "; " + std::to_string(known) + " known before";
  text += free ? "; " + Bytes(*free) + " free.\n" : ".\n";
  return preview.gone.files == 0 ? text : text + "To delete on the camera: " + preview.gone.Text() + ".\n";
}

}  // namespace

ExitCode ShowPlan(Context& context, const Session& camera, const SyncPlan& plan, const PreviewTarget& target) {
  ListedSizes sizes(*camera);
  Preview preview;
  for (const SyncItem& item : plan.items) {
    if (!item.IsNew()) continue;
    ShowFile(context, item.CameraPath(), item.LocalText(), ListedSize(item, sizes), preview);
  }
  const bool deletes = context.call.Has("delete-after-verify");
  if (deletes) {
    for (const SyncItem* item : ToDelete(plan, sizes)) {
      ShowDeletion(context, item->CameraPath(), ListedSize(*item, sizes), preview);
    }
  }
  const std::size_t known = plan.items.size() - plan.NewFiles();
  const auto free = FreeSpaceFor(target.path);
  Json members = CameraResult(camera).Set("new", preview.all.files).Set("known", known).Set("bytes", preview.all.bytes);
  members.Set("unlisted", preview.all.unlisted).Set("folders", InJson(preview.folders));
  members.Set("others", plan.othersLeftOut).Set("others_bytes", plan.othersLeftOutBytes);
  if (deletes) members.Set("to_delete", preview.gone.files);
  if (free) members.Set("free", *free);
  context.Result(std::move(members),
                 TotalsInWords(preview, known, free) +
                     OthersInWords(plan.othersLeftOut, plan.othersLeftOutBytes, context.call.Has("since")));
  const std::string tooLittle =
      WhyTooLittleRoom(ToBeWritten(plan, sizes, target.folder, target.manifest), free, target.path);
  context.reporter.Note(!tooLittle.empty() ? tooLittle
                        : deletes          ? "Nothing was fetched or deleted."
                                           : "Nothing was fetched.");
  return ExitCode::kDone;
}

}  // namespace apps
