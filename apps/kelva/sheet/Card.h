#ifndef KELVA_APPS_KELVA_SHEET_CARD_H_
#define KELVA_APPS_KELVA_SHEET_CARD_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/thumbnails/Thumbnail.h"

namespace apps {

/// One file of a picture, as the sheet shows it.
struct CardFile {
  std::string_view type;                   ///< "JPG"
  std::optional<unsigned long long> size;  ///< where the camera lists it
  std::string beside;                      ///< where it is, from the sheet's folder; empty when it was not fetched
};

/// One picture, as the sheet shows it. Names are the camera's bytes.
struct Card {
  std::string folder;
  std::string name;
  std::optional<std::string> time;  ///< "2026-03-14 15:09:26"
  std::vector<CardFile> files;
  std::optional<Thumbnail> thumbnail;
  std::string trouble;  ///< what to show when something is wrong with the picture: a few words
};

/// The picture as one element of the sheet's list.
std::string CardHtml(const Card& card);

}  // namespace apps

#endif  // KELVA_APPS_KELVA_SHEET_CARD_H_
