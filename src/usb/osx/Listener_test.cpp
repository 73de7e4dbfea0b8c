#include "Listener.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/weak_ptr.hpp>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "OsxCamera.h"
#include "darwin/cf/Accounting.h"
#include "darwin/registry/Accounting.h"
#include "darwin/virtual/VirtualRegistry.h"

// Listeners over the substitute's registry, with cameras that the test plugs and unplugs.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Log = std::vector<std::string>;

void RunPending() {
  while (CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, true) == kCFRunLoopRunHandledSource) {
  }
}

/// What a program hears: "+K1" attached, "-K1" lost, "bad". Keeps the cameras until they are lost.
struct Program {
  kelva::Listener::Functions Functions() {
    return {.attached = [this](auto camera, auto& serial) { Attached(camera, serial); },
            .lost = [this](auto camera, auto& serial) { Lost(camera, serial); },
            .badCamera = [this] { Hear("bad"); }};
  }
  void Attached(const boost::shared_ptr<Camera>& camera, const std::string& serial) {
    EXPECT_FALSE(camera->IsOpen());
    EXPECT_TRUE(camera->CompareSn(serial.c_str()));
    cameras.push_back(camera);
    Hear("+" + serial);
  }
  void Lost(const boost::shared_ptr<Camera>& camera, const std::string& serial) {
    lost.push_back(camera);
    std::erase(cameras, camera);
    Hear("-" + serial);
  }
  void Hear(const std::string& event) {
    heard.push_back(event);
    if (then) then(event);
    if (throws) throw std::runtime_error(event);
  }

  Log heard;
  std::vector<boost::shared_ptr<Camera>> cameras;
  std::vector<boost::shared_ptr<Camera>> lost;
  std::function<void(const std::string&)> then;
  bool throws = false;
};

/// What the process holds at one moment.
struct Holdings {
  std::size_t handles = darwin::AccountForRegistry().handles;
  std::size_t references = darwin::AccountForRegistry().references;
  std::size_t ports = darwin::AccountForRegistry().ports;
  std::size_t objects = darwin::LiveCoreFoundationObjects();
  std::size_t descriptors = darwin::OpenDescriptors();
  bool operator==(const Holdings&) const = default;
};

class ListenerTest : public testing::Test {
 protected:
  ~ListenerTest() override { EXPECT_TRUE(Holdings() == before_) << "a listener left something behind"; }

  darwin::EntryId Plug(const std::string& serial, unsigned peripheralType = 3) {
    return registry_.AttachCamera({serial, "Kelva", "Glimmer", "1.00", peripheralType, nullptr});
  }
  void PlugBadCamera() { registry_.AttachCamera({"", "Kelva", "Glimmer", "Q42", 5, nullptr}); }
  void Unplug(darwin::EntryId camera) { registry_.Detach(camera); }

 private:
  // This thread's run loop has a descriptor for as long as the thread lives.
  const CFRunLoopRef loop_ = CFRunLoopGetCurrent();
  const Holdings before_;
  darwin::VirtualRegistry registry_;
};

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

// Destroys a listener in the middle of an event.
class DestroyedInAFunction : public ListenerTest {
 protected:
  void DestroyAt(const std::string& event) {
    program_.then = [this, event](const std::string& heard) {
      if (heard != event) return;
      listener_.reset();
      EXPECT_FALSE(token_.expired()) << "the function that runs has lost what it captured";
    };
    auto token = std::make_shared<int>();
    token_ = token;
    kelva::Listener::Functions functions = program_.Functions();
    functions.attached = [this, token](auto camera, auto& serial) { program_.Attached(camera, serial); };
    functions.lost = [this, token](auto camera, auto& serial) { program_.Lost(camera, serial); };
    functions.badCamera = [this, token] { program_.Hear("bad"); };
    token.reset();
    listener_.emplace(std::move(functions));
  }
  Program program_;
  std::optional<kelva::Listener> listener_;
  std::weak_ptr<int> token_;
};

TEST_F(DestroyedInAFunction, Attached) {
  DestroyAt("+K3");
  for (const char* serial : {"K1", "K2", "K3"}) Plug(serial);
  RunPending();
  EXPECT_THAT(program_.heard, ElementsAre("+K3"));
  EXPECT_TRUE(token_.expired());
}

TEST_F(DestroyedInAFunction, AttachedOfACameraThatHasGone) {
  DestroyAt("+K1");
  Unplug(Plug("K1"));
  RunPending();
  EXPECT_THAT(program_.heard, ElementsAre("+K1"));
  EXPECT_TRUE(token_.expired());
}

TEST_F(DestroyedInAFunction, Lost) {
  DestroyAt("-K1");
  const darwin::EntryId first = Plug("K1");
  const darwin::EntryId second = Plug("K2");
  RunPending();
  Unplug(first);
  Unplug(second);
  PlugBadCamera();
  RunPending();
  EXPECT_THAT(program_.heard, ElementsAre("+K2", "+K1", "-K1"));
  EXPECT_TRUE(token_.expired());
}

TEST_F(DestroyedInAFunction, BadCamera) {
  DestroyAt("bad");
  PlugBadCamera();
  PlugBadCamera();
  RunPending();
  EXPECT_THAT(program_.heard, ElementsAre("bad"));
  EXPECT_TRUE(token_.expired());
}

TEST_F(DestroyedInAFunction, WhichThenRunsTheEvents) {
  const darwin::EntryId camera = Plug("K1");
  DestroyAt("+K2");
  const auto destroy = program_.then;
  program_.then = [&](const std::string& event) {
    destroy(event);
    if (event != "+K2") return;
    Unplug(camera);
    Plug("K3");
    PlugBadCamera();
    RunPending();
  };
  Plug("K2");
  RunPending();
  EXPECT_THAT(program_.heard, ElementsAre("+K1", "+K2"));
  EXPECT_TRUE(token_.expired());
}

TEST_F(DestroyedInAFunction, OfAnotherListener) {
  Program other;
  other.then = [this](const std::string&) { listener_.reset(); };
  const kelva::Listener before(other.Functions());
  DestroyAt("never");
  const kelva::Listener after(other.Functions());
  Plug("K1");
  RunPending();
  EXPECT_THAT(other.heard, ElementsAre("+K1", "+K1"));
  EXPECT_THAT(program_.heard, IsEmpty());
  EXPECT_TRUE(token_.expired());
}

TEST_F(DestroyedInAFunction, WhileAnExceptionLeavesIt) {
  DestroyAt("+K2");
  program_.throws = true;
  Plug("K1");
  Plug("K2");
  EXPECT_THROW(RunPending(), std::runtime_error);
  RunPending();
  EXPECT_THAT(program_.heard, ElementsAre("+K2"));
  EXPECT_TRUE(token_.expired());
}

std::string ErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no error";
}

TEST_F(ListenerTest, AnExceptionSilencesNeitherOtherCamerasNorOtherListeners) {
  Program first;
  Program second;
  const kelva::Listener one(first.Functions());
  const kelva::Listener two(second.Functions());
  first.throws = second.throws = true;
  Plug("K1");
  Plug("K2");
  Plug("DISK", 0);
  PlugBadCamera();
  EXPECT_EQ(ErrorOf(RunPending), "+K2");
  const Log expected{"+K2", "+K1", "+DISK", "bad"};
  EXPECT_EQ(first.heard, expected);
  EXPECT_EQ(second.heard, expected);
}

TEST_F(ListenerTest, AFunctionThatThrewHearsTheNextEvent) {
  Program program;
  const kelva::Listener listener(program.Functions());
  program.throws = true;
  const darwin::EntryId camera = Plug("K1");
  EXPECT_EQ(ErrorOf(RunPending), "+K1");
  Plug("K2");
  EXPECT_EQ(ErrorOf(RunPending), "+K2");
  Unplug(camera);
  EXPECT_EQ(ErrorOf(RunPending), "-K1");
  EXPECT_EQ(ErrorOf(RunPending), "no error");
  EXPECT_THAT(program.heard, ElementsAre("+K1", "+K2", "-K1"));
}

TEST_F(ListenerTest, AnExceptionInTheConstructorGoesOnOnceAllIsReportedAndEndsIt) {
  Program program;
  program.throws = true;
  Plug("K1");
  Plug("DISK", 0);
  PlugBadCamera();
  EXPECT_EQ(ErrorOf([&] { const kelva::Listener listener(program.Functions()); }), "+K1");
  Plug("K2");
  RunPending();
  EXPECT_THAT(program.heard, ElementsAre("+K1", "+DISK", "bad"));
}

TEST_F(ListenerTest, AListenerMadeInsideAFunctionHearsFromThenOn) {
  Program inner;
  std::optional<kelva::Listener> second;
  Program program;
  program.then = [&](const std::string& event) {
    if (event == "+K1") second.emplace(inner.Functions());
  };
  const kelva::Listener listener(program.Functions());
  Plug("K1");
  RunPending();
  Plug("K2");
  RunPending();
  EXPECT_THAT(inner.heard, ElementsAre("+K1", "+K2"));
  EXPECT_THAT(program.heard, ElementsAre("+K1", "+K2"));
}

TEST_F(ListenerTest, AFunctionMayRunTheEventsItself) {
  Program program;
  program.then = [&](const std::string& event) {
    if (event != "+K1") return;
    Plug("K2");
    RunPending();
  };
  const kelva::Listener listener(program.Functions());
  Plug("K1");
  RunPending();
  EXPECT_THAT(program.heard, UnorderedElementsAre("+K1", "+K2"));
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
