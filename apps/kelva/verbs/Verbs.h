#ifndef KELVA_APPS_KELVA_VERBS_VERBS_H_
#define KELVA_APPS_KELVA_VERBS_VERBS_H_

#include <span>

#include "apps/commandline/Program.h"

namespace apps {

// The table of verbs, one group for each file. Kelva.cpp puts them in the order of the help.

std::span<const Verb> ListVerbs();     ///< list
std::span<const Verb> WatchVerbs();    ///< watch
std::span<const Verb> WaitVerbs();     ///< wait
std::span<const Verb> InfoVerbs();     ///< info
std::span<const Verb> StateVerbs();    ///< ready, battery, done-count, reboot
std::span<const Verb> CaptureVerbs();  ///< capture
std::span<const Verb> ClockVerbs();    ///< time
std::span<const Verb> FolderVerbs();   ///< ls, tree
std::span<const Verb> PictureVerbs();  ///< pictures, pictures rm
std::span<const Verb> ThumbVerbs();    ///< thumb
std::span<const Verb> SyncVerbs();     ///< sync
std::span<const Verb> GetVerbs();      ///< get
std::span<const Verb> MountVerbs();    ///< mount, where the system has the interface for it
std::span<const Verb> ChangeVerbs();   ///< put, rm
std::span<const Verb> KeyVerbs();      ///< batch get, batch rm, raw
std::span<const Verb> WifiVerbs();     ///< wifi name, wifi passphrase, wifi auth, wifi off
std::span<const Verb> ControlVerbs();  ///< control, control set
std::span<const Verb> ConsoleVerbs();  ///< console
std::span<const Verb> MonitorVerbs();  ///< monitor
std::span<const Verb> BundleVerbs();   ///< crash-logs, calibration
std::span<const Verb> UpgradeVerbs();  ///< upgrade
std::span<const Verb> ReportVerbs();   ///< report
std::span<const Verb> SurveyVerbs();   ///< survey
std::span<const Verb> DoctorVerbs();   ///< doctor

/// The tool: these verbs, then HelpVerbs(), and the options of all.
const Program& Kelva();

}  // namespace apps

#endif  // KELVA_APPS_KELVA_VERBS_VERBS_H_
