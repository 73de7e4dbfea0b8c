#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <set>

#include "tests/kernel/cases/Background.h"
#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"
#include "tests/kernel/cases/Seat.h"
#include "vcam/usbip/CableFaults.h"

// The tool on a real device node: whole cards, broken transfers, and who may use it.

namespace {

namespace fs = std::filesystem;
using tap::Check;
using tap::Note;

constexpr const char* kSerial = "T1";
constexpr const char* kTarget = "/tmp/fetched";
constexpr const char* kPictureName = "IMG_0001.JPG";

Outcome Tool(std::vector<std::string> words) {
  words.insert(words.begin(), "kelva");
  words.insert(words.end(), {"--serial", kSerial});
  return RunProgram(words);
}

// A tree as cameras have them, with sizes around the chunk.
std::vector<std::string> PutTree(const Card& card) {
  const std::vector<std::pair<std::string, std::size_t>> files{
      {"DCIM/100ABCDE/IMG_0001.JPG", 1},         {"DCIM/100ABCDE/IMG_0002.JPG", 65'535},
      {"DCIM/100ABCDE/IMG_0003.RAW", 65'536},    {"DCIM/100ABCDE/IMG_0004.RAW", 65'537},
      {"DCIM/101ABCDE/IMG_0005.JPG", 511},       {"DCIM/101ABCDE/IMG_0006.JPG", 512},
      {"DCIM/102FGHIJ/IMG_0007.RAW", 1'234'567}, {"MISC/NOTE.TXT", 42},
  };
  std::vector<std::string> paths;
  for (const auto& [path, size] : files) {
    card.Put(path, size);
    paths.push_back("I:/" + path);
  }
  return paths;
}

void FetchWholeCard() {
  const Card card("tool");
  const auto paths = PutTree(card);
  const Plugged plugged(card.Inserted(kSerial));
  fs::remove_all(kTarget);
  fs::create_directories(kTarget);
  std::vector<std::string> words{"get", "--into", kTarget};
  words.insert(words.end(), paths.begin(), paths.end());
  const Outcome outcome = Tool(words);
  Check(outcome.code == 0, outcome.output);
  for (const std::string& path : paths) {
    const fs::path original = card.folder() / path.substr(3);
    const Outcome compare = RunProgram({"cmp", original.string(), (fs::path(kTarget) / original.filename()).string()});
    Check(compare.code == 0, path + " differs: " + compare.output);
  }
}

// Nothing when one fetch ended well: the right file, or an error and no file.
std::optional<std::string> FetchOne(const Card& card, const std::set<int>& codes) {
  fs::remove_all(kTarget);
  fs::create_directories(kTarget);
  const Outcome outcome = Tool({"get", "I:/DCIM/100ABCDE/IMG_0001.JPG", "--into", kTarget});
  const fs::path file = fs::path(kTarget) / kPictureName;
  const auto left = std::distance(fs::directory_iterator(kTarget), {});
  if (outcome.code == 0) {
    const Outcome compare = RunProgram({"cmp", file.string(), (card.folder() / "DCIM/100ABCDE/IMG_0001.JPG").string()});
    return compare.code == 0 ? std::nullopt : std::optional("it gave another file: " + compare.output);
  }
  if (left != 0) return "it left a file behind after " + outcome.output;
  if (codes.contains(outcome.code) && !outcome.output.empty()) return std::nullopt;
  return "it ended with " + std::to_string(outcome.code) + ": " + outcome.output;
}

void FetchUnderFaults() {
  const Card card("tool");
  PutPictures(card);
  Plugged plugged(card.Inserted(kSerial));
  const auto before = plugged.cable().Commands();
  if (const auto complaint = FetchOne(card, {})) Check(false, *complaint);
  const auto commands = plugged.cable().Commands() - before;
  int wrong = 0;
  for (const char* fault : {"fail", "short", "surplus2", "stall", "hang", "half-residue", "huge-residue",
                            "zero-residue", "skip-data", "wrong-tag", "fail-no-sense", "phase-error", "babble"}) {
    for (std::uint64_t at = 1; at <= commands; ++at) {
      vcam::usbip::ArmByText(std::string(fault) + "@" + std::to_string(at), plugged.camera(), plugged.cable());
      const auto complaint = FetchOne(card, {1, 6, 7, 8});
      plugged.camera().Disarm();
      plugged.cable().Disarm();
      if (!complaint) continue;
      ++wrong;
      Note(std::string(fault) + " at command " + std::to_string(at) + ": " + *complaint);
    }
  }
  Note(std::to_string(commands) + " commands");
  Check(wrong == 0, std::to_string(wrong) + " fetches ended badly");
}

void FetchFromAPulledCamera() {
  const Card card("tool");
  PutPictures(card);
  std::minstd_rand numbers(7);
  for (int i = 0; i < 10; ++i) {
    Plugged plugged(card.Inserted(kSerial));
    const std::uint64_t byte = 1 + numbers() % kPictureSize;
    plugged.camera().Arm({vcam::FaultKind::kUnplugAtByte, byte});
    const auto complaint = FetchOne(card, {5});
    if (complaint) Check(false, "pulled at byte " + std::to_string(byte) + ": " + *complaint);
  }
}

/// A disk of the kernel's own, with a file system, while the object lives. What lies on it is in nobody's memory group.
class Disk {
 public:
  explicit Disk(int megabytes) {
    Do({"modprobe", "scsi_debug", "dev_size_mb=" + std::to_string(megabytes)});
    Check(Eventually([] { return !Node().empty(); }), "there is no disk");
    Do({"mke2fs", Node()});
    fs::create_directories(kFolder);
    Do({"mount", "-t", "ext2", Node(), kFolder});
  }
  ~Disk() {
    RunProgram({"umount", kFolder});
    RunProgram({"rmmod", "scsi_debug"});
  }
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  static constexpr const char* kFolder = "/tmp/disk";

 private:
  static std::string Node() {
    for (const fs::directory_entry& disk : fs::directory_iterator("/sys/block")) {
      std::string model;
      std::getline(std::ifstream(disk.path() / "device/model"), model);
      const std::string node = "/dev/" + disk.path().filename().string();
      if (model.starts_with("scsi_debug") && fs::exists(node)) return node;
    }
    return "";
  }

  static void Do(const std::vector<std::string>& words) {
    const Outcome outcome = RunProgram(words);
    Check(outcome.code == 0, words.front() + ": " + outcome.output);
  }
};

void SyncInLittleMemory() {
  constexpr std::size_t kSize = 100'000'000;
  const std::string group = "/tmp/group/small";
  const Card card("tool");
  card.Put("DCIM/100ABCDE/IMG_0001.RAW", kSize);
  const Plugged plugged(card.Inserted(kSerial));
  const Disk disk(130);
  const Outcome made = RunProgram({"sh", "-c",
                                   "mkdir -p /tmp/group && mount -t cgroup2 cgroup2 /tmp/group && "
                                   "echo +memory >/tmp/group/cgroup.subtree_control && mkdir " +
                                       group +
                                       " && "
                                       "echo 67108864 >" +
                                       group + "/memory.max && cat " + group + "/memory.max"});
  Check(made.output == "67108864\n", "there is no memory group: " + made.output);
  const std::string target = std::string(Disk::kFolder) + "/pictures";
  const Outcome sync = RunProgram(
      {"sh", "-c",
       "echo $$ >" + group + "/cgroup.procs && exec kelva sync --verify -s " + std::string(kSerial) + " " + target});
  Check(sync.code == 0, sync.output);
  const Outcome compare =
      RunProgram({"cmp", (card.folder() / "DCIM/100ABCDE/IMG_0001.RAW").string(), target + "/100ABCDE/IMG_0001.RAW"});
  Check(compare.code == 0, compare.output);
  const Outcome killed = RunProgram({"grep", "-c", "oom_kill [1-9]", group + "/memory.events"});
  Check(killed.output == "0\n", "a process of the group was killed");
  RunProgram({"sh", "-c", "rmdir " + group + " && umount /tmp/group"});
}

Outcome ReadyAsPerson() {
  return RunProgram(AsPerson({"kelva", "ready", "--serial", kSerial}));
}

// The doctor names the camera's node, and what allows it.
void ExpectDoctorToNameThePermission(const std::string& node) {
  const Outcome doctor = RunProgram(AsPerson({"kelva", "doctor"}));
  const auto says = [&](const std::string& words) { return doctor.output.find(words) != std::string::npos; };
  Check(doctor.code == 1 && says("This user may not read and write " + node + " (Permission denied).") &&
            says("the udev rule of the kelva package"),
        "without the rule the doctor ended with " + std::to_string(doctor.code) + ": " + doctor.output);
}

void GrantThePersonAtTheSeat() {
  const Card card("tool");
  {
    const Plugged plugged(card.Inserted(kSerial));
    const Outcome before = ReadyAsPerson();
    Check(before.code == 3, "without the rule it ended with " + std::to_string(before.code) + ": " + before.output);
    ExpectDoctorToNameThePermission(plugged.node());
  }
  const Seat seat;
  const Plugged plugged(card.Inserted(kSerial));
  const Outcome after = ReadyAsPerson();
  Check(after.code == 0, "with the rule it ended with " + std::to_string(after.code) + ": " + after.output);
  Check(fs::exists("/dev/kelva/" + std::string(kSerial)), "there is no /dev/kelva/" + std::string(kSerial));
}

// The two commands of the manual: one that offers the camera, and the stock one that attaches it.
void AttachWithUsbip() {
  const Card card("tool");
  PutPictures(card);
  const Background offer({"kelva-vcam", "usbip", "--serial", kSerial, "--storage", card.folder().string()},
                         "/tmp/offer");
  Check(Eventually([&] { return offer.Printed().find("Offering") != std::string::npos; }), offer.Printed());
  const Outcome neighbour = RunProgram(AsPerson({"usbip", "list", "-r", "127.0.0.1"}));
  Check(neighbour.output.find("1-1") == std::string::npos, "another user sees the camera: " + neighbour.output);
  Check(offer.Printed().find("Refused a connection of user ") != std::string::npos, offer.Printed());
  const Outcome attach = RunProgram({"usbip", "attach", "-r", "127.0.0.1", "-b", "1-1"});
  Check(attach.code == 0, attach.output);
  const bool there = Eventually([] { return !NodeOf(kSerial).empty(); });
  const Outcome list = Tool({"list"});
  const auto complaint = FetchOne(card, {});
  const Outcome detach = RunProgram({"usbip", "detach", "-p", "00"});
  Check(there && list.output.find(kSerial) != std::string::npos, list.output);
  Check(!complaint, complaint.value_or(""));
  Check(detach.code == 0, detach.output);
  Check(Eventually([] { return NodeOf(kSerial).empty(); }), "the camera is still there after usbip detach");
}

}  // namespace

std::vector<tap::Case> ToolCases() {
  return {{"a whole card is fetched byte for byte", FetchWholeCard},
          {"kelva get under every fault leaves the right file or none", FetchUnderFaults},
          {"kelva get from a pulled camera leaves no file", FetchFromAPulledCamera},
          {"sync of a large file passes in 64 MB of memory", SyncInLittleMemory},
          {"the person at the seat may use the camera", GrantThePersonAtTheSeat},
          {"the stock usbip command attaches the camera", AttachWithUsbip}};
}
