#include <gmock/gmock.h>

#include "testing/ListenerTest.h"

namespace {

using namespace listening;
using testing::ElementsAre;

// The fixed listening functions cannot be ended: their context lives until the process ends, and so do their handles.
struct FixedProgram {
  static void Attached(boost::shared_ptr<Camera> camera, void* self) {
    auto& program = *static_cast<FixedProgram*>(self);
    program.heard.push_back("+");
    camera->ListenForCameraLost(Lost, self);
    program.cameras.push_back(camera);
  }
  static void Lost(void* self) { static_cast<FixedProgram*>(self)->heard.push_back("-"); }
  static void Bad(void* self) { static_cast<FixedProgram*>(self)->heard.push_back("bad"); }
  Log heard;
  std::vector<boost::shared_ptr<Camera>> cameras;
};

TEST(ListenerBesideTheFixedInterface, BothHearEachEventOnce) {
  static FixedProgram fixed;
  Program program;
  darwin::VirtualRegistry registry;
  const darwin::EntryId camera = registry.AttachCamera({"K1", "Kelva", "Glimmer", "1.00", 3, nullptr});
  Camera::ListenForCameraAttach(FixedProgram::Attached, &fixed, false);
  std::optional<kelva::Listener> listener(program.Functions());
  Camera::ListenForBadCameraAttach(FixedProgram::Bad, &fixed);
  EXPECT_THAT(fixed.heard, ElementsAre("+"));
  EXPECT_THAT(program.heard, ElementsAre("+K1"));
  registry.AttachCamera({"", "Kelva", "Glimmer", "Q42", 5, nullptr});
  RunPending();
  // A camera's own lost function beside the listener's report: each is called once.
  program.cameras.at(0)->ListenForCameraLost(FixedProgram::Lost, &fixed);
  const boost::shared_ptr<Camera> watched = program.cameras.at(0);
  registry.Detach(camera);
  RunPending();
  EXPECT_THAT(fixed.heard, ElementsAre("+", "bad", "-", "-"));
  EXPECT_THAT(program.heard, ElementsAre("+K1", "bad", "-K1"));
  EXPECT_TRUE(watched->WasDisconnected());
  // The fixed functions go on when the listener has ended.
  listener.reset();
  registry.AttachCamera({"K2", "Kelva", "Glimmer", "1.00", 3, nullptr});
  RunPending();
  EXPECT_EQ(fixed.heard.back(), "+");
  EXPECT_EQ(program.heard.size(), 3u);
  fixed.cameras.clear();
}

}  // namespace
