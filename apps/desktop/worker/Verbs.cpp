// The kinds of workers, and their options.
#include "apps/desktop/worker/Verbs.h"

#include <string>

#include "apps/desktop/worker/Browser.h"
#include "apps/desktop/worker/Input.h"
#include "apps/desktop/worker/Watch.h"
#include "apps/import/ImportRun.h"

namespace apps {

ExitCode RunWatch(Context& context) {
  const auto input = Input::OfThisProcess();
  Watch(context).Run();
  return ExitCode::kDone;
}

ExitCode RunCamera(Context& context) {
  const auto input = Input::OfThisProcess();
  Browser(context, *input).Run();
  return context.Result(Json::Object(), "");
}

ExitCode RunImportForWindow(Context& context) {
  const auto input = Input::OfThisProcess();
  return RunImport(context, context.call.words[0], SyncChoiceOf(context));
}

namespace {

constexpr Option kOptions[] = {
    {"serial", 's', "SERIAL", "The camera with this USB serial number."},
    {"virtual", 0, "SOCKET", "Look for cameras on the virtual bus of `kelva-vcam serve`, not on this machine."},
    kJsonOption,
    {"wait-busy", 0, "SECONDS", "Wait this long for a camera that another program holds; the default is 10."},
    kHelpOption,
};
constexpr Argument kFolder[] = {{"FOLDER", "Where the pictures go; it is created if it does not exist."}};
constexpr Option kImportOptions[] = {
    {"types", 't', "LIST", "Only these types of files: jpg, raw, txt, 128, separated by commas."},
    {"pattern", 'p', "PATTERN", "How files are named below FOLDER; the default is {folder}/{name}."},
    {"everything", 'e', "", "Import also what is not in the catalogue."},
    {"pictures", 0, "FILE", "Only the pictures that this file names, one FOLDER/NAME a line."},
    {"delete-after-verify", 0, "",
     "Delete a file on the camera once it is here, and is as its key says or was read twice."},
};

constexpr Verb kVerbs[] = {
    {"watch", "Say which cameras come and go, and what is in the way", {}, {}, "", "", {}, RunWatch},
    {"camera", "Show one camera's pictures", {}, {}, "", "", {}, RunCamera, true},
    {"import", "Import pictures as `kelva sync` does", kFolder, kImportOptions, "", "", {}, RunImportForWindow, true},
};

}  // namespace

const Program& DesktopWorker() {
  static const Program program = {
      .name = "kelva-desktop-worker",
      .version = KELVA_VERSION,
      .summary = "Works with cameras for the window, which starts it",
      .description = "kelva-desktop starts this program. apps/desktop/worker/README.md says what they exchange.",
      .verbs = kVerbs,
      .options = kOptions,
      .plainErrors = true,
  };
  return program;
}

}  // namespace apps
