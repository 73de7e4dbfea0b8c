#ifndef KELVA_APPS_IMPORT_ASK_TIMES_H_
#define KELVA_APPS_IMPORT_ASK_TIMES_H_

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <span>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/import/PictureTimes.h"
#include "apps/import/Plan.h"
#include "src/wifi/Camera.h"
#include "src/wifi/DcfObj.h"
#include "src/wifi/FileReader.h"

namespace apps {

/// Reads the start of a picture's JPEG file and asks when it was taken, unless that was asked before. A picture without
/// a JPEG file, or whose file cannot be read, has the catalogue's time. Returns how many bytes were read. Throws CameraError when the
/// camera has gone. Ends what was selected on the camera.
std::size_t AskTime(Context& context, const boost::shared_ptr<Camera>& camera, const DcfObj& picture,
                    PictureTimes& times);

/// AskTime for each picture, with progress in the phase "dates". Says at its end how many were looked into. Throws Stopped
/// too.
void AskTimes(Context& context, const boost::shared_ptr<Camera>& camera, const std::vector<const DcfObj*>& pictures,
              PictureTimes& times);

/// The start of a picture's JPEG file says when it was taken, for all its files. Other files, and null `times`: nothing.
void LearnTime(PictureTimes* times, const SyncItem& item, std::span<const char> start);
/// The same for a file of which only the end came in this run: reads its start.
void LearnTimeOfPart(PictureTimes* times, const SyncItem& item, kelva::FileReader& reader);

/// What MakePlan needs to name files by these times. All outlive it and its plan.
PlanTimes TimesForNames(Context& context, const boost::shared_ptr<Camera>& camera, PictureTimes& times);
/// A note when no picture could be asked about: dates then come from the catalogue. Once for each `times`.
void NoteTrouble(Context& context, const PictureTimes& times);

}  // namespace apps

#endif  // KELVA_APPS_IMPORT_ASK_TIMES_H_
