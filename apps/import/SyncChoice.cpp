// Reads the options of sync.
#include "apps/import/SyncChoice.h"

#include <cerrno>
#include <fstream>
#include <string>

#include "apps/camera/Picture.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Words.h"
#include "apps/import/Plan.h"

namespace apps {
namespace {

Pattern PatternOf(const Context& context) {
  const auto pattern = context.call.Value("pattern");
  const auto by = context.call.Value("by");
  if (pattern && by) throw Failure(ExitCode::kUsage, "Use --by or --pattern, not both.");
  if (by) return Pattern(Pattern::By(*by));
  return Pattern(pattern.value_or(std::string(Pattern::kDefault)));
}

std::optional<std::set<std::string>> NamesIn(const std::optional<std::string>& path) {
  if (!path) return std::nullopt;
  std::ifstream file(*path);
  if (!file) throw SystemFailure("read the list of pictures " + Printable(*path), errno);
  std::set<std::string> names;
  for (std::string line; std::getline(file, line);) names.insert(line);
  return names;
}

}  // namespace

std::string SyncChoice::NameOf(const DcfObj& picture) {
  return EncodedWord(PictureFolder(picture)) + "/" + EncodedWord(PictureStem(picture));
}

SyncChoice SyncChoiceOf(const Context& context) {
  return {PatternOf(context), ParseTypes(context.call.Value("types")), context.call.Has("everything"),
          PictureChoice(context), NamesIn(context.call.Value("pictures"))};
}

}  // namespace apps
