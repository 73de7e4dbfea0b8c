// The buffer that the kernel writes the bytes of a command into, mapped from the node where it allows that.

#include "darwin/sg/LandingArea.h"

#include <unistd.h>

#include <utility>

namespace darwin::sg {
namespace {

std::size_t WholePages(std::size_t bytes) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return bytes - bytes % page;
}

}  // namespace

LandingArea::LandingArea(SgSystem& system, int descriptor, std::size_t reserved) : system_(&system) {
  const std::size_t size = WholePages(reserved);
  if (size == 0) return;
  if (void* bytes = system.Map(descriptor, size)) mapped_ = {static_cast<std::uint8_t*>(bytes), size};
}

LandingArea::~LandingArea() {
  if (!mapped_.empty()) system_->Unmap(mapped_.data(), mapped_.size());
}

LandingArea::LandingArea(LandingArea&& other) noexcept
    : system_(other.system_), mapped_(std::exchange(other.mapped_, {})), own_(std::move(other.own_)) {}

LandingArea& LandingArea::operator=(LandingArea&& other) noexcept {
  std::swap(system_, other.system_);
  std::swap(mapped_, other.mapped_);
  std::swap(own_, other.own_);
  return *this;
}

std::span<std::uint8_t> LandingArea::Bytes(std::size_t length) {
  if (IsMapped(length)) return mapped_.first(length);
  if (own_.size() < length) own_.resize(length);
  return std::span(own_).first(length);
}

}  // namespace darwin::sg
