#include <algorithm>
#include <cctype>
#include <sstream>

#include "tests/kernel/cases/Card.h"
#include "tests/kernel/cases/Cases.h"
#include "tests/kernel/cases/Command.h"
#include "tests/kernel/cases/Plugged.h"

// The library beside Debian's own programs, signals, speeds and several cameras.

namespace {

using tap::Check;
using tap::Note;
using vcam::usbip::Speed;

constexpr const char* kSerial = "C1";
constexpr unsigned kStormCommands = 10'000;

// What sg_raw received, as hexadecimal digits: rows of an offset, up to 16 bytes and their letters.
std::string BytesOfDump(const std::string& output) {
  std::string digits;
  std::istringstream lines(output.substr(std::min(output.size(), output.find("bytes of data"))));
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    // " 00     01 00 00 00 ...": the bytes begin in column 8, three columns each, with one more in the middle.
    for (std::size_t at = 8, i = 0; i < 16; ++i, at += i == 8 ? 4 : 3) {
      if (line.size() < at + 2 || std::isxdigit(static_cast<unsigned char>(line[at])) == 0) break;
      digits += line.substr(at, 2);
    }
  }
  return digits;
}

std::string AnswerOf(const std::string& output) {
  const std::size_t at = output.find("answer ");
  return at == std::string::npos ? "no answer" : output.substr(at + 7, output.find('\n', at) - at - 7);
}

std::vector<std::string> SgRaw(const std::string& node, const std::string& block, const std::string& size) {
  std::vector<std::string> words{"sg_raw", "-r", size, node};
  for (std::size_t i = 0; i < block.size(); i += 2) words.push_back(block.substr(i, 2));
  return words;
}

void AnswerAsToSgRaw(Plugged& plugged, const std::string& query, const std::string& size) {
  const std::string block = "c600" + query + std::string(26, '0');
  const Outcome raw = RunProgram(SgRaw(plugged.node(), block, size));
  const Outcome client = RunProgram({"kelva-kernel-client", kSerial, "raw", block, size});
  const std::string bytes = BytesOfDump(raw.output);
  Check(
      !bytes.empty() && bytes == AnswerOf(client.output),
      "query " + query + ": sg_raw received " + bytes + ", the library " + AnswerOf(client.output) + "\n" + raw.output);
}

void CompareWithSgRaw() {
  const Card card("clients");
  PutPictures(card);
  Plugged plugged(card.Inserted(kSerial));
  AnswerAsToSgRaw(plugged, "04", "4");
  AnswerAsToSgRaw(plugged, "06", "4");
  AnswerAsToSgRaw(plugged, "01", "12");
  AnswerAsToSgRaw(plugged, "07", "40");
}

void CompareInquiry() {
  const Card card("clients");
  vcam::Options options = card.Inserted(kSerial);
  options.revision = "2.17";
  Plugged plugged(std::move(options));
  const Outcome inquiry = RunProgram({"sg_inq", plugged.node()});
  for (const char* part : {"Vendor identification: Kelva", "Product revision level: 2.17", "Unit serial number: C1"}) {
    Check(inquiry.output.find(part) != std::string::npos, std::string(part) + " is missing:\n" + inquiry.output);
  }
  const Outcome list = RunProgram({"lsscsi", "-g"});
  Check(list.output.find("Kelva") != std::string::npos && list.output.find(plugged.node()) != std::string::npos,
        "lsscsi does not list it: " + list.output);
}

void FetchByBlocks() {
  const Card card("clients");
  PutPictures(card);
  Plugged plugged(card.Inserted(kSerial));
  const Outcome read = RunProgram({"kelva-kernel-client", kSerial, "read", kPicture});
  Check(read.LastLine().starts_with("data "), read.output);
  const Outcome copy = RunProgram({"sg_dd", "if=" + plugged.node(), "of=/tmp/blocks", "bs=512", "bpt=128"});
  Check(copy.code == 0, copy.output);
  const Outcome compare = RunProgram({"cmp", "-n", std::to_string(kPictureSize), "/tmp/blocks",
                                      (card.folder() / "DCIM/100ABCDE/IMG_0001.JPG").string()});
  Check(compare.code == 0, "sg_dd read other bytes: " + compare.output);
}

void SurviveSignals() {
  const Card card("clients");
  Plugged plugged(card.Inserted(kSerial));
  const Outcome outcome = RunProgram({"kelva-kernel-client", kSerial, "storm", std::to_string(kStormCommands)}, 3600);
  Note(outcome.output.substr(0, outcome.output.find('\n')) + ", commands " +
       std::to_string(plugged.cable().Commands()));
  Check(outcome.LastLine().ends_with(" " + std::to_string(kStormCommands)), outcome.output);
  Check(plugged.cable().Commands() == kStormCommands, "the camera received another number of commands");
}

void WorkAt(Speed speed) {
  const Card card("clients");
  PutPictures(card);
  Plugged plugged(card.Inserted(kSerial), speed);
  const Outcome outcome = RunProgram({"kelva-kernel-client", kSerial, "read", kPicture});
  Check(outcome.LastLine().ends_with(" " + std::to_string(kPictureSize)), outcome.output);
}

void TellCamerasApart() {
  const Card first("first");
  const Card second("second");
  first.Put("ONE.TXT", 11);
  second.Put("ONE.TXT", 22);
  const Plugged one(first.Inserted("S1"));
  const Plugged two(second.Inserted("S2"));
  for (const auto& [serial, size] : {std::pair{"S1", " 11"}, std::pair{"S2", " 22"}}) {
    const Outcome outcome = RunProgram({"kelva-kernel-client", serial, "read", "I:\\ONE.TXT"});
    Check(outcome.LastLine().ends_with(size), std::string(serial) + ": " + outcome.output);
  }
}

void WorkAsDisk() {
  const Card card("clients");
  PutPictures(card);
  vcam::Options options = card.Inserted(kSerial);
  options.peripheralType = 0;
  const Plugged plugged(std::move(options));
  const Outcome outcome = RunProgram({"kelva-kernel-client", kSerial, "read", kPicture});
  Check(outcome.LastLine().ends_with(" " + std::to_string(kPictureSize)), outcome.output);
}

}  // namespace

std::vector<tap::Case> ClientCases() {
  return {{"sg_raw and the library receive the same bytes", CompareWithSgRaw},
          {"sg_inq and lsscsi see the camera", CompareInquiry},
          {"sg_dd reads the selected file", FetchByBlocks},
          {"10000 commands under a signal every millisecond", SurviveSignals},
          {"works at high speed", [] { WorkAt(Speed::kHigh); }},
          {"works at SuperSpeed", [] { WorkAt(Speed::kSuper); }},
          {"works as a disk", WorkAsDisk},
          {"two cameras are told apart by serial number", TellCamerasApart}};
}
