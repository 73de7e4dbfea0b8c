// The text of a failed transfer, written and read.

#include "TransferReport.h"

#include <algorithm>
#include <charconv>
#include <iomanip>
#include <locale>
#include <sstream>

namespace kelva {
namespace {

// The pieces of a report around its three values.
constexpr std::string_view kBeforeBlock = "Transfer error\nCDB=[";
constexpr std::string_view kBeforeReturnCode = "]\nret=0x";
constexpr std::string_view kBeforeStatus = " result.status=0x";

/// Makes a stream write lower-case hexadecimal digits with leading zeros, whatever the program's locale.
void WriteHex(std::ostringstream& stream) {
  stream.imbue(std::locale::classic());  // another locale may group digits
  stream << std::hex << std::setfill('0');
}

/// Takes `literal` and the hexadecimal number behind it from the front of the text.
template <class Number>
bool TakeNumber(std::string_view& text, std::string_view literal, Number& number) {
  if (!text.starts_with(literal)) return false;
  text.remove_prefix(literal.size());
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return error == std::errc();
}

}  // namespace

std::string BlockText(const _VscCdb& cdb) {
  std::ostringstream text;
  WriteHex(text);
  const char* separator = "";
  for (const unsigned byte : cdb.bytes) {
    text << separator << std::setw(2) << byte;
    separator = " ";
  }
  return text.str();
}

std::string WriteTransferReport(const TransferReport& report) {
  std::ostringstream text;
  WriteHex(text);
  text << kBeforeBlock << BlockText(report.cdb) << kBeforeReturnCode << std::setw(8)
       << static_cast<std::uint32_t>(report.returnCode) << kBeforeStatus << std::setw(8) << report.status;
  return text.str();
}

std::optional<TransferReport> ReadTransferReport(std::string_view message) {
  // The message begins with the prefix of its exception class.
  std::string_view text = message.substr(std::min(message.find(kBeforeBlock), message.size()));
  TransferReport report{};
  std::string_view literal = kBeforeBlock;
  for (unsigned char& byte : report.cdb.bytes) {
    if (!TakeNumber(text, literal, byte)) return std::nullopt;
    literal = " ";
  }
  std::uint32_t returnCode = 0;
  if (!TakeNumber(text, kBeforeReturnCode, returnCode) || !TakeNumber(text, kBeforeStatus, report.status)) {
    return std::nullopt;
  }
  report.returnCode = static_cast<std::int32_t>(returnCode);
  return report;
}

}  // namespace kelva
