// One picture of a contact sheet as HTML.
#include "apps/kelva/sheet/Card.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "apps/commandline/Printable.h"
#include "apps/kelva/sheet/Html.h"

namespace apps {
namespace {

// The width of a card relative to its height. Limited, because a very wide picture would take a whole row, and a very
// tall one would leave no room for its name.
std::string Ratio(const Card& card) {
  constexpr double kUsual = 1.5;
  constexpr double kNarrowest = 0.62;
  constexpr double kWidest = 2.4;
  const double ratio = card.thumbnail ? static_cast<double>(card.thumbnail->width) / card.thumbnail->height : kUsual;
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%.3f", std::clamp(ratio, kNarrowest, kWidest));
  return text.data();
}

std::string Image(const Card& card) {
  const std::string size = "width=\"" + std::to_string(card.thumbnail->width) + "\" height=\"" +
                           std::to_string(card.thumbnail->height) + "\"";
  return "<img src=\"" + ImageAddress(card.thumbnail->jpeg) + "\" " + size + " alt=\"Picture " +
         Html(card.folder + "/" + card.name) + "\" loading=\"lazy\" decoding=\"async\">";
}

std::string Placeholder(const Card& card) {
  const std::string words = card.trouble.empty() ? "no thumbnail" : card.trouble;
  return "<div class=\"none\" role=\"img\" aria-label=\"Picture " + Html(card.folder + "/" + card.name) + ": " +
         Html(words) + "\"><span>" + Html(words) + "</span></div>";
}

// The thumbnail opens the picture: its JPEG, or else the first file that is here.
std::string FirstBeside(const Card& card) {
  const auto found =
      std::find_if(card.files.begin(), card.files.end(), [](const CardFile& file) { return !file.beside.empty(); });
  return found == card.files.end() ? "" : found->beside;
}

std::string Frame(const Card& card) {
  std::string content = card.thumbnail ? Image(card) : Placeholder(card);
  if (card.thumbnail && !card.trouble.empty()) content += "<span class=\"mark\">" + Html(card.trouble) + "</span>";
  const std::string beside = FirstBeside(card);
  if (beside.empty()) return "<div class=\"frame\">" + content + "</div>\n";
  return "<a class=\"frame\" href=\"" + RelativeAddress(beside) + "\">" + content + "</a>\n";
}

// Shows "15:09", since the day's name is above; the full time is in the element's attributes.
std::string Time(const Card& card) {
  if (!card.time) return "";
  const std::string date = card.time->substr(0, 10);
  const std::string clock = card.time->substr(11);
  return "<time datetime=\"" + Html(date + "T" + clock) + "\" title=\"" + Html(*card.time) + "\">" +
         Html(clock.substr(0, 5)) + "</time>";
}

std::string File(const CardFile& file) {
  std::string content = "<b>" + Html(file.type) + "</b>";
  if (file.size) content += " " + Html(Bytes(*file.size));
  if (file.beside.empty()) return "<li><span class=\"file\" title=\"on the camera\">" + content + "</span></li>";
  return "<li><a class=\"file\" href=\"" + RelativeAddress(file.beside) + "\" title=\"open " + Html(file.beside) +
         "\">" + content + "</a></li>";
}

}  // namespace

std::string CardHtml(const Card& card) {
  std::string html = "<li class=\"card\" style=\"--r:" + Ratio(card) + "\">\n" + Frame(card);
  html += "<h3>" + Html(card.name) + "</h3>\n<p class=\"where\"><span>" + Html(card.folder) + "</span>" + Time(card) +
          "</p>\n<ul class=\"files\">";
  for (const CardFile& file : card.files) html += File(file);
  return html + "</ul>\n</li>\n";
}

}  // namespace apps
