#ifndef KELVA_APPS_COMMANDLINE_JSON_H_
#define KELVA_APPS_COMMANDLINE_JSON_H_

#include <concepts>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace apps {

/// A JSON value that the tool builds and prints; it never reads any. Members keep the order in which they were set.
/// Texts may be any bytes: each byte that is not UTF-8 is printed as U+FFFD, so that the document is always valid.
class Json {
 public:
  Json() = default;  ///< null
  Json(bool value) : value_(value) {}
  Json(std::string value) : value_(std::move(value)) {}
  Json(std::string_view value) : value_(std::string(value)) {}
  Json(const char* value) : value_(std::string(value)) {}
  /// A number that is not finite is printed as null.
  Json(double value) : value_(value) {}
  template <std::signed_integral T>
  Json(T value) : value_(static_cast<std::int64_t>(value)) {}
  template <std::unsigned_integral T>
  requires(!std::same_as<T, bool>) Json(T value) : value_(static_cast<std::uint64_t>(value)) {}

  static Json Object();
  /// An array that grows by Push. It holds the text of its elements, a tenth of what the elements themselves take.
  static Json Array();
  /// Takes elements one after another.
  using Give = std::function<void(const Json&)>;
  /// An array whose elements are made while it is printed, so that a long list takes no memory. `make` hands over the same
  /// elements each time and does not throw; what it refers to lives as long as this.
  static Json ArrayFrom(std::function<void(const Give& give)> make);

  /// Adds a member to an object. Names are the tool's own; one is set once.
  Json& Set(std::string_view name, Json value) &;
  Json&& Set(std::string_view name, Json value) && { return std::move(Set(name, std::move(value))); }
  /// Sets `name` to bytes of a camera: as text, and when they are not UTF-8 also as "<name>_hex", without loss.
  Json& SetBytes(std::string_view name, std::string_view bytes) &;
  Json&& SetBytes(std::string_view name, std::string_view bytes) && { return std::move(SetBytes(name, bytes)); }
  /// Adds every member of another object.
  Json&& Merge(Json other) &&;
  /// Whether an object has this member.
  bool Has(std::string_view name) const;
  /// Adds an element to an array made by Array.
  Json& Push(const Json& value);
  /// Adds an element that another process of this tool has printed.
  Json& PushPrinted(std::string_view text);

  /// The value in one line, without a line feed.
  std::string Text() const;
  /// As Text, in pieces of about 64 KiB: all but the last have that size or more.
  void Print(const std::function<void(std::string_view)>& take) const;

 private:
  using Members = std::vector<std::pair<std::string, Json>>;
  /// The elements' text with commas between them. In pieces, because one long string is copied while it grows.
  struct Elements {
    std::vector<std::string> pieces;
  };
  using Made = std::function<void(const Give&)>;
  using Value =
      std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Elements, Members, Made>;
  class Printer;
  static Json Holding(Value value);
  std::string& NextElement();

  Value value_;
};

}  // namespace apps

#endif  // KELVA_APPS_COMMANDLINE_JSON_H_
