#ifndef KELVA_APPS_KELVA_SHEET_PAGE_H_
#define KELVA_APPS_KELVA_SHEET_PAGE_H_

#include <optional>
#include <string>
#include <string_view>

#include "apps/kelva/sheet/Card.h"

namespace apps {

/// What a sheet says of the whole.
struct PageFacts {
  std::string product;  ///< the camera's product name, in the camera's bytes
  std::string serial;
  std::size_t pictures = 0;
  std::string first;  ///< the earliest and the latest time of the catalogue, empty where it has none
  std::string last;
};

/// Writes a contact sheet piece by piece, so that no more than one picture is in memory: Start, a Picture each, End.
/// The page needs nothing else, neither scripts nor files nor a network; its policy forbids all of them.
class Page {
 public:
  std::string Start(const PageFacts& facts);
  /// One picture, under a heading with its day if the picture before it is of another day.
  std::string Picture(const Card& card);
  /// `made` is when and with what the sheet was made.
  std::string End(std::string_view made);

 private:
  std::optional<std::string> day_;
};

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_PAGE_H_
