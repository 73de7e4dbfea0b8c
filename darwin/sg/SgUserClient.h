#ifndef KELVA_DARWIN_SG_SG_USER_CLIENT_H_
#define KELVA_DARWIN_SG_SG_USER_CLIENT_H_

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "darwin/registry/Registry.h"
#include "darwin/sg/SgCommand.h"
#include "darwin/sg/SgSession.h"
#include "darwin/sg/SgVerdict.h"
#include "wire/UserClientRecords.h"

namespace darwin::sg {

/// The device behind a user client.
struct SgTarget {
  /// The node, such as "/dev/sg3".
  std::string node;
  /// True while the node still belongs to the device that was found: the kernel reuses the number of a device that has
  /// gone.
  std::function<bool()> isPresent;
  /// Receives one sentence for the user where a return code cannot say enough.
  std::function<void(const std::string&)> report;
};

/// The driver's end of one connection: selector 0 opens and locks the node, selector 1 gives it back, selector 2 is one
/// SCSI command. Return codes and statuses: darwin/README.md.
///
/// Any thread: commands of several threads go one after the other. Selector 1 does not wait for a command under way, which
/// keeps the node until it has ended.
class SgUserClient : public UserClient {
 public:
  SgUserClient(SgSystem& system, SgTarget target) : system_(&system), target_(std::move(target)) {}

  int CallScalar(std::uint32_t selector) override;
  int CallStruct(std::uint32_t selector, const void* in, std::size_t inSize, void* out, std::size_t* outSize) override;

 private:
  int StartSession();
  int EndSession();
  std::shared_ptr<SgSession> Session() const;
  Verdict Transfer(const wire::UserClientTransferRequest& request);
  Verdict Carry(SgSession& session, const wire::UserClientTransferRequest& request, DataPhase phase,
                std::uint32_t length);
  Verdict RefuseTooLong(std::uint32_t length, std::uint32_t largest) const;
  bool HasGone(const SgSession& session, const SgOutcome& outcome) const;

  SgSystem* system_;
  SgTarget target_;
  mutable std::mutex sessionMutex_;     // guards session_, held for no longer than it takes to read or set it
  std::shared_ptr<SgSession> session_;  // null: none has been started
  std::mutex commandMutex_;             // held while a command is under way
};

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_SG_USER_CLIENT_H_
