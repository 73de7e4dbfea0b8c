#ifndef KELVA_WIFI_TESTING_FAULT_SWEEP_H_
#define KELVA_WIFI_TESTING_FAULT_SWEEP_H_

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "Traced.h"
#include "testing/ScriptedCamera.h"
#include "testing/Switches.h"

namespace wifi_testing {

/// What goes wrong with one transfer of a command.
enum class Fault {
  kThrow,  ///< CameraTransferError "cut"
  kFalse,  ///< returns false, size and buffer untouched
  kShort,  ///< one byte less than the script says
  kLong,   ///< one byte more
};

/// The step of the script, with the fault.
inline Step Faulted(Step step, Fault fault) {
  const std::string& answer = step.answer();
  const bool answers = step.direction() == 2;
  switch (fault) {
    case Fault::kThrow:
      return step.Throws("cut");
    case Fault::kFalse:
      return step.Fails();
    case Fault::kShort:
      return answers && !answer.empty() ? step.Answers(answer.substr(0, answer.size() - 1))
                                        : step.Moves(step.direction() == 1 ? step.size() - 1 : -1);
    case Fault::kLong:
      return answers ? step.Answers(answer + "X") : step.Moves(step.size() + 1);
  }
  return step;
}

/// The outcomes of a fault at one transfer: "N text", where N is the number of transfers made. "text" is what the
/// command gave, or the message of its error; where the switch for exceptions decides, "message / neutral value".
struct Outcomes {
  const char* thrown;
  const char* failed;
  const char* shorter;
  const char* longer;
};

/// One command: its transfers when all goes well, how it is called, what it gives then, and the outcomes per transfer.
struct Sweep {
  std::string name;
  int chunkSize;
  std::vector<Step> script;
  std::function<std::string(Camera&)> run;
  std::string undisturbed;
  std::vector<Outcomes> outcomes;
};

inline std::ostream& operator<<(std::ostream& out, const Sweep& sweep) {
  return out << sweep.name;
}

/// The message without the prefix that every CameraError has.
inline std::string WithoutPrefix(const std::string& text) {
  const std::string prefix = "Camera error: ";
  return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

/// A pointer to a camera that somebody else owns.
inline boost::shared_ptr<Camera> Borrowed(Camera& camera) {
  return {&camera, [](Camera*) {}};
}

/// With `observed`, the command runs on a camera around the scripted one, which must make no difference.
inline std::string Outcome(const Sweep& sweep, const std::vector<Step>& script, bool observed) {
  ScriptedCamera camera(sweep.chunkSize, 1 << 20);
  for (const Step& step : script) camera.Expect(step);
  int told = 0;
  const auto around = kelva::Traced(Borrowed(camera), {.ended = [&](const kelva::Exchange&) { ++told; }, .began = {}});
  std::string text;
  try {
    text = sweep.run(observed ? *around : camera);
  } catch (const CameraError& error) {
    text = WithoutPrefix(error.what());
  }
  camera.ForgetTheRest();
  EXPECT_EQ(told, observed ? camera.transfers : 0);
  return std::to_string(camera.transfers) + " " + text;
}

/// "3 message / neutral" is "3 message" with exceptions on and "3 neutral" with exceptions off.
inline std::string Expected(const std::string& outcome, bool throwing) {
  const std::size_t cut = outcome.find(" / ");
  if (cut == std::string::npos) return outcome;
  return throwing ? outcome.substr(0, cut) : outcome.substr(0, outcome.find(' ') + 1) + outcome.substr(cut + 3);
}

/// Sweeps every fault over every transfer, with exceptions on and off, alone and observed.
inline void RunSweep(const Sweep& sweep) {
  ASSERT_EQ(sweep.outcomes.size(), sweep.script.size());
  for (const bool throwing : {true, false}) {
    const ExceptionsOff mode(throwing);
    for (const bool observed : {false, true}) {
      EXPECT_EQ(Outcome(sweep, sweep.script, observed), sweep.undisturbed) << (observed ? "observed" : "alone");
    }
    for (std::size_t k = 0; k < sweep.script.size(); ++k) {
      const Outcomes& row = sweep.outcomes[k];
      const char* const columns[] = {row.thrown, row.failed, row.shorter, row.longer};
      for (const Fault fault : {Fault::kThrow, Fault::kFalse, Fault::kShort, Fault::kLong}) {
        std::vector<Step> script = sweep.script;
        script[k] = Faulted(script[k], fault);
        for (const bool observed : {false, true}) {
          EXPECT_EQ(Outcome(sweep, script, observed), Expected(columns[static_cast<int>(fault)], throwing))
              << sweep.name << ", transfer " << k << ", fault " << static_cast<int>(fault) << ", exceptions "
              << (throwing ? "on" : "off") << (observed ? ", observed" : ", alone");
        }
      }
    }
  }
}

// How results are written in the tables.

inline std::string Show(bool value) {
  return value ? "true" : "false";
}

inline std::string Show(const std::vector<std::string>& items) {
  if (items.empty()) return "empty";
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "[" : " ") + item;
  return text + "]";
}

inline std::string Show(const std::vector<_Sha1obj>& files) {
  std::vector<std::string> items;
  for (const _Sha1obj& file : files) items.push_back(file.name + ":" + ToString(file.data));
  return Show(items);
}

inline std::string Show(const std::vector<char>& bytes) {
  return bytes.empty() ? "empty" : ToString(bytes);
}

/// Bytes as text, a dot for each zero.
inline std::string ShowBytes(const void* data, std::size_t size) {
  std::string text(static_cast<const char*>(data), size);
  for (char& byte : text) byte = byte == '\0' ? '.' : byte;
  return text;
}

}  // namespace wifi_testing

#endif  // KELVA_WIFI_TESTING_FAULT_SWEEP_H_
