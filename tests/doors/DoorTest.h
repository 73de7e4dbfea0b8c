#ifndef KELVA_TESTS_DOORS_DOOR_TEST_H_
#define KELVA_TESTS_DOORS_DOOR_TEST_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <tuple>

#include "tests/doors/Door.h"

namespace tests::doors {

/// For each door of this program, each fault.
class DoorTest : public testing::TestWithParam<std::tuple<NamedDoor, vcam::FaultKind>> {
 protected:
  vcam::FaultKind Kind() const { return std::get<1>(GetParam()); }

  Door& door_ = Named(std::get<0>(GetParam()));

 private:
  static Door& Named(const NamedDoor& named) {
    static std::map<std::string, std::unique_ptr<Door>> doors;
    std::unique_ptr<Door>& door = doors[named.name];
    if (!door) door = named.make();
    return *door;
  }
};

inline std::string NameOfDoorTest(const testing::TestParamInfo<DoorTest::ParamType>& info) {
  std::string name = std::get<0>(info.param).name + ("_" + std::string(vcam::NameOf(std::get<1>(info.param))));
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

inline auto AllDoorTests() {
  return testing::Combine(testing::ValuesIn(AllDoors().begin(), AllDoors().end()),
                          testing::ValuesIn(vcam::AllFaults().begin(), vcam::AllFaults().end()));
}

}  // namespace tests::doors

#endif  // KELVA_TESTS_DOORS_DOOR_TEST_H_
