#include "Listener.h"

#include <gmock/gmock.h>

#include <memory>
#include <optional>

#include "testing/ListenerTest.h"

namespace {

using namespace listening;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

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

}  // namespace
