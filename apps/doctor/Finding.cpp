// The words for what the doctor finds, on every system.

#include "apps/doctor/Finding.h"

#include <array>

namespace apps::doctor {

std::string_view WordOf(Condition condition) {
  // In the order of Condition.
  static constexpr std::array<std::string_view, 15> kWords = {
      "well",      "no-device",  "driver-not-loaded", "not-set-up", "no-generic-driver", "no-node",   "no-permission",
      "held",      "bad-camera", "not-answering",     "narrow",     "no-udev",           "no-vendor", "mounted",
      "left-mount"};
  return kWords.at(static_cast<std::size_t>(condition));
}

bool IsHarmless(Condition condition) {
  return condition == Condition::kWell || condition == Condition::kNoUdev || condition == Condition::kMounted;
}

std::vector<Finding> Obstacles(std::vector<Finding> findings) {
  std::erase_if(findings, [](const Finding& finding) {
    return IsHarmless(finding.condition) || finding.condition == Condition::kNoDevice ||
           finding.condition == Condition::kHeld;
  });
  return findings;
}

Json InJson(const std::vector<Finding>& findings) {
  Json list = Json::Array();
  for (const Finding& finding : findings) {
    Json members = Json::Object().Set("condition", WordOf(finding.condition));
    members.Set("harmless", IsHarmless(finding.condition));
    members.SetBytes("serial", finding.serial).SetBytes("sentence", finding.sentence);
    list.Push(members.SetBytes("command", finding.command).SetBytes("advice", finding.advice));
  }
  return list;
}

}  // namespace apps::doctor
