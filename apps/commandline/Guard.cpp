// Repeats work in child processes, without the items in which the library aborted.
#include "apps/commandline/Guard.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <new>

#include "apps/commandline/Failure.h"
#include "base/FileDescriptor.h"

namespace apps {

// Shared memory of all processes of one piece of work. Lock-free atomics and plain arrays only: a process writes here
// from its handler of SIGABRT.
struct Guard::Page {
  using Token = std::array<char, 80>;
  static constexpr std::size_t kMostBad = 1024;

  Token current{};
  std::atomic<bool> inItem = false;
  std::atomic<bool> aborted = false;
  std::size_t badCount = 0;
  std::array<Token, kMostBad> bad{};
  std::atomic<unsigned long long> expected = 0;
  std::atomic<unsigned long long> files = 0;
  std::atomic<unsigned long long> bytes = 0;

  static Page* ofThisProcess;
};

Guard::Page* Guard::Page::ofThisProcess = nullptr;

namespace {

template <typename Token>
void Copy(Token& token, std::string_view text) {
  token.fill('\0');
  std::copy_n(text.begin(), std::min(text.size(), token.size() - 1), token.begin());
}

template <typename Token>
std::string_view TextOf(const Token& token) {
  return std::string_view(token.data());
}

// Waits for the child and hands on the signals that are meant to end the tool.
int WaitFor(pid_t child) {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&set, signal);
  const base::FileDescriptor signals(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
  const base::FileDescriptor process(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
  std::array<pollfd, 2> watched{{{process.Get(), POLLIN, 0}, {signals.Get(), POLLIN, 0}}};
  while (process && watched[0].revents == 0) {
    if (::poll(watched.data(), watched.size(), -1) < 0 && errno != EINTR) break;
    signalfd_siginfo info{};
    if (::read(signals.Get(), &info, sizeof info) == sizeof info) ::kill(child, static_cast<int>(info.ssi_signo));
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

int Guard::Run(const std::function<int(Guard&)>& work) {
  void* memory = ::mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw SystemFailure("get shared memory", errno);
  Page& page = *new (memory) Page();
  while (true) {
    page.aborted = false;
    page.inItem = false;
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child < 0) throw SystemFailure("start a process", errno);
    if (child == 0) {
      // A worker must not outlive the tool, even one that was killed. The parent may have ended before the call: check.
      ::prctl(PR_SET_PDEATHSIG, SIGTERM);
      if (::getppid() != parent) ::_exit(1);
      Page::ofThisProcess = &page;
      Guard guard(page);
      return work(guard);
    }
    const int status = WaitFor(child);
    // The child has given the result and flushed it; destructors of this process have nothing to add.
    if (!page.aborted) ::_exit(status);
    if (page.badCount == Page::kMostBad) {
      throw Failure(ExitCode::kFailed,
                    "The camera sent more than it announced for " + std::to_string(Page::kMostBad) +
                        " files, so the rest was not tried; check the cable and restart the camera.");
    }
    // The next process reads everything again but this item.
    page.bad[page.badCount++] = page.current;
  }
}

void Guard::Begin(std::string_view token) {
  Copy(page_.current, token);
  page_.inItem = true;
}

void Guard::End() {
  page_.inItem = false;
}

bool Guard::IsBad(std::string_view token) const {
  Page::Token wanted{};
  Copy(wanted, token);
  const auto end = page_.bad.begin() + static_cast<std::ptrdiff_t>(page_.badCount);
  return std::any_of(page_.bad.begin(), end,
                     [&wanted](const Page::Token& bad) { return TextOf(bad) == TextOf(wanted); });
}

void Guard::Expect(unsigned long long files) {
  page_.expected = files;
}

unsigned long long Guard::Expected() const {
  return page_.expected;
}

void Guard::Count(unsigned long long files, unsigned long long bytes) {
  page_.files += files;
  page_.bytes += bytes;
}

unsigned long long Guard::Files() const {
  return page_.files;
}

unsigned long long Guard::Bytes() const {
  return page_.bytes;
}

bool Guard::NoteAbort() noexcept {
  Page* page = Page::ofThisProcess;
  if (page == nullptr || !page->inItem) return false;
  page->aborted = true;
  return true;
}

}  // namespace apps
