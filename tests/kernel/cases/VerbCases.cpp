#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>

#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"

// Every verb of the tool on a real device node, each with what it must print and what it must have done: to the card, to
// the state that the camera keeps, or to the files of the host.

namespace {

namespace fs = std::filesystem;
using tap::Check;
using tap::Note;

constexpr const char* kSerial = "V1";
constexpr const char* kFirst = "DCIM/100ABCDE/IMG_0001.JPG";
constexpr const char* kSecond = "DCIM/100ABCDE/IMG_0002.JPG";
constexpr const char* kRaw = "DCIM/100ABCDE/IMG_0001.RAW";
// Stands in a command for the SHA-1 key of the first picture.
constexpr const char* kKey = "KEY";

std::string Content(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The camera's card, and the key of its first picture.
struct Rig {
  Rig() {
    PutPictures(card);
    card.Put(kRaw, 5'001);
    card.Put("CRASH/A.LOG", 300);
    card.Put("CALIB/LENS.BIN", 4'000);
    key = RunProgram({"sha1sum", (card.folder() / kFirst).string()}).output.substr(0, 40);
    first = card.Read(kFirst);
    fs::remove_all("/tmp/verbs");
    fs::create_directories("/tmp/verbs/keys");
  }
  bool Has(const char* path) const { return fs::exists(card.folder() / path); }
  /// Whether the camera's own state holds this line.
  bool State(const std::string& line) const {
    return ("\n" + card.Read(".kelva/state")).find("\n" + line + "\n") != std::string::npos;
  }
  /// Whether a file of the host has the content of a file of the card.
  bool Same(const std::string& host, const char* path) const {
    return fs::exists(host) && Content(host) == card.Read(path);
  }

  Card card{"verbs"};
  std::string key{};
  std::string first{};
};

struct Verb {
  std::vector<std::string> words;
  int code;
  /// Must stand in what it prints.
  std::string says;
  /// What must be so afterwards.
  std::function<bool(const Rig&, const std::string& output)> done = [](const Rig&, const std::string&) { return true; };
};

std::string Raw(const Rig& rig, const char* part) {
  return Content("/tmp/verbs/keys/" + rig.key + part);
}

// What the camera, its clock and its controls say of themselves.
const std::vector<Verb> kState{
    {{"list"}, 0, kSerial},
    {{"watch", "--count", "1"}, 0, "present    V1"},
    {{"wait"}, 0, kSerial},
    {{"info"}, 0, "factory"},
    {{"ready"}, 0, "ready\n", [](auto&, auto& output) { return output == "ready\n"; }},
    {{"battery"}, 0, "100\n"},
    {{"done-count"}, 0, "", [](auto&, auto& output) { return std::stoi(output) > 0; }},
    {{"time", "--set", "2026-03-14T15:09:26"}, 0, "2026-03-14T15:09:2"},
    {{"time"}, 0, "2026-03-14T15:"},
    {{"doctor"}, 0, "ready to be used"},
    {{"control"}, 0, "-1"},
    {{"control", "set", "3", "5"}, 0, "", [](auto& rig, auto&) { return rig.State("manual.last-control=3"); }},
    {{"control", "get"}, 0, "3\n"},
    {{"wifi", "name", "attic"}, 0, "", [](auto& rig, auto&) { return rig.State("wifi.0.ssid=kelva.camera.attic"); }},
    {{"wifi", "passphrase"},
     0,
     "",
     [](auto& rig, auto&) {
       // SHA-256 of "correct horse", which the table's runner types.
       return rig.State("wifi.0.passphrase.sha256=4104d36f8da2c254349f85836793ebe029e0c957063a34c91c2e9203187b5631");
     }},
    {{"wifi", "auth", "WEP"}, 0, "", [](auto& rig, auto&) { return rig.State("wifi.auth-type-commands=1"); }},
    {{"wifi", "off"}, 0, "", [](auto& rig, auto&) { return rig.State("wifi.on=0"); }},
    {{"monitor", "hello"}, 0, ""},
    {{"monitor", "--char", "q"}, 0, ""},
    {{"console"}, 0, "> hello\n> q\n"},
    {{"console"}, 0, "", [](auto&, auto& output) { return output.empty(); }},
};

// What is read from the card and written to it.
const std::vector<Verb> kFiles{
    {{"ls", "I:/DCIM/100ABCDE"}, 0, "131072"},
    {{"ls", "I:/NOWHERE"}, 1, "There is no folder I:/NOWHERE"},
    {{"tree", "I:/"}, 0, "IMG_0003.TXT"},
    {{"pictures"}, 0, "100ABCDE/IMG_0001"},
    {{"get", "I:/DCIM/100ABCDE/IMG_0001.JPG", "-o", "/tmp/verbs/one"},
     0,
     "",
     [](auto& rig, auto&) { return rig.Same("/tmp/verbs/one", kFirst); }},
    {{"get", "I:/NOWHERE.TXT", "-o", "/tmp/verbs/none"},
     1,
     "NOWHERE",
     [](auto&, auto&) { return !fs::exists("/tmp/verbs/none"); }},
    {{"put", "/tmp/verbs/one", "I:/COPY.JPG"},
     0,
     "",
     [](auto& rig, auto&) { return rig.Same("/tmp/verbs/one", "COPY.JPG"); }},
    {{"mount", "/tmp/verbs/mount"},
     0,
     "",
     [](auto& rig, auto&) {
       return rig.Same("/tmp/verbs/mount/DCIM/100ABCDE/IMG_0002.JPG", kSecond) &&
              RunProgram({"fusermount3", "-u", "/tmp/verbs/mount"}).code == 0;
     }},
    {{"rm", "I:/COPY.JPG"}, 0, "", [](auto& rig, auto&) { return !rig.Has("COPY.JPG"); }},
    {{"rm", "I:/COPY.JPG"}, 1, "There is no file"},
    {{"survey", "--yes", "/tmp/verbs/survey"},
     0,
     "a file may be read in any order",
     [](auto&, auto&) { return fs::exists("/tmp/verbs/survey/summary.txt"); }},
    {{"sync", "--dry-run", "/tmp/verbs/sync"},
     0,
     "IMG_0003.TXT",
     [](auto&, auto&) { return !fs::exists("/tmp/verbs/sync/101ABCDE"); }},
    {{"sync", "--verify", "/tmp/verbs/sync"},
     0,
     "4 stored",
     [](auto& rig, auto&) { return rig.Same("/tmp/verbs/sync/100ABCDE/IMG_0002.JPG", kSecond); }},
    {{"sync", "/tmp/verbs/sync"}, 0, "0 stored"},
    {{"batch", "get", "--into", "/tmp/verbs/keys", kKey},
     0,
     "",
     [](auto& rig, auto&) { return rig.Same("/tmp/verbs/keys/" + rig.key, kFirst); }},
    {{"raw", "--into", "/tmp/verbs/keys", kKey},
     0,
     "",
     [](auto& rig, auto&) {
       return Raw(rig, ".raw1").size() == 2'501 && Raw(rig, ".raw1") + Raw(rig, ".raw2") == rig.card.Read(kRaw);
     }},
    {{"crash-logs", "--into", "/tmp/verbs/crashes"},
     0,
     "",
     [](auto& rig, auto&) { return rig.Same("/tmp/verbs/crashes/A.LOG", "CRASH/A.LOG"); }},
    {{"calibration", "--into", "/tmp/verbs/calibration"},
     0,
     "",
     [](auto& rig, auto&) { return rig.Same("/tmp/verbs/calibration/LENS.BIN", "CALIB/LENS.BIN"); }},
    {{"report", "/tmp/verbs/report.tar"},
     0,
     "",
     [](auto& rig, auto&) {
       return Content("/tmp/verbs/report.tar").find(rig.card.Read("CRASH/A.LOG")) != std::string::npos;
     }},
};

// What changes the card and the camera for good, and what needs no camera.
const std::vector<Verb> kChanges{
    {{"capture"}, 0, "", [](auto& rig, auto&) { return rig.Has("DCIM/101ABCDE/IMG_0004.JPG"); }},
    {{"thumb", "IMG_0004", "--into", "/tmp/verbs"},
     0,
     "IMG_0004_thumb.jpg",
     [](auto&, auto&) { return Content("/tmp/verbs/IMG_0004_thumb.jpg").starts_with("\xFF\xD8"); }},
    {{"pictures", "rm", "IMG_0002"}, 0, "", [](auto& rig, auto&) { return !rig.Has(kSecond); }},
    {{"batch", "rm", kKey}, 0, "", [](auto& rig, auto&) { return !rig.Has(kFirst) && rig.Has(kRaw); }},
    // What is left is a picture that the camera took itself, and two without a JPEG file.
    {{"pictures", "--sheet", "/tmp/verbs/sheet.html"},
     0,
     "1 drawn",
     [](auto&, auto&) { return Content("/tmp/verbs/sheet.html").find("IMG_0004") != std::string::npos; }},
    {{"upgrade", "--yes", "/tmp/verbs/one"},
     0,
     "",
     [](auto& rig, auto& output) { return output.find(rig.key.substr(0, 12) + "\n") != std::string::npos; }},
    {{"info"}, 0, "", [](auto& rig, auto& output) { return output.find(rig.key.substr(0, 12)) != std::string::npos; }},
    {{"reboot"}, 0, ""},
    {{"ready"}, 1, "not ready"},
    {{"ready", "--wait"}, 0, "ready"},
    {{"done-count"}, 0, "", [](auto&, auto& output) { return std::stoi(output) > 0; }},
    {{"reboot", "--wait"}, 0, ""},
    {{"ready"}, 0, "ready\n"},
    {{"completion", "bash"}, 0, "complete"},
    {{"help"}, 0, "crash-logs"},
    {{"manual", "get"}, 0, ".TH"},
    {{"manual", "--into", "/tmp/verbs/manual"},
     0,
     "",
     [](auto&, auto&) { return fs::exists("/tmp/verbs/manual/kelva-sync.1"); }},
};

std::vector<Verb> AllOf() {
  std::vector<Verb> all = kState;
  all.insert(all.end(), kFiles.begin(), kFiles.end());
  all.insert(all.end(), kChanges.begin(), kChanges.end());
  return all;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += text.empty() ? word : " " + word;
  return text;
}

// What a person types at the one question of the tool is read by all of them, and used by one.
Outcome Run(const Verb& verb, const Rig& rig) {
  std::string line = "echo correct horse | KELVA_SERIAL=" + std::string(kSerial) + " kelva";
  for (const std::string& word : verb.words) line += " '" + (word == kKey ? rig.key : word) + "'";
  return RunProgram({"sh", "-c", line});
}

// Nothing when the verb did what it should.
std::string ComplaintOf(const Verb& verb, const Rig& rig) {
  const Outcome outcome = Run(verb, rig);
  const bool said = outcome.code == verb.code && outcome.output.find(verb.says) != std::string::npos;
  if (said && verb.done(rig, outcome.output)) return {};
  return "kelva " + Joined(verb.words) + (said ? " left things other than they should be" : "") + " (code " +
         std::to_string(outcome.code) + ", expected " + std::to_string(verb.code) + "): " + outcome.output;
}

// The verbs that the tool has a manual page for, and that no row of the table runs.
std::string Forgotten() {
  std::set<std::string> tested{"kelva.1"};
  for (const Verb& verb : AllOf()) {
    tested.insert("kelva-" + verb.words[0] + ".1");
    if (verb.words.size() > 1) tested.insert("kelva-" + verb.words[0] + "-" + verb.words[1] + ".1");
  }
  std::string names;
  for (const auto& page : fs::directory_iterator("/tmp/verbs/manual")) {
    const std::string name = page.path().filename();
    if (!tested.contains(name)) names += " " + name;
  }
  return names;
}

void RunEveryVerb() {
  const Rig rig;
  const Plugged plugged(rig.card.Inserted(kSerial));
  const std::vector<Verb> verbs = AllOf();
  int wrong = 0;
  for (const Verb& verb : verbs) {
    const std::string complaint = ComplaintOf(verb, rig);
    wrong += complaint.empty() ? 0 : 1;
    if (!complaint.empty()) Note(complaint);
  }
  Note(std::to_string(verbs.size()) + " calls of the tool");
  Check(wrong == 0, std::to_string(wrong) + " calls ended otherwise than they should");
  Check(Forgotten().empty(), "verbs that no row of the table runs:" + Forgotten());
}

}  // namespace

std::vector<tap::Case> VerbCases() {
  return {{"every verb works on a real device node", RunEveryVerb}};
}
