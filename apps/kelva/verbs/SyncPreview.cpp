// What sync --dry-run shows.
#include "apps/kelva/verbs/SyncPreview.h"

#include <string>

#include "apps/camera/CameraPath.h"
#include "apps/commandline/Printable.h"

namespace apps {

ExitCode ShowPlan(Context& context, const Session& camera, const SyncPlan& plan) {
  for (const SyncItem& item : plan.items) {
    if (!item.IsNew()) continue;
    context.Event("would_store", Json::Object().SetBytes("path", item.CameraPath()).SetBytes("file", item.LocalText()),
                  ShownPath(item.CameraPath()) + "  ->  " + Printable(item.LocalText()) + "\n");
  }
  const std::size_t fresh = plan.NewFiles();
  context.Result(CameraResult(camera).Set("new", fresh).Set("known", plan.items.size() - fresh), "");
  context.reporter.Note(std::to_string(fresh) + " files are new; nothing was fetched.");
  return ExitCode::kDone;
}

}  // namespace apps
