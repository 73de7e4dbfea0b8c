#include "darwin/udev/ScsiUnit.h"

namespace darwin::udev {
namespace {

constexpr int kCompactDisc = 5;
constexpr const char* kBadRevision = "Q42";

}  // namespace

bool ScsiUnit::IsBadCamera() const {
  return peripheralType == kCompactDisc && revision == kBadRevision;
}

bool IsMaker(const std::string& vendor) {
  return vendor == "Kelva";
}

}  // namespace darwin::udev
