#include <unistd.h>

#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "apps/camera/Information.h"
#include "apps/camera/LastingSession.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Progress.h"
#include "apps/files/Sha1.h"
#include "apps/kelva/verbs/LocalFile.h"
#include "apps/kelva/verbs/Number.h"
#include "apps/kelva/verbs/Verbs.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

std::string Firmware(Camera& camera) {
  _VscCdbCameraInformation record{};
  return camera.CameraInformation(record) ? FirmwareIn(record) : "";
}

std::vector<char> ReadImage(const std::string& path) {
  std::vector<char> image = ReadLocalFile(path, static_cast<unsigned long long>(std::numeric_limits<int>::max()));
  if (image.empty()) throw Failure(ExitCode::kFailed, Printable(path) + " is empty; that is no firmware.");
  return image;
}

// Shows what would be sent and has it confirmed.
void Confirm(Context& context, const std::string& facts) {
  const bool asks = !context.call.Has("yes") && ::isatty(STDIN_FILENO) == 1;
  if (!asks) context.reporter.Note(facts);
  if (context.call.Has("yes")) return;
  if (!asks) throw Failure(ExitCode::kUsage, "An upgrade is confirmed on a terminal, or with --yes; nothing was sent.");
  context.reporter.Ask(facts);
  std::string answer;
  context.reporter.Ask("Send it? Type yes and press Enter:");
  for (char c = 0; ::read(STDIN_FILENO, &c, 1) == 1 && c != '\n';) answer += c;
  if (answer != "yes") throw Failure(ExitCode::kFailed, "The upgrade was not confirmed; nothing was sent.");
}

// One upgrade, over the restart of the camera that may come with it.
class Upgrade {
 public:
  explicit Upgrade(Context& context) : context_(context), session_(context) {}

  LastingSession& Session() { return session_; }

  void Send(const std::vector<char>& image) {
    context_.Doing("send the firmware");
    Progress progress(context_.reporter, context_.stop, "sending", image.size());
    session_.Device().Upgrade(image.data(), static_cast<int>(image.size()), Progress::Callback, &progress);
  }

  /// Until the camera says that it is done, or goes away to restart.
  void WaitUntilWritten() {
    context_.Doing("follow the upgrade");
    Progress progress(context_.reporter, context_.stop, "writing (do not switch the camera off)", 0);
    while (session_.IsOpen() && PollOnce(progress)) {
      context_.stop.Check();
      std::this_thread::sleep_for(200ms);
    }
  }

  /// The camera is back and ready.
  void WaitUntilBack() {
    context_.Doing("wait for the camera");
    if (!session_.IsOpen()) context_.reporter.Note("The camera restarts; waiting for it.");
    session_.WaitUntilReady();
  }

 private:
  // Whether it is still being written.
  bool PollOnce(Progress& progress) {
    float share = 0;
    bool running = false;
    bool failed = false;
    try {
      session_.Device().UpgradeStatus(share, running, failed);
    } catch (const CameraTransferError&) {
      session_.Drop();  // it restarts
      return false;
    }
    if (failed) {
      throw Failure(ExitCode::kRefused,
                    "The camera reports that the upgrade failed; it keeps the firmware it had. Check "
                    "that the file is meant for this camera, and repeat the command.");
    }
    progress.AtShare(static_cast<double>(share));
    return running;
  }

  Context& context_;
  LastingSession session_;
};

ExitCode RunUpgrade(Context& context) {
  const std::string& path = context.call.words[0];
  const std::vector<char> image = ReadImage(path);
  const std::string sha1 = Sha1(image);
  context.Doing("prepare the upgrade");
  Upgrade upgrade(context);
  const std::string before = Firmware(upgrade.Session().Device());
  const float battery = upgrade.Session().Device().BatteryLevel();
  Confirm(context, Printable(path) + ": " + Bytes(image.size()) + ", SHA-1 " + sha1 + "; firmware now " +
                       Printable(before) + "; battery level " + Shortest(battery) + " in the camera's own unit.");
  upgrade.Send(image);
  upgrade.WaitUntilWritten();
  upgrade.WaitUntilBack();
  const std::string after = Firmware(upgrade.Session().Device());
  Json members = CameraResult(upgrade.Session().Current());
  members.Set("size", image.size()).Set("sha1", sha1).Set("battery", NumberOf(battery));
  members.SetBytes("before", before).SetBytes("after", after);
  context.Result(std::move(members), Printable(after) + "\n");
  context.reporter.Note("The camera is back with firmware " + Printable(after) + ".");
  return ExitCode::kDone;
}

constexpr Argument kArguments[] = {{"FILE", "The firmware image.", Argument::Count::kOne, Offer::kFile}};
constexpr Option kOptions[] = {{"yes", 'y', "", "Send it without asking."}};
constexpr Example kExamples[] = {{"kelva upgrade firmware-2.1.bin", "Look at what would be sent, confirm, and wait."}};

constexpr Verb kVerbs[] = {{"upgrade", "Give the camera new firmware", kArguments, kOptions,
                            "Shows size and SHA-1 of the image, the firmware that the camera has and its battery level "
                            "as the camera gives it, and "
                            "asks before anything is sent. Then it shows how far sending and writing are, waits for "
                            "the camera to come back, and "
                            "says which firmware it now has.\n\nSending is refused by no camera at once: whether an "
                            "image was accepted is known only "
                            "when it has been written. Do not unplug the camera meanwhile. Ctrl-C while sending leaves "
                            "the image incomplete; the "
                            "camera then keeps its firmware.",
                            "size: of the image\nsha1: of the image\nbattery: level before, in the camera's own "
                            "unit\nbefore: firmware\nafter: "
                            "firmware",
                            kExamples, RunUpgrade}};

}  // namespace

std::span<const Verb> UpgradeVerbs() {
  return kVerbs;
}

}  // namespace apps
