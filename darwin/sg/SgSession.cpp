// Opens, locks and prepares a node for one session.

#include "darwin/sg/SgSession.h"

#include <linux/fs.h>
#include <scsi/sg.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace darwin::sg {
namespace {

constexpr int kReservedSize = 64 * 1024;            // one chunk of every bulk transfer
constexpr std::uint32_t kUsualLargest = 64 * 1024;  // for a node that does not answer the question

}  // namespace

std::optional<SgSession> SgSession::Open(SgSystem& system, const std::string& node, int& error) {
  const int descriptor = system.Open(node.c_str());
  if (descriptor < 0) {
    error = errno;
    return std::nullopt;
  }
  SgSession session(system, descriptor);
  if (!session.Lock(error)) return std::nullopt;
  session.AskLargestTransfer();
  session.landing_ = LandingArea(system, descriptor, session.Reserve());
  return session;
}

SgSession::~SgSession() {
  landing_ = LandingArea();  // the mapping goes before its descriptor
  if (descriptor_ >= 0) {
    system_->Close(descriptor_);  // gives the lock back as well
  }
}

SgSession::SgSession(SgSession&& other) noexcept
    : system_(other.system_),
      descriptor_(std::exchange(other.descriptor_, -1)),
      largestTransfer_(other.largestTransfer_),
      landing_(std::move(other.landing_)) {}

SgSession& SgSession::operator=(SgSession&& other) noexcept {
  std::swap(system_, other.system_);
  std::swap(descriptor_, other.descriptor_);
  std::swap(largestTransfer_, other.largestTransfer_);
  std::swap(landing_, other.landing_);
  return *this;
}

bool SgSession::Lock(int& error) const {
  if (system_->Lock(descriptor_) == 0) return true;
  error = errno;
  return false;
}

void SgSession::AskLargestTransfer() {
  int bytes = 0;  // a generic SCSI node answers in bytes, where a block device answers in sectors
  const bool answered = system_->Ioctl(descriptor_, BLKSECTGET, &bytes) == 0 && bytes > 0;
  largestTransfer_ = answered ? static_cast<std::uint32_t>(bytes) : kUsualLargest;
}

// A failure only costs speed: the kernel clamps the size or keeps the default, and commands still work.
std::size_t SgSession::Reserve() const {
  int size = kReservedSize;
  system_->Ioctl(descriptor_, SG_SET_RESERVED_SIZE, &size);
  const bool told = system_->Ioctl(descriptor_, SG_GET_RESERVED_SIZE, &size) == 0 && size > 0;
  return told ? static_cast<std::size_t>(std::min(size, kReservedSize)) : 0;
}

}  // namespace darwin::sg
