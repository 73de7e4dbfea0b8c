// Repeats work in child processes, without the items in which the library aborted.
#include "apps/commandline/Guard.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <thread>

#include "apps/commandline/Failure.h"
#include "apps/commandline/Supervisor.h"
#include "base/FileDescriptor.h"
#include "base/SignalPipe.h"
#include "platform/Sockets.h"

namespace apps {
namespace {

enum Fact : unsigned { kReported = 1, kAborted = 2, kKilled = 4, kKilledAgain = 8 };

std::uint64_t ItemOf(std::string_view token) {
  return std::hash<std::string_view>{}(token) | 1U;
}

}  // namespace

// Shared memory of all processes of one piece of work. Lock-free atomics and plain arrays only: a process writes here
// from its handler of SIGABRT, and may be killed at any moment.
struct Guard::Page {
  // What is known of one item. 0 stands for no item.
  struct Note {
    std::uint64_t item;
    unsigned facts;
  };

  static constexpr std::size_t kNotes = 16384;
  static constexpr std::size_t kMostNotes = kNotes / 4 * 3;
  static constexpr int kMostAborts = 1024;
  static constexpr int kMostKills = 16;
  static constexpr int kMostKillsBetweenItems = 2;

  std::atomic<std::uint64_t> current = 0;  // the item that began last
  std::atomic<bool> inItem = false;
  std::atomic<bool> aborted = false;
  int aborts = 0;
  int kills = 0;
  int killsBetweenItems = 0;
  std::array<char, 256> name{};  // of the current item
  Counters counters{};
  std::size_t noted = 0;
  // A hash table, nulls at first. Not touched before it is needed: most work fails nowhere.
  std::array<Note, kNotes> notes;

  unsigned FactsOf(std::uint64_t item) { return noted == 0 ? 0 : notes[PlaceOf(item)].facts; }
  // When the table is full, new items stay unknown.
  void Add(std::uint64_t item, Fact fact) {
    Note& note = notes[PlaceOf(item)];
    if (note.item == 0) {
      if (noted == kMostNotes) return;
      ++noted;
      note.item = item;
    }
    note.facts |= fact;
  }
  // Where the note of an item is, or belongs.
  std::size_t PlaceOf(std::uint64_t item) const {
    std::size_t i = item % kNotes;
    while (notes[i].item != 0 && notes[i].item != item) i = (i + 1) % kNotes;
    return i;
  }

  static Page* ofThisProcess;
};

Guard::Page* Guard::Page::ofThisProcess = nullptr;

namespace {

// A connection between this process and the child that is forked next. The end of either of them hangs up, however it came.
class Tie {
 public:
  Tie() {
    std::array<int, 2> ends{-1, -1};
    if (platform::SocketPair(ends) != 0) throw SystemFailure("make a socket", errno);
    parents_.Reset(ends[0]);
    childs_.Reset(ends[1]);
  }
  /// In the parent, after the fork. Returns a descriptor that hangs up when the child has ended.
  int ToChild() {
    childs_.Reset();
    return parents_.Get();
  }
  /// In the child, after the fork: a worker must not outlive the tool, even one that was killed.
  void EndWithParent() {
    parents_.Reset();
    std::thread([tie = childs_.Release()] {
      pollfd parent{tie, POLLIN, 0};
      while (::poll(&parent, 1, -1) < 0) {
      }
      ::kill(::getpid(), SIGTERM);
    }).detach();
  }

 private:
  base::FileDescriptor parents_;
  base::FileDescriptor childs_;
};

// Waits for the child and hands on the signals that are meant to end the tool.
int WaitFor(pid_t child, int tie) {
  const base::SignalPipe signals(kEndingSignals);
  const base::SignalPipe::Listening listening(signals);
  std::array<pollfd, 2> watched{{{tie, POLLIN, 0}, {signals.Descriptor(), POLLIN, 0}}};
  while (watched[0].revents == 0) {
    if (::poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) break;
    while (const int signal = signals.Next()) ::kill(child, signal);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

// Killed by somebody else: the signals that end the tool were handed on.
bool WasKilled(int status) {
  if (!WIFSIGNALED(status)) return false;
  const int signal = WTERMSIG(status);
  return signal != SIGINT && signal != SIGTERM && signal != SIGHUP;
}

std::string HowKilled(int signal) {
  const std::string how = "was killed (signal " + std::to_string(signal) + ", " + ::strsignal(signal) + ")";
  return signal == SIGKILL ? how + ", as happens when memory runs out" : how;
}

}  // namespace

int Guard::Run(const std::function<int(Guard&)>& work, const std::function<void(const std::string&)>& say) {
  void* memory = ::mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw SystemFailure("get shared memory", errno);
  Page& page = *new (memory) Page;
  while (true) {
    page.aborted = false;
    page.inItem = false;
    page.current = 0;
    Tie tie;
    const pid_t child = ::fork();
    if (child < 0) throw SystemFailure("start a process", errno);
    if (child == 0) {
      tie.EndWithParent();
      Page::ofThisProcess = &page;
      Guard guard(page);
      return work(guard);
    }
    const int status = WaitFor(child, tie.ToChild());
    if (WasKilled(status)) {
      NoteKill(page, WTERMSIG(status), say);
      continue;
    }
    // The child has given the result and flushed it; destructors of this process have nothing to add.
    if (!page.aborted) ::_exit(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
    if (page.aborts++ == Page::kMostAborts) {
      throw Failure(ExitCode::kFailed, "The process that did the work aborted at " + std::to_string(Page::kMostAborts) +
                                           " files, so the rest was not tried; what was printed before says why.");
    }
    // The next process reads everything again but this item.
    page.Add(page.current, kAborted);
  }
}

void Guard::NoteKill(Page& page, int signal, const std::function<void(const std::string&)>& say) {
  const std::string name = page.name.data();
  const bool tooMany =
      page.kills++ == Page::kMostKills || (!page.inItem && page.killsBetweenItems++ == Page::kMostKillsBetweenItems);
  if (page.current == 0 || tooMany) {
    throw Failure(ExitCode::kFailed, "The process that did the work " + HowKilled(signal) +
                                         "; what was finished is kept, and the same command goes on from there.");
  }
  // Deletions and the list, for example: no file is to blame.
  if (!page.inItem) return say("The process that did the work " + HowKilled(signal) + "; another one goes on.");
  if ((page.FactsOf(page.current) & kKilled) != 0) {
    page.Add(page.current, kKilledAgain);
    return;
  }
  page.Add(page.current, kKilled);
  say("The process that read " + name + " " + HowKilled(signal) + "; another one tries that file once more.");
}

void Guard::Begin(std::string_view token, std::string_view name) {
  const std::string_view kept = name.substr(0, page_.name.size() - 1);
  *std::copy(kept.begin(), kept.end(), page_.name.begin()) = '\0';
  page_.current = ItemOf(token);
  page_.inItem = true;
}

void Guard::End() {
  page_.inItem = false;
}

Guard::Fate Guard::FateOf(std::string_view token) const {
  const std::scoped_lock lock(mutex_);
  const unsigned facts = page_.FactsOf(ItemOf(token));
  if ((facts & kAborted) != 0) return Fate::kAbort;
  return (facts & kKilledAgain) != 0 ? Fate::kKilledTwice : Fate::kUnknown;
}

bool Guard::TakeReport(std::string_view token) {
  // What fails while this process ends, fails because its files are being removed; the next process tries it again.
  if (page_.aborted) return false;
  const std::scoped_lock lock(mutex_);
  const std::uint64_t item = ItemOf(token);
  if ((page_.FactsOf(item) & kReported) != 0) return false;
  page_.Add(item, kReported);
  return true;
}

bool Guard::WasReported(std::string_view token) const {
  const std::scoped_lock lock(mutex_);
  return (page_.FactsOf(ItemOf(token)) & kReported) != 0;
}

Guard::Counters& Guard::Shared() const {
  return page_.counters;
}

bool Guard::NoteAbort() noexcept {
  Page* page = Page::ofThisProcess;
  if (page == nullptr || !page->inItem) return false;
  page->aborted = true;
  return true;
}

}  // namespace apps
