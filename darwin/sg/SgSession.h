#ifndef KELVA_DARWIN_SG_SG_SESSION_H_
#define KELVA_DARWIN_SG_SG_SESSION_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "darwin/sg/LandingArea.h"
#include "darwin/sg/SgSystem.h"

namespace darwin::sg {

/// An open node: the move-only owner of its descriptor, and with it of the node's lock and reserved buffer, which is
/// mapped where it can be.
class SgSession {
 public:
  /// Opens and locks the node, asks how much it carries in one command and reserves a kernel buffer for it, which saves
  /// an allocation per command. When the node cannot be opened or is locked, returns nothing and sets `error` to an
  /// errno value.
  static std::optional<SgSession> Open(SgSystem& system, const std::string& node, int& error);

  ~SgSession();
  SgSession(SgSession&& other) noexcept;
  SgSession& operator=(SgSession&& other) noexcept;

  int Descriptor() const { return descriptor_; }
  /// The most bytes that the node carries in one command.
  std::uint32_t LargestTransfer() const { return largestTransfer_; }
  /// Where the answers of commands on this node land.
  LandingArea& Landing() { return landing_; }

 private:
  SgSession(SgSystem& system, int descriptor) : system_(&system), descriptor_(descriptor) {}
  bool Lock(int& error) const;
  void AskLargestTransfer();
  std::size_t Reserve() const;

  SgSystem* system_;
  int descriptor_;
  std::uint32_t largestTransfer_ = 0;
  LandingArea landing_;
};

}  // namespace darwin::sg

#endif  // KELVA_DARWIN_SG_SG_SESSION_H_
