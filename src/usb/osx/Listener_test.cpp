#include "Listener.h"

#include <gmock/gmock.h>

#include <boost/weak_ptr.hpp>
#include <future>
#include <memory>
#include <optional>
#include <thread>

#include "testing/ListenerTest.h"

namespace {

using namespace listening;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST_F(ListenerTest, ReportsWhatIsPresentBeforeItsConstructorReturns) {
  Plug("K1");
  Plug("DISK", 0);
  PlugBadCamera();
  Program program;
  const kelva::Listener listener(program.Functions());
  EXPECT_THAT(program.heard, ElementsAre("+K1", "+DISK", "bad"));
  RunPending();
  EXPECT_EQ(program.heard.size(), 3u);
}

TEST_F(ListenerTest, ReportsWhatComesLater) {
  Program program;
  const kelva::Listener listener(program.Functions());
  Plug("K1");
  PlugBadCamera();
  Plug("DISK", 0);
  EXPECT_THAT(program.heard, IsEmpty());
  RunPending();
  EXPECT_THAT(program.heard, ElementsAre("+K1", "bad", "+DISK"));
}

TEST_F(ListenerTest, LostTellsWhichCamera) {
  Program program;
  const kelva::Listener listener(program.Functions());
  Plug("K1");
  const darwin::EntryId second = Plug("K2");
  RunPending();
  const boost::shared_ptr<Camera> camera =
      program.cameras[0]->CompareSn("K2") ? program.cameras[0] : program.cameras[1];
  Unplug(second);
  RunPending();
  EXPECT_EQ(program.heard.back(), "-K2");
  EXPECT_THAT(program.lost, ElementsAre(camera));
  EXPECT_THAT(program.cameras, testing::SizeIs(1));
}

TEST_F(ListenerTest, ACameraThatNobodyKeepsIsDestroyedAndItsLossNamed) {
  boost::weak_ptr<Camera> seen;
  Program program;
  kelva::Listener::Functions functions = program.Functions();
  functions.attached = [&](auto camera, auto&) { seen = camera; };
  const kelva::Listener listener(functions);
  const darwin::EntryId camera = Plug("K1");
  RunPending();
  EXPECT_TRUE(seen.expired());
  Unplug(camera);
  RunPending();
  EXPECT_THAT(program.heard, ElementsAre("-K1"));
  EXPECT_THAT(program.lost, ElementsAre(nullptr));
}

TEST_F(ListenerTest, ACameraWithoutASerialNumberHasAnEmptyOne) {
  Log serials;
  const kelva::Listener listener({.attached = [&](auto, auto& serial) { serials.push_back(serial); },
                                  .lost = [&](auto, auto& serial) { serials.push_back(serial); },
                                  .badCamera = {}});
  Unplug(Plug(""));
  RunPending();
  EXPECT_THAT(serials, ElementsAre("", ""));
}

TEST_F(ListenerTest, EachFunctionMayBeEmpty) {
  for (const std::string only : {"attached", "lost", "bad", "none"}) {
    Program program;
    kelva::Listener::Functions functions = program.Functions();
    if (only != "attached") functions.attached = {};
    if (only != "lost") functions.lost = {};
    if (only != "bad") functions.badCamera = {};
    const kelva::Listener listener(functions);
    const darwin::EntryId camera = Plug("K1");
    PlugBadCamera();
    RunPending();
    Unplug(camera);
    RunPending();
    const Log expected = only == "attached" ? Log{"+K1"} : only == "lost" ? Log{"-K1"} : Log(only == "bad", "bad");
    if (only == "bad") {
      EXPECT_THAT(program.heard, testing::Each("bad"));
    } else {
      EXPECT_EQ(program.heard, expected) << only;
    }
  }
}

TEST_F(ListenerTest, ACameraThatComesBackIsLostFirstAndThenANewCamera) {
  Program program;
  const kelva::Listener listener(program.Functions());
  const darwin::EntryId camera = Plug("K1");
  RunPending();
  const boost::shared_ptr<Camera> old = program.cameras.at(0);
  Unplug(camera);
  Plug("K1");
  RunPending();
  EXPECT_THAT(program.heard, ElementsAre("+K1", "-K1", "+K1"));
  EXPECT_NE(program.cameras.at(0), old);
}

TEST_F(ListenerTest, ACameraThatGoesBeforeItIsWatchedIsAttachedAndLost) {
  Program program;
  const kelva::Listener listener(program.Functions());
  Unplug(Plug("K1"));
  RunPending();
  EXPECT_THAT(program.heard, ElementsAre("+K1", "-K1"));
  EXPECT_THAT(program.cameras, IsEmpty());
}

TEST_F(ListenerTest, AnyNumberOfListenersHearEachEventOnce) {
  std::vector<Program> programs(5);
  std::vector<std::unique_ptr<kelva::Listener>> listeners;
  for (Program& program : programs) listeners.push_back(std::make_unique<kelva::Listener>(program.Functions()));
  const darwin::EntryId camera = Plug("K1");
  PlugBadCamera();
  RunPending();
  Unplug(camera);
  RunPending();
  for (const Program& program : programs) EXPECT_THAT(program.heard, ElementsAre("+K1", "bad", "-K1"));
}

TEST_F(ListenerTest, IsQuietOnceItIsDestroyed) {
  Program program;
  auto listener = std::make_unique<kelva::Listener>(program.Functions());
  const darwin::EntryId camera = Plug("K1");
  RunPending();
  Unplug(camera);
  Plug("K2");
  PlugBadCamera();
  listener.reset();  // with its messages waiting
  RunPending();
  Plug("K3");
  RunPending();
  EXPECT_THAT(program.heard, ElementsAre("+K1"));
  EXPECT_FALSE(program.cameras.at(0)->Open());
}

TEST_F(ListenerTest, EachThreadHearsItsOwn) {
  Program here;
  const kelva::Listener listener(here.Functions());
  Program there;
  std::promise<void> listening;
  std::thread thread([&] {
    const kelva::Listener other(there.Functions());
    there.then = [](const std::string&) { CFRunLoopStop(CFRunLoopGetCurrent()); };
    listening.set_value();
    CFRunLoopRun();
    there.cameras.clear();
  });
  listening.get_future().wait();
  Plug("K1");
  RunPending();
  thread.join();
  EXPECT_THAT(here.heard, ElementsAre("+K1"));
  EXPECT_THAT(there.heard, ElementsAre("+K1"));
}

TEST_F(ListenerTest, ACameraMayBeUsedAndDestroyedOnAnotherThread) {
  std::promise<boost::shared_ptr<Camera>> found;
  Log lost;
  const kelva::Listener listener({.attached = [&](auto camera, auto&) { found.set_value(std::move(camera)); },
                                  .lost = [&](auto, auto& serial) { lost.push_back(serial); },
                                  .badCamera = {}});
  std::thread worker([&] {
    const boost::shared_ptr<Camera> camera = found.get_future().get();
    EXPECT_FALSE(camera->CompareSn("K2"));
  });
  const darwin::EntryId camera = Plug("K1");
  RunPending();
  Unplug(camera);
  RunPending();
  worker.join();
  EXPECT_THAT(lost, ElementsAre("K1"));
}

}  // namespace
