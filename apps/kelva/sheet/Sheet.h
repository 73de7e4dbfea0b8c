#ifndef KELVA_APPS_KELVA_SHEET_SHEET_H_
#define KELVA_APPS_KELVA_SHEET_SHEET_H_

#include <boost/shared_ptr.hpp>
#include <deque>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/camera/FileSizes.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Progress.h"
#include "apps/kelva/sheet/Beside.h"
#include "apps/kelva/sheet/Card.h"
#include "apps/kelva/sheet/DrawnBefore.h"
#include "apps/thumbnails/ThumbnailPool.h"
#include "src/wifi/Camera.h"

namespace apps {

/// The pictures in the order of a sheet: by time if the catalogue has a time for every picture, else in the camera's
/// order.
std::vector<DcfObj> InSheetOrder(std::vector<DcfObj> catalogue);

/// What came of a sheet.
struct SheetTotals {
  std::size_t drawn = 0;    ///< thumbnails, those of damaged pictures included
  std::size_t fetched = 0;  ///< of these, drawn from the fetched file and not from the camera
  std::size_t kept = 0;     ///< of these, drawn by an earlier sheet
  std::size_t without = 0;  ///< pictures that have no JPEG file
  std::size_t failed = 0;   ///< pictures that are damaged, missing or cannot be read; each was reported
};

/// Draws the pictures of a catalogue: reads one after the other, while processes draw those before it. The start of a
/// file is enough where it has an EXIF thumbnail; otherwise the whole file is read. A few pictures' bytes are in memory at
/// any time. A picture that cannot be read or drawn is reported and gets a placeholder, and the rest
/// goes on.
class Sheet {
 public:
  /// Takes each picture's element of the page, in the order of the catalogue.
  using Sink = std::function<void(const Card&)>;

  /// `drawn`: thumbnails of an earlier sheet, and those for the next; outlives this.
  Sheet(Context& context, boost::shared_ptr<Camera> camera, Beside beside, DrawnBefore* drawn = nullptr,
        std::string serial = "");

  /// `sizes` are those of `catalogue`, in its order. Call it once. Throws what the sink throws, Stopped, CameraError when the
  /// camera has gone, and Failure when no picture can be decoded.
  void Draw(const std::vector<DcfObj>& catalogue, const std::vector<FileSizes>& sizes, const Sink& sink);

  const SheetTotals& Totals() const { return totals_; }
  /// The pictures in JSON style, one after the other.
  Json TakeList() { return std::move(list_); }

 private:
  /// A picture that was read, and perhaps not drawn yet.
  struct Begun {
    Card card;
    const DcfObj* picture;
    std::string key;                   // of its thumbnail, for the next sheet; empty for none
    std::string path;                  // printable
    std::size_t bytes = 0;             // of its JPEG file
    bool isHere = false;               // read from the fetched file
    bool isStart = false;              // of the file only the start was read
    std::future<Thumbnail> thumbnail;  // not valid when the picture has no JPEG file or cannot be read
    std::string failure;               // a sentence
  };

  Card CardOf(const DcfObj& picture, const FileSizes& sizes);
  void Begin(const DcfObj& picture, const FileSizes& sizes);
  void Read(Begun& begun);
  std::string KeyOf(const DcfObj& picture, const FileSizes& sizes) const;
  bool ReadStartOf(Begun& begun);
  void Hand(Begun& begun, std::vector<char> bytes);
  bool ExpectsThumbnail() const;
  Thumbnail Await(Begun& begun);
  std::vector<char> ReadFromCamera(const DcfObj& picture, std::optional<unsigned long long> listed);
  bool IsFull() const;
  void FinishOldest(const Sink& sink);
  void Take(Begun& begun);
  /// Does one step of a picture. A failure that is the picture's own is kept in it.
  template <typename Step>
  void Try(Begun& begun, Step step);
  void Report(const Begun& begun);
  void List(const Begun& begun);

  Context& context_;
  const boost::shared_ptr<Camera> camera_;
  Beside beside_;
  DrawnBefore* const drawn_;
  const std::string serial_;
  std::optional<ThumbnailPool> pool_;
  std::size_t mostBegun_ = 0;
  std::deque<Begun> begun_;  // in the order of the catalogue
  std::size_t bytes_ = 0;    // of these
  int without_ = 0;          // pictures in a row without an EXIF thumbnail
  std::size_t begunInAll_ = 0;
  SheetTotals totals_;
  Json list_ = Json::Array();
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_SHEET_H_
