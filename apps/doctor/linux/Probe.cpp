// Asks one camera one short question through its node.

#include "apps/doctor/linux/Probe.h"

#include <array>

#include "darwin/sg/SgCommand.h"
#include "darwin/sg/SgSession.h"
#include "src/wifi/VscRegister.h"

namespace apps::doctor {
namespace {

constexpr std::uint32_t kPatienceMs = 5000;
constexpr std::size_t kReadyStateSize = 4;
constexpr std::array<std::uint8_t, 16> kReadyQuery{static_cast<std::uint8_t>(kelva::Operation::kQuery), 0,
                                                   kelva::query::kReady};
constexpr std::uint16_t kHostTimeOut = 3;

}  // namespace

Answer AskCamera(const std::string& node, darwin::sg::SgSystem& system) {
  int error = 0;
  const auto session = darwin::sg::SgSession::Open(system, node, error);
  if (!session) return Answer::kNotAsked;
  std::array<std::uint8_t, kReadyStateSize> state{};
  darwin::sg::SgRequest query{kReadyQuery, darwin::sg::DataPhase::kFromDevice, state.data(), kReadyStateSize,
                              kPatienceMs};
  const darwin::sg::SgOutcome outcome = darwin::sg::RunCommand(system, session->Descriptor(), query);
  if (outcome.Succeeded(kReadyStateSize)) return Answer::kAnswers;
  return outcome.error == 0 && outcome.hostStatus == kHostTimeOut ? Answer::kSilent : Answer::kFails;
}

}  // namespace apps::doctor
