#ifndef KELVA_APPS_DESKTOP_WORKER_BROWSER_H_
#define KELVA_APPS_DESKTOP_WORKER_BROWSER_H_

#include <boost/shared_ptr.hpp>
#include <chrono>
#include <cstddef>
#include <future>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/desktop/worker/Input.h"
#include "apps/desktop/worker/PictureEvents.h"
#include "apps/thumbnails/ThumbnailPool.h"

namespace apps {

/// Shows the window one camera: its pictures, their thumbnails, what would be new in a folder. What the window asks for comes
/// first, the rest when nothing is asked for. Holds the camera only while there is something to read. Belongs to one thread.
class Browser {
 public:
  /// Both outlive this.
  Browser(Context& context, Input& input) : context_(context), input_(input) {}

  /// Until the window says `quit`. Throws Stopped, and what ends work with a camera.
  void Run();

 private:
  using Clock = std::chrono::steady_clock;
  using Step = void (Browser::*)();

  /// What the window wants to see of a picture.
  struct Wish {
    std::size_t index;
    DrawFrom from;

    bool operator==(const Wish&) const = default;
  };
  /// A picture that was read.
  struct Drawing {
    Wish of;
    std::future<Thumbnail> result;
  };
  /// A list of the camera's pictures, and all that goes with it when it is read again.
  struct List : OnCamera {
    std::vector<Wish> wanted = {};            // until they are given: a preview first, whole files for thumbnails last
    std::set<std::size_t> withoutStart = {};  // of those that were read
    std::vector<Drawing> drawings = {};
  };
  static constexpr std::size_t kProcesses = 4;

  void Obey(const Command& command);
  void ObeyAll();
  void Want(const Command& command);
  /// What is to be read next, as long as that keeps more processes busy.
  std::optional<Wish> NextWish() const;
  bool IsWanted(const Wish& wish) const;
  bool IsBeingDrawn(const Wish& wish) const;
  /// Does the next piece of work. False when there is none.
  bool DoNext();
  /// The next piece that nobody asked for; null when there is none.
  Step Unasked() const;
  void Wait();

  AttachedCamera Find();
  const boost::shared_ptr<Camera>& Open();
  /// Whether what this token names ended an earlier process of this run. It is left out then.
  bool EndedAProcess(const std::string& token) const;
  void TellBusy();
  void ReadCatalogue();
  void ReadFacts();
  void ReadSizes();
  void ReadOthers();
  void GiveTarget();
  /// Reads one picture; a failure that is about it alone becomes its event.
  void Read(const Wish& wish);
  std::vector<char> ReadAll(const Wish& wish, const boost::shared_ptr<Camera>& camera);
  /// False when no picture has been drawn meanwhile.
  bool GiveDrawn();
  void Give(const Wish& wish, Json members);
  void GiveNone(const Wish& wish, const std::string& sentence);
  void GiveNoThumbnail(const Wish& wish, const std::string& reason);

  Context& context_;
  Input& input_;
  std::optional<Session> session_;
  bool quits_ = false;
  bool toldBusy_ = false;
  Clock::time_point quietUntil_;  // before, what nobody asked for waits for the window's first wishes

  RegistryCamera facts_;
  bool hasFacts_ = false;
  List list_;
  bool hasList_ = false;
  std::optional<Target> target_;
  bool targetDue_ = false;
  ThumbnailPool pool_{ThumbnailPool::SizeFor(kProcesses)};
};

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_BROWSER_H_
