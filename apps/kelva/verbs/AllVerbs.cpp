#include <vector>

#include "apps/kelva/verbs/Verbs.h"

namespace apps {

std::span<const Verb> AllVerbs() {
  static const std::vector<Verb> all = [] {
    std::vector<Verb> verbs;
    for (const auto& group :
         {ListVerbs(),    WatchVerbs(),   WaitVerbs(),   InfoVerbs(),    StateVerbs(),  ClockVerbs(),  FolderVerbs(),
          PictureVerbs(), SyncVerbs(),    GetVerbs(),    ChangeVerbs(),  KeyVerbs(),    WifiVerbs(),   ControlVerbs(),
          ConsoleVerbs(), MonitorVerbs(), BundleVerbs(), UpgradeVerbs(), ReportVerbs(), DoctorVerbs(), HelpVerbs()}) {
      verbs.insert(verbs.end(), group.begin(), group.end());
    }
    return verbs;
  }();
  return all;
}

}  // namespace apps
