#ifndef KELVA_DARWIN_SG_SG_USER_CLIENT_H_
#define KELVA_DARWIN_SG_SG_USER_CLIENT_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "SgCommand.h"
#include "SgSession.h"
#include "SgVerdict.h"
#include "darwin/registry/Registry.h"
#include "src/usb/osx/UserClientRecords.h"

namespace darwin::sg {

/// The device behind a user client.
struct SgTarget {
  /// The node, such as "/dev/sg3".
  std::string node;
  /// True while the device that was found is still the one behind the node: the kernel gives a number of a device that
  /// has gone to the next one that comes.
  std::function<bool()> isPresent;
  /// Receives one sentence for the user where a return code cannot say enough.
  std::function<void(const std::string&)> report;
};

/// The driver's end of one connection: selector 0 opens and locks the node, selector 1 gives it back, selector 2 is one
/// SCSI command. One command at a time. Return codes and statuses: darwin/README.md.
class SgUserClient : public UserClient {
 public:
  SgUserClient(SgSystem& system, SgTarget target) : system_(&system), target_(std::move(target)) {}

  int CallScalar(std::uint32_t selector) override;
  int CallStruct(std::uint32_t selector, const void* in, std::size_t inSize, void* out, std::size_t* outSize) override;

 private:
  int StartSession();
  int EndSession();
  Verdict Transfer(const UserClientTransferRequest& request);
  Verdict Carry(const UserClientTransferRequest& request, DataPhase phase, std::uint32_t length);
  Verdict RefuseTooLong(std::uint32_t length) const;
  SgRequest Prepare(const UserClientTransferRequest& request, DataPhase phase, std::uint32_t length);
  void Deliver(const UserClientTransferRequest& request, std::uint32_t length, std::uint32_t moved);
  bool HasGone(const SgOutcome& outcome) const;

  SgSystem* system_;
  SgTarget target_;
  std::optional<SgSession> session_;
  std::vector<std::uint8_t> arrival_;  // where a short answer lands until it is known how much of it is the device's
};

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_SG_USER_CLIENT_H_
