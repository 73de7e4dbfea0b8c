// Reads the options of sync.
#include "apps/import/SyncChoice.h"

#include <string>

#include "apps/commandline/Failure.h"
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

}  // namespace

SyncChoice SyncChoiceOf(const Context& context) {
  return {PatternOf(context), ParseTypes(context.call.Value("types")), context.call.Has("everything"),
          PictureChoice(context)};
}

}  // namespace apps
