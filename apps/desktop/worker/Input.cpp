// Reads what the window asks for.
#include "apps/desktop/worker/Input.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <thread>
#include <utility>

#include "apps/commandline/Words.h"

namespace apps {

std::shared_ptr<Input> Input::OfThisProcess() {
  auto input = std::make_shared<Input>();
  std::thread([input] {
    std::array<char, 65'536> bytes{};
    for (;;) {
      const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) break;
      input->Add({bytes.data(), static_cast<std::size_t>(count)});
    }
    ::kill(::getpid(), SIGTERM);
  }).detach();
  return input;
}

void Input::Add(std::string_view bytes) {
  const std::scoped_lock lock(mutex_);
  begun_ += bytes;
  TakeLines(begun_, [this](std::string_view line) {
    if (auto words = WordsIn(line)) commands_.push_back(*std::move(words));
  });
  came_.notify_all();
}

std::optional<Command> Input::Next(std::chrono::steady_clock::time_point until, const Stop& stop) {
  const Stop::WakeUp wakeUp(stop, [this] {
    const std::scoped_lock lock(mutex_);
    came_.notify_all();
  });
  std::unique_lock lock(mutex_);
  came_.wait_until(lock, until, [&] { return stop.Requested() || !commands_.empty(); });
  stop.Check();
  if (commands_.empty()) return std::nullopt;
  Command command = std::move(commands_.front());
  commands_.pop_front();
  return command;
}

}  // namespace apps
