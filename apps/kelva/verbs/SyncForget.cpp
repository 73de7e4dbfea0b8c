// `kelva sync --forget`: pictures that were thrown away on purpose, and parts that nobody will complete.
#include "apps/kelva/verbs/SyncForget.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Catalogue.h"
#include "apps/camera/Meant.h"
#include "apps/camera/Picture.h"
#include "apps/camera/PictureList.h"
#include "apps/camera/Session.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/files/FolderLock.h"
#include "apps/import/CutFiles.h"
#include "apps/import/LetGo.h"
#include "apps/import/Others.h"
#include "apps/import/Plan.h"
#include "apps/kelva/verbs/Each.h"

namespace apps {
namespace {

void RefuseOtherWork(const Context& context) {
  for (const char* option : {"all", "dry-run", "verify", "delete-after-verify"}) {
    if (!context.call.Has(option)) continue;
    throw Failure(ExitCode::kUsage,
                  "--forget fetches and deletes nothing; use it without --" + std::string(option) + ".");
  }
}

bool Means(const std::string& word, const OtherFile& file) {
  const std::string name = Split(file.path).name;
  return SameName(ToCameraPath(word), file.path) || SameName(word, name) || MatchesName(word, name);
}

// The files of the pictures, and the other files, that a word means. Throws Failure when it means none.
std::vector<const SyncItem*> ItemsOf(const SyncPlan& plan, const std::string& word) {
  std::vector<const SyncItem*> items;
  for (const SyncItem& item : plan.items) {
    if (!item.IsPicture() && Means(word, item.Other())) items.push_back(&item);
  }
  try {
    for (const DcfObj& picture : FindPictures(plan.source->catalogue, word)) {
      for (const SyncItem& item : plan.items) {
        if (item.IsPicture() && EntryBytes(item.Picture()) == EntryBytes(picture)) items.push_back(&item);
      }
    }
  } catch (const Failure&) {
    if (items.empty()) throw;
  }
  return items;
}

class Forgetting {
 public:
  Forgetting(Context& context, const TargetFolder& folder, Manifest& manifest)
      : context_(context), folder_(folder), manifest_(manifest), cuts_(folder, manifest) {}

  /// Lets go what one word means. Throws Failure when there is nothing to let go.
  Json Forget(const std::string& word, const std::vector<const SyncItem*>& items) {
    Json files = Json::Array();
    bool any = false;
    std::string why = "nothing of it was fetched into " + Printable(folder_.Path()) + ".";
    for (const SyncItem* const item : items) {
      const std::string path = item->CameraPath();
      const auto forgotten = [&](const char* was, const std::string& sentence) {
        any = true;
        if (!context_.Json()) context_.out.Add(sentence + "\n");
        files.Push(Json::Object().SetBytes("path", path).Set("was", was));
      };
      switch (LetGo(*item, folder_, manifest_, cuts_)) {
        case LetGoOutcome::kFile:
          forgotten("fetched", ShownPath(path) + " need not be here any more.");
          break;
        case LetGoOutcome::kBefore:
          forgotten("forgotten", ShownPath(path) + " was forgotten before.");
          break;
        case LetGoOutcome::kPart:
          forgotten("part", "The part of " + ShownPath(path) + " that was here is gone.");
          break;
        case LetGoOutcome::kHere:
          why = Stored(*item) + " is here; delete or move it first.";
          break;
        case LetGoOutcome::kEdited:
          why = Stored(*item) + " was edited after it was fetched; delete or move it first.";
          break;
        case LetGoOutcome::kNotFetched:
          break;
      }
    }
    if (!any) throw Failure(ExitCode::kFailed, "Cannot forget " + Printable(word) + ": " + why);
    return Json::Object().SetBytes("picture", word).Set("files", std::move(files));
  }

 private:
  std::string Stored(const SyncItem& item) const { return Printable(manifest_.Find(item.Key())->path); }

  Context& context_;
  const TargetFolder& folder_;
  Manifest& manifest_;
  CutFiles cuts_;
};

}  // namespace

ExitCode RunForget(Context& context) {
  RefuseOtherWork(context);
  const std::vector<int> types = ParseTypes(context.call.Value("types"));
  const TargetFolder folder = TargetFolder::Open(context.call.words[0]);
  const Session camera(context, "read the picture catalogue");
  const FolderLock lock(folder);
  Manifest manifest(folder, true);
  SyncPlan plan =
      MakePlan(ReadPictures(*camera), camera.Facts().serial, types, Pattern(Pattern::kDefault), manifest, nullptr);
  AddOthers(plan, FindOthers(context, *camera, plan.source->catalogue), true, manifest);
  Forgetting forgetting(context, folder, manifest);
  Each each(context, "forgotten", CameraResult(camera));
  for (const std::string& word : context.call.Values("forget")) {
    each.Try(word, [&] { return forgetting.Forget(word, ItemsOf(plan, word)); });
  }
  return each.Finish(CameraResult(camera));
}

}  // namespace apps
