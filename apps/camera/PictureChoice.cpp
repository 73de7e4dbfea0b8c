// Picks pictures of the catalogue by date and folder.
#include "apps/camera/PictureChoice.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "apps/camera/CameraPath.h"
#include "apps/camera/Meant.h"
#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "base/Ascii.h"

namespace apps {
namespace {

// "2026-03-14T15:09" as the catalogue writes it. Dates in this form sort as texts do.
std::string StartOfADate(std::string text) {
  constexpr std::array<std::string_view, 5> kShapes = {"0000", "0000-00", "0000-00-00", "0000-00-00 00:00",
                                                       "0000-00-00 00:00:00"};
  constexpr std::size_t kBlank = kShapes[2].size();
  if (text.size() > kBlank && text[kBlank] == 'T') text[kBlank] = ' ';
  for (const std::string_view shape : kShapes) {
    if (base::HasShape(text, shape)) return text;
  }
  throw Failure(ExitCode::kUsage, "--since takes a date such as 2026, 2026-03-14 or '2026-03-14 15:09', not \"" +
                                      Printable(text) + "\".");
}

}  // namespace

PictureChoice::PictureChoice(const Context& context)
    : since_(context.call.Value("since")), folder_(context.call.Value("folder")) {
  if (since_) since_ = StartOfADate(*since_);
}

void PictureChoice::Apply(std::vector<DcfObj>& pictures, Context& context) const {
  std::size_t undated = 0;
  std::erase_if(pictures, [&](const DcfObj& picture) {
    const std::string folder = PictureFolder(picture);
    if (folder_ && !SameName(*folder_, folder) && !MatchesName(*folder_, folder)) return true;
    if (!since_) return false;
    const auto time = PictureTime(picture);
    undated += time ? 0U : 1U;
    return !time || *time < *since_;
  });
  if (undated == 0) return;
  context.reporter.Note(std::to_string(undated) + (undated == 1 ? " picture has" : " pictures have") +
                        " no date in the catalogue and " + (undated == 1 ? "was" : "were") + " left out.");
}

}  // namespace apps
