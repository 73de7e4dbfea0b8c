// The HTML of a contact sheet around its pictures.
#include "apps/kelva/sheet/Page.h"

#include "apps/commandline/Words.h"
#include "apps/kelva/sheet/Day.h"
#include "apps/kelva/sheet/Html.h"
#include "apps/kelva/sheet/Style.h"

namespace apps {
namespace {

constexpr std::string_view kHead =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
    "style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'\">\n"
    "<meta name=\"referrer\" content=\"no-referrer\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
    "<meta name=\"color-scheme\" content=\"light dark\">\n";

// A no-break space keeps the dot on the line of the text before it.
constexpr std::string_view kDot = "\u00A0<span class=\"dot\">\u00B7</span> ";

std::string Days(const PageFacts& facts) {
  const std::string first = ShortDayName(facts.first);
  std::string last = ShortDayName(facts.last);
  if (first.empty() || first == last) return last;
  return last.empty() ? first : first + " to " + last;
}

}  // namespace

std::string Page::Start(const PageFacts& facts) {
  const std::string serial = Html(facts.serial);
  const std::string days = Days(facts);
  std::string html(kHead);
  html += "<title>Pictures of camera " + serial + "</title>\n<style>\n" + std::string(kStyle) +
          "</style>\n</head>\n<body>\n";
  html += "<header>\n<h1>Pictures of camera <span>" + serial + "</span></h1>\n<p>" + Counted(facts.pictures, "picture");
  for (const std::string& more : {days, Html(facts.product)}) {
    if (!more.empty()) html.append(kDot).append(more);
  }
  html += "</p>\n</header>\n<main>\n";
  if (facts.pictures == 0) html += "<p class=\"empty\">There are no pictures in the camera's catalogue.</p>\n";
  return html;
}

std::string Page::Picture(const Card& card) {
  std::string day = DayName(card.time.value_or(""));
  if (day_ == day) return CardHtml(card);
  std::string html = day_ ? "</ul>\n</section>\n" : "";
  html += "<section>\n<h2>" + (day.empty() ? "Undated" : day) + "</h2>\n<ul class=\"grid\">\n";
  day_ = std::move(day);
  return html + CardHtml(card);
}

std::string Page::End(std::string_view made) {
  std::string html = day_ ? "</ul>\n</section>\n" : "";
  return html + "</main>\n<footer>\n<p>" + Html(made) + "</p>\n</footer>\n</body>\n</html>\n";
}

}  // namespace apps
