#ifndef KELVA_APPS_DESKTOP_WORKER_BROWSER_H_
#define KELVA_APPS_DESKTOP_WORKER_BROWSER_H_

#include <boost/shared_ptr.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "apps/camera/Session.h"
#include "apps/commandline/Context.h"
#include "apps/desktop/worker/Drawings.h"
#include "apps/desktop/worker/Input.h"
#include "apps/desktop/worker/PictureEvents.h"
#include "apps/desktop/worker/Target.h"
#include "apps/import/Others.h"
#include "src/wifi/DcfObj.h"

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

  void Obey(const Command& command);
  void ObeyAll();
  /// Does the next piece of work. False when there is none.
  bool DoNext();
  bool DoUnasked();
  bool HasUnasked() const;
  void Wait();

  const boost::shared_ptr<Camera>& Open();
  /// Whether what this token names ended an earlier process of this run. It is left out then.
  bool EndedAProcess(const std::string& token) const;
  void TellBusy();
  void ReadCatalogue();
  void ReadFacts();
  void ReadSizes();
  void ReadOthers();
  void GiveTarget();
  void ReadNextThumbnail();
  void ReadNextWhole();
  void ReadPreview();
  void Give(const Drawn& drawn);
  void GiveNone(const DrawingOf& of, const std::string& sentence);
  /// Reads one picture; a failure that is about it alone becomes its event.
  void Read(const DrawingOf& of, const std::function<std::vector<char>(const DcfObj&)>& read);
  std::vector<char> ReadWhole(const DcfObj& picture, std::uint64_t most, const std::function<bool()>& isWanted);
  std::vector<std::size_t> IndicesIn(const Command& command) const;

  Context& context_;
  Input& input_;
  std::optional<Session> session_;
  bool quits_ = false;
  bool toldBusy_ = false;
  Clock::time_point quietUntil_;  // before, what nobody asked for waits for the window's first wishes

  RegistryCamera facts_;
  std::vector<DcfObj> pictures_;
  bool hasPictures_ = false;
  bool hasFacts_ = false;
  std::vector<PictureSizes> sizes_;  // of the first ones
  std::optional<OtherFiles> others_;

  std::optional<Target> target_;
  bool targetDue_ = false;
  std::deque<std::size_t> thumbs_;
  std::deque<std::size_t> whole_;       // wanted, and their starts have no thumbnail
  std::set<std::size_t> withoutStart_;  // the same for all that were read
  std::optional<std::size_t> preview_;
  Drawings drawings_;
};

}  // namespace apps

#endif  // KELVA_APPS_DESKTOP_WORKER_BROWSER_H_
