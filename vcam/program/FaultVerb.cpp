// `kelva-vcam fault`: makes a camera of a bus go wrong.
#include <limits>

#include "apps/commandline/Failure.h"
#include "vcam/faults/Fault.h"
#include "vcam/program/Verbs.h"

namespace vcam::program {
namespace {

/// Takes the serial number from --serial or from the first word, NAME and AT from the words that are left.
bus::FaultRequest RequestOf(const apps::Invocation& call) {
  std::vector<std::string> words = call.words;
  if (const auto serial = call.Value("serial")) words.insert(words.begin(), *serial);
  if (words.size() < 2 || words.size() > 3) {
    throw apps::Failure(
        apps::ExitCode::kUsage,
        "`kelva-vcam fault` needs --serial SERIAL and NAME; `kelva-vcam help fault` shows how it is used.");
  }
  bus::FaultRequest request{words[0], words[1]};
  constexpr long long kLargest = std::numeric_limits<long long>::max();
  if (words.size() == 3) request.at = static_cast<std::uint64_t>(apps::ParseNumber(words[2], "AT", 0, kLargest));
  return request;
}

apps::ExitCode Arm(apps::Context& context) {
  const bus::FaultRequest request = RequestOf(context.call);
  AskBus(context.call, bus::Kind::kFault, bus::Encode(request));
  context.Result(apps::Json::Object().Set("serial", request.serial).Set("name", request.name).Set("at", request.at),
                 "Armed " + request.name + " on " + request.serial + ".\n");
  return apps::ExitCode::kDone;
}

constexpr apps::Option kOptions[] = {kBus, kSerial};
constexpr apps::Example kExamples[] = {
    {"PROGRAM fault --virtual /tmp/bus --serial K100 fail 3", "The third command from now is refused."},
    {"PROGRAM fault --virtual /tmp/bus --serial K100 unplug 70000", "The camera leaves after 70,000 more bytes."},
    {"PROGRAM fault --virtual /tmp/bus --serial K100 none", "Take all faults back."}};

}  // namespace

std::span<const apps::Verb> FaultVerbs() {
  using Count = apps::Argument::Count;
  static const std::string names = FaultNames() + ", or none to take all back.";
  static const std::string offered = FaultNames(" ") + " none";
  static const apps::Argument words[] = {
      {"SERIAL", "The serial number, instead of --serial.", Count::kOptional, apps::Offer::kSerial},
      {"NAME", names, Count::kOne, apps::Offer::kWords, offered},
      {"AT", "Which command from now, 1 if not given; for slow: milliseconds; for unplug: bytes until then.",
       Count::kOptional}};
  static const apps::Verb verbs[] = {
      {"fault", "Make something go wrong", words, kOptions,
       "Several faults may be armed at once. The virtual camera's README says what each of them does.",
       "serial: the serial number of the camera\nname: the fault\nat: AT", kExamples, Arm}};
  return verbs;
}

}  // namespace vcam::program
