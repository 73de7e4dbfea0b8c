// The camera's thread: opens the camera while there is work, and gives it up for others.
#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

#include "apps/camera/Turns.h"
#include "apps/commandline/Failure.h"
#include "apps/commandline/Stop.h"
#include "apps/mount/Errors.h"
#include "apps/mount/FileSystem.h"

namespace apps {
namespace {

// A reader that goes on asks again within this time. Shorter than anybody notices who waits for the camera.
constexpr std::chrono::milliseconds kLinger{15};
// So many requests of one file are answered before those of others.
constexpr unsigned kMostInARow = 8;

}  // namespace

void FileSystem::Serve(Context& context, AttachedCamera chosen, const std::function<void()>& opened) {
  Session session(context, std::move(chosen));
  context_ = &context;
  session_ = &session;
  reading_ = std::make_unique<Reading>(session.Pointer(), events_.forwardOnly);
  isOpen_ = true;
  Current(Nodes::kRoot);  // a camera that does not answer is not mounted
  opened();
  while (!work_.HasEnded()) {
    if (!isOpen_) {
      Idle();
    } else if (auto job = NextJob()) {
      Do(*job);
    } else if (!work_.WaitFor(kLinger)) {
      Idle();
    }
  }
}

// The selected file first, and what its reader will ask for next: another selection costs commands.
std::optional<Job> FileSystem::NextJob() {
  const std::uint64_t selected = reading_->Selected();
  if (selected != 0 && inARow_ < kMostInARow) {
    if (auto job = work_.TakeOf(selected)) {
      ++inARow_;
      return job;
    }
    while (ReadAhead()) {
      if (auto job = work_.TakeOf(selected)) return job;
    }
  }
  inARow_ = 0;
  readAhead_ = 0;
  return work_.Take();
}

void FileSystem::Do(const Job& job) {
  try {
    if (LetOthers(*context_)) reading_->Forget();
  } catch (const std::exception& error) {
    job.fail(ErrorOf(error));
    FailAll(error);
    return;
  } catch (const Stopped&) {
    return;  // the end of the mount answers the request
  }
  Heard();
  try {
    job.run();
  } catch (const std::exception& error) {
    job.fail(ErrorOf(error));
  } catch (const Stopped&) {
    // The end of the mount answers the request.
  }
  heard_.store(0);
}

void FileSystem::Heard() {
  heard_.store(Clock::now().time_since_epoch().count());
}

std::chrono::milliseconds FileSystem::Silence() const {
  const Clock::rep heard = heard_.load();
  if (heard == 0) return {};
  return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch() -
                                                               Clock::duration(heard));
}

// Gives the camera up until there is work.
void FileSystem::Idle() {
  reading_->Forget();
  isOpen_ = false;
  try {
    WithoutCamera(
        *context_,
        [this] {
          thumbnailer_.reset();
          work_.Wait();
          if (work_.HasEnded()) throw Stopped();
        },
        WaitBusy(*context_));
    isOpen_ = true;
  } catch (const std::exception& error) {
    FailAll(error);
  } catch (const Stopped&) {
    // The mount ends.
  }
}

// Nobody has to wait once more for a camera that was waited for.
void FileSystem::FailAll(const std::exception& error) {
  isOpen_ = false;
  const int number = ErrorOf(error);
  for (const Job& job : work_.TakeAll()) job.fail(number);
}

int FileSystem::ErrorOf(const std::exception& error) {
  const int number = ErrnoOf(error);
  if (number == ENODEV) events_.gone();
  return number;
}

void FileSystem::End(int error) {
  ended_.store(error);
  work_.End();
  pending_.FailAll(error);
}

}  // namespace apps
