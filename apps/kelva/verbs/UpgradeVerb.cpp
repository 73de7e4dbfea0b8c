// The verb upgrade.
#include <unistd.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <thread>

#include "apps/camera/Battery.h"
#include "apps/camera/Information.h"
#include "apps/camera/LastingSession.h"
#include "apps/camera/RemoteFile.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Printable.h"
#include "apps/commandline/Progress.h"
#include "apps/files/Sha1.h"
#include "apps/kelva/verbs/Consent.h"
#include "apps/kelva/verbs/LocalFile.h"
#include "apps/kelva/verbs/Number.h"
#include "apps/kelva/verbs/TextKind.h"
#include "apps/kelva/verbs/Verbs.h"
#include "base/Ascii.h"

namespace apps {
namespace {

using namespace std::chrono_literals;

// Empty when the camera does not say it.
std::string Firmware(LastingSession& session) {
  _VscCdbCameraInformation record{};
  return session.Device().CameraInformation(record) ? FirmwareIn(record, session.Current().Facts()) : "";
}

std::string Named(const std::string& firmware) {
  return firmware.empty() ? "unknown" : Printable(firmware);
}

/// A firmware image, and the SHA-1 that is shown before it is sent.
class Image {
 public:
  explicit Image(const std::string& path) : path_(path), file_(path, kLargestFile), sha1_(file_.Sha1()) {
    if (Size() == 0) throw Failure(ExitCode::kFailed, Printable(path) + " is empty; that is no firmware.");
  }

  std::uint32_t Size() const { return file_.Size(); }
  std::string Head(std::size_t most) const { return file_.Head(most); }
  const std::string& Sha1() const { return sha1_; }

  /// Fills the next chunk. Throws Failure in place of the last one when the file is not the one that was shown: the camera
  /// then has an incomplete image, which it does not write.
  void Fill(std::span<char> chunk) {
    file_.Read(chunk);
    sent_.Add(chunk);
    given_ += chunk.size();
    if (given_ < Size() || sent_.Take() == sha1_) return;
    throw Failure(ExitCode::kFailed, Printable(path_) +
                                         " changed while it was sent; the camera got an incomplete image and keeps "
                                         "the firmware it had. Repeat the command.");
  }

 private:
  const std::string path_;
  LocalFile file_;
  const std::string sha1_;
  Sha1Sum sent_;
  std::uint64_t given_ = 0;
};

// A page that a browser saved in place of a download.
void RefuseText(const Context& context, const std::string& path, const Image& image) {
  constexpr std::size_t kHead = 4096;
  const std::string_view kind = TextKind(image.Head(kHead));
  if (kind.empty() || context.call.Has("text")) return;
  throw Failure(ExitCode::kFailed, Printable(path) + " is " + std::string(kind) +
                                       ", and firmware hardly ever is; nothing was sent. Download it again, or "
                                       "send it with --text if it is meant to be one.");
}

void CompareSha1(const std::optional<std::string>& wanted, const std::string& path, const Image& image) {
  if (!wanted || base::Lower(*wanted) == image.Sha1()) return;
  throw Failure(ExitCode::kFailed, Printable(path) + " has the SHA-1 " + image.Sha1() + ", not " + *wanted +
                                       "; nothing was sent. Download it again.");
}

std::optional<std::string> WantedSha1(const Context& context) {
  auto wanted = context.call.Value("sha1");
  if (!wanted || IsKey(*wanted)) return wanted;
  throw Failure(ExitCode::kUsage, "--sha1 takes 40 hexadecimal digits, not \"" + Printable(*wanted) + "\".");
}

// In the camera's own unit; nothing without the option.
std::optional<float> LeastBattery(const Context& context) {
  const auto text = context.call.Value("min-battery");
  if (!text) return std::nullopt;
  const auto number = ParseDecimal(*text);
  const auto level = static_cast<float>(number.value_or(-1));
  if (IsReadableLevel(level)) return level;
  throw Failure(ExitCode::kUsage,
                "--min-battery takes a number as `kelva battery` shows it, not \"" + Printable(*text) + "\".");
}

void CompareBattery(std::optional<float> least, float level) {
  if (!least || (IsReadableLevel(level) && level >= *least)) return;
  throw Failure(ExitCode::kFailed, "The camera's battery level is " + LevelText(level) +
                                       ", and --min-battery asks for " + Shortest(*least) +
                                       ", both in the camera's own unit; nothing was sent.");
}

// Shows what would be sent and has it confirmed.
void Confirm(Context& context, const std::string& facts) {
  if (CanAsk(context)) return Ask(context, {facts, "Send it?", "nothing was sent"});
  context.reporter.Note(facts);
  if (context.call.Has("yes")) return;
  throw Failure(ExitCode::kUsage, "An upgrade is confirmed on a terminal, or with --yes; nothing was sent.");
}

// One upgrade, over the restart of the camera that may come with it.
class Upgrade {
 public:
  explicit Upgrade(Context& context) : context_(context), session_(context) {}

  LastingSession& Session() { return session_; }

  void Send(Image& image) {
    context_.Doing("send the firmware");
    HoldForLong(context_);
    Progress progress(context_.reporter, context_.stop, "sending", image.Size());
    kelva::Upgrade(
        session_.Device(), image.Size(), [&image](std::span<char> chunk) { image.Fill(chunk); }, Progress::Callback,
        &progress);
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
  const auto sha1 = WantedSha1(context);
  const auto leastBattery = LeastBattery(context);
  Image image(path);
  CompareSha1(sha1, path, image);
  RefuseText(context, path, image);
  context.Doing("prepare the upgrade");
  Upgrade upgrade(context);
  const std::string before = Firmware(upgrade.Session());
  const float battery = upgrade.Session().Device().BatteryLevel();
  CompareBattery(leastBattery, battery);
  Confirm(context, Printable(path) + ": " + Bytes(image.Size()) + ", SHA-1 " + image.Sha1() + "; firmware now " +
                       Named(before) + "; battery level " + LevelText(battery) + " in the camera's own unit.");
  upgrade.Send(image);
  upgrade.WaitUntilWritten();
  upgrade.WaitUntilBack();
  const std::string after = Firmware(upgrade.Session());
  Json members = CameraResult(upgrade.Session().Current());
  members.Set("size", image.Size())
      .Set("sha1", image.Sha1())
      .Set("battery", IsReadableLevel(battery) ? NumberOf(battery) : Json());
  members.SetBytes("before", before).SetBytes("after", after);
  context.Result(std::move(members), Named(after) + "\n");
  context.reporter.Note(after.empty() ? "The camera is back; it does not say which firmware it has."
                                      : "The camera is back with firmware " + Printable(after) + ".");
  return ExitCode::kDone;
}

constexpr Argument kArguments[] = {{"FILE", "The firmware image.", Argument::Count::kOne, Offer::kFile}};
constexpr Option kOptions[] = {
    {"yes", 'y', "", "Send it without asking."},
    {"sha1", 0, "HEX", "Send the image only if it has this SHA-1."},
    {"min-battery", 0, "LEVEL", "Send it only if the battery level, as `kelva battery` shows it, is this or more."},
    {"text", 0, "", "Send it even if it is a text."},
};
constexpr Example kExamples[] = {
    {"kelva upgrade firmware-2.1.bin", "Show what would be sent, confirm, and wait."},
    {"kelva upgrade --yes --sha1 a9993e364706816aba3e25717850c26c9cd0d89d firmware-2.1.bin",
     "Send it without asking if it is the image that was announced."},
};

constexpr Verb kVerbs[] = {
    {"upgrade", "Give the camera new firmware", kArguments, kOptions,
     R"(Shows the size and SHA-1 of the image, the camera's firmware and its battery level in the camera's own unit,
and asks before it sends anything. Then it shows how far sending and writing are, waits until the camera is back, and
says which firmware it has now.

An image that does not have the SHA-1 of --sha1 is not sent, and neither is a text or an HTML page, which a browser
may have saved in place of a download. --min-battery compares numbers: which unit a camera's level has, and what is
enough for an upgrade, only its maker knows.

The camera accepts every image and checks it only when it is written. Do not unplug the camera until then. After
Ctrl-C while sending, the image is incomplete and the camera keeps its firmware.)",
     R"(size: of the image
sha1: of the image
battery: the level before, in the camera's own unit; null if it cannot be a level
before: the firmware; empty if the camera does not say it
after: the firmware, likewise)",
     kExamples, RunUpgrade}};

}  // namespace

std::span<const Verb> UpgradeVerbs() {
  return kVerbs;
}

}  // namespace apps
