#include "apps/trace/ExchangeLine.h"

#include <gtest/gtest.h>

namespace apps {
namespace {

using namespace std::chrono_literals;
using kelva::Exchange;

constexpr Disclosure kOpen{Shown::kBytes, Personal::kNothing};
const ExchangePlace kPlace{77, 1, 5, 1234us};

std::string ExchangeLine(const ExchangePlace& place, const Exchange& exchange, Disclosure disclosure,
                         const std::string* serial) {
  std::string buffer;
  return std::string(apps::ExchangeLine(place, exchange, disclosure, serial, buffer));
}

Exchange Answer(std::string_view bytes) {
  Exchange exchange;
  exchange.block = {{0xC6, 0, 4}};
  exchange.direction = 2;
  exchange.asked = 4;
  exchange.took = 56'789ns;
  exchange.moved = static_cast<int>(bytes.size());
  exchange.payload = bytes;
  return exchange;
}

TEST(ExchangeLine, AShortAnswerIsShown) {
  EXPECT_EQ(ExchangeLine(kPlace, Answer(std::string_view("\1\0\0\0", 4)), kOpen, nullptr),
            R"({"event":"exchange","process":77,"camera":1,"number":5,"at_us":1234,"command":"ready",)"
            R"("block":"c6000400000000000000000000000000","direction":2,"asked":4,"moved":4,"us":56,"result":"done",)"
            R"("hex":"01000000"})"
            "\n");
}

TEST(ExchangeLine, ACommandWithoutDataHasNoBytes) {
  Exchange exchange;
  exchange.block = {{0xC0, 0, 3}};
  EXPECT_EQ(ExchangeLine(kPlace, exchange, {Shown::kSum, Personal::kNothing}, nullptr),
            R"({"event":"exchange","process":77,"camera":1,"number":5,"at_us":1234,"command":"reboot",)"
            R"("block":"c0000300000000000000000000000000","direction":0,"asked":0,"moved":0,"us":0,"result":"done"})"
            "\n");
}

TEST(ExchangeLine, OfAPictureLengthAndChecksumAreShown) {
  // The check value of CRC-32 is that of these nine digits.
  const std::string line = ExchangeLine(kPlace, Answer("123456789"), {Shown::kSum, Personal::kNothing}, nullptr);
  EXPECT_NE(line.find(R"("bytes":9,"crc32":"cbf43926"})"), std::string::npos) << line;
  EXPECT_EQ(line.find("hex"), std::string::npos);
}

TEST(ExchangeLine, OfALogTheHeadIsShown) {
  const std::string line = ExchangeLine(kPlace, Answer("123456789"), {Shown::kHead, Personal::kNothing}, nullptr);
  EXPECT_NE(line.find(R"("hex":"3132333435363738","bytes":9,"crc32":"cbf43926"})"), std::string::npos) << line;
}

TEST(ExchangeLine, OfLongAnswersTheFirstFourKilobytesAreShown) {
  const std::string four(4096, 'a');
  std::string line = ExchangeLine(kPlace, Answer(four), kOpen, nullptr);
  EXPECT_EQ(line.find("crc32"), std::string::npos);
  line = ExchangeLine(kPlace, Answer(four + "b"), kOpen, nullptr);
  std::string digits;
  for (std::size_t i = 0; i < four.size(); ++i) digits += "61";
  EXPECT_NE(line.find("\"hex\":\"" + digits + "\",\"bytes\":4097,\"crc32\":\""), std::string::npos);
}

TEST(ExchangeLine, OneBufferServesLinesOfAllLengths) {
  std::string buffer;
  for (const std::size_t length :
       {std::size_t{3}, std::size_t{4000}, std::size_t{0}, std::size_t{5000}, std::size_t{3}}) {
    const std::string payload(length, 'a');
    EXPECT_EQ(apps::ExchangeLine(kPlace, Answer(payload), kOpen, nullptr, buffer),
              ExchangeLine(kPlace, Answer(payload), kOpen, nullptr))
        << length;
  }
  const std::size_t room = buffer.size();
  apps::ExchangeLine(kPlace, Answer("abc"), kOpen, nullptr, buffer);
  EXPECT_EQ(buffer.size(), room) << "a short line takes nothing away";
}

TEST(ExchangeLine, OfAPassphraseNotEvenTheLengthIsShown) {
  Exchange exchange;
  exchange.block = {{0xC0, 0, 9}};
  exchange.direction = 1;
  exchange.asked = 12;
  exchange.moved = 12;
  exchange.payload = std::string_view("secret words");
  EXPECT_EQ(ExchangeLine(kPlace, exchange, {Shown::kNothing, Personal::kNothing}, nullptr),
            R"({"event":"exchange","process":77,"camera":1,"number":5,"at_us":1234,"command":"set passphrase 0",)"
            R"("block":"c0000900000000000000000000000000","direction":1,"us":0,"result":"done","payload":"hidden"})"
            "\n");
}

Exchange Failed(std::optional<Exchange::Codes> codes, std::string_view error) {
  Exchange exchange;
  exchange.block = {{0xC0, 0, 3}};
  exchange.result = Exchange::Result::kFailed;
  exchange.codes = codes;
  exchange.error = error;
  return exchange;
}

std::string Outcome(const Exchange& exchange, const std::string* serial = nullptr) {
  const std::string line = ExchangeLine(kPlace, exchange, kOpen, serial);
  return line.substr(line.find("\"result\""));
}

TEST(ExchangeLine, ARefusalHasItsStatusAndSense) {
  EXPECT_EQ(Outcome(Failed(Exchange::Codes{0, 0x00200502}, "report")),
            R"("result":"failed","return_code":"00000000","status":"00200502","sense":"052000"})"
            "\n");
  EXPECT_EQ(Outcome(Failed(Exchange::Codes{0, 0x00000008}, "report")),
            R"("result":"failed","return_code":"00000000","status":"00000008"})"
            "\n");
  // The transport failed; what looks like sense data is not.
  EXPECT_EQ(Outcome(Failed(Exchange::Codes{0, 0x000703FF}, "report")),
            R"("result":"failed","return_code":"00000000","status":"000703ff"})"
            "\n");
}

TEST(ExchangeLine, ACallThatFailedHasNoStatus) {
  EXPECT_EQ(Outcome(Failed(Exchange::Codes{-0x1FFFFD40, 0xDEADBEEF}, "report")),
            R"("result":"failed","return_code":"e00002c0"})"
            "\n");
}

TEST(ExchangeLine, AFailureOfAnotherTransportHasItsTextEscaped) {
  EXPECT_EQ(Outcome(Failed(std::nullopt, "no \"K1\"\n\x1B[2J\xFF")),
            R"("result":"failed","error":"no \"K1\"\n\u001b[2J)"
            "\xEF\xBF\xBD\"}\n");
  const std::string serial = "K1";
  EXPECT_EQ(Outcome(Failed(std::nullopt, "no K1"), &serial), "\"result\":\"failed\",\"error\":\"no **\"}\n");
}

TEST(ExchangeLine, ATransportThatReturnsFalseSaysSo) {
  Exchange exchange;
  exchange.result = Exchange::Result::kFalse;
  EXPECT_EQ(Outcome(exchange), "\"result\":\"false\"}\n");
}

TEST(ExchangeLine, StandInsComeWithASerialNumber) {
  const std::string serial = "K1";
  std::string line = ExchangeLine(kPlace, Answer("I:K1"), kOpen, &serial);
  EXPECT_NE(line.find(R"("hex":"493a2a2a"})"), std::string::npos) << line;
  line = ExchangeLine(kPlace, Answer("Ab9."), {Shown::kBytes, Personal::kInformation}, &serial);
  EXPECT_NE(line.find(R"("hex":"4161302e"})"), std::string::npos) << line;
}

TEST(ExchangeLine, StandInsComeBeforeTheCut) {
  const std::string serial = "K12";
  for (const std::size_t before : {4093U, 4094U, 4095U, 4096U}) {
    const std::string line = ExchangeLine(kPlace, Answer(std::string(before, '.') + "K12..."), kOpen, &serial);
    EXPECT_EQ(line.find("4b"), std::string::npos) << before;
    std::string last;
    for (std::size_t i = 4093; i < 4096; ++i) last += i < before ? "2e" : "2a";
    EXPECT_NE(line.find(last + "\",\"bytes\":"), std::string::npos) << before;
  }
  const std::string line = ExchangeLine(kPlace, Answer("1234567K12"), {Shown::kHead, Personal::kNothing}, &serial);
  EXPECT_NE(line.find(R"("hex":"313233343536372a","bytes":10)"), std::string::npos) << line;
}

TEST(UnfinishedLine, NamesTheCommand) {
  EXPECT_EQ(UnfinishedLine(kPlace, Answer(""), kOpen),
            R"({"event":"unfinished","process":77,"camera":1,"number":5,"at_us":1234,"command":"ready",)"
            R"("block":"c6000400000000000000000000000000","direction":2,"asked":4})"
            "\n");
}

}  // namespace
}  // namespace apps
