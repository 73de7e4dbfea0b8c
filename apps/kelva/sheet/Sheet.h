#ifndef KELVA_APPS_KELVA_SHEET_SHEET_H_
#define KELVA_APPS_KELVA_SHEET_SHEET_H_

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/commandline/Context.h"
#include "apps/commandline/Progress.h"
#include "apps/kelva/sheet/Beside.h"
#include "apps/kelva/sheet/Card.h"
#include "apps/kelva/sheet/FileSizes.h"
#include "apps/kelva/sheet/Thumbnailer.h"
#include "src/wifi/Camera.h"

namespace apps {

/// The pictures in the order of a sheet: by time if the catalogue has a time for every picture, else in the camera's
/// order.
std::vector<DcfObj> InSheetOrder(std::vector<DcfObj> catalogue);

/// What came of a sheet.
struct SheetTotals {
  std::size_t drawn = 0;    ///< thumbnails, those of damaged pictures included
  std::size_t fetched = 0;  ///< of these, drawn from the fetched file and not from the camera
  std::size_t without = 0;  ///< pictures that have no JPEG file
  std::size_t failed = 0;   ///< pictures that are damaged, missing or cannot be read; each was reported
};

/// Draws the pictures of a catalogue, one after the other: at any time one picture's bytes are in memory. A picture
/// that cannot be read or drawn is reported and gets a placeholder, and the rest goes on.
class Sheet {
 public:
  /// Takes each picture's element of the page.
  using Sink = std::function<void(const Card&)>;

  Sheet(Context& context, Camera& camera, Beside beside);

  /// `sizes` are those of `catalogue`, in its order. Throws what the sink throws, Stopped, and CameraError when the
  /// camera has gone.
  void Draw(const std::vector<DcfObj>& catalogue, const std::vector<FileSizes>& sizes, const Sink& sink);

  const SheetTotals& Totals() const { return totals_; }
  /// The pictures in JSON style, one after the other.
  Json TakeList() { return std::move(list_); }

 private:
  Card CardOf(const DcfObj& picture, const FileSizes& sizes);
  void DrawInto(Card& card, const DcfObj& picture);
  void TryToDraw(Card& card, const DcfObj& picture);
  std::vector<char> ReadFromCamera(const DcfObj& picture, std::optional<unsigned long long> listed);
  void Fail(Card& card, const char* words, const std::string& sentence);
  void List(const Card& card);

  Context& context_;
  Camera& camera_;
  Beside beside_;
  Thumbnailer thumbnailer_;
  Progress* progress_ = nullptr;
  std::string failure_;  // of the picture at hand
  SheetTotals totals_;
  Json list_ = Json::Array();
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_SHEET_H_
