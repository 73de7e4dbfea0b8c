// Changes replies into those of a camera that lies: about lengths, counts, offsets, names.
#include "vcam/faults/Falsify.h"

#include <algorithm>

#include "base/Bytes.h"
#include "src/wifi/VscRegister.h"
#include "vcam/device/Replies.h"
#include "vcam/device/SenseCodes.h"

namespace vcam {
namespace {

constexpr std::uint32_t kSizeLie = 7;
constexpr std::uint32_t kWrongCountValue = 0x7FFFFFFF;
constexpr std::uint32_t kWrongOffsetValue = 0x7FFFFFF0;
constexpr std::uint8_t kFiller = 0xEE;
constexpr std::uint8_t kNameFiller = 'A';
constexpr std::size_t kWord = sizeof(std::uint32_t);

bool IsQuery(const wire::Command& command, std::uint8_t query) {
  return Is(command, kelva::Operation::kQuery) && command.cdb[kelva::at::kSubCode] == query;
}

/// Where this answer starts in the selected data set.
std::uint64_t StartOf(const wire::Command& command) {
  return base::Load<std::uint32_t>(command.cdb, kelva::at::kReadOffset);
}

void Add(wire::Reply& reply, std::size_t count) {
  if (!reply.data.empty()) reply.data.insert(reply.data.end(), count, kFiller);
  reply.moved += static_cast<std::uint32_t>(count);
}

void TakeOne(wire::Reply& reply) {
  if (!reply.data.empty()) reply.data.pop_back();
  --reply.moved;
}

/// Overwrites the marked numbers that this answer holds wholly or in part; false when it holds none.
bool OverwriteMarks(const std::vector<std::uint64_t>& marks, std::uint64_t start, std::uint32_t value,
                    base::Bytes& data) {
  const auto first = std::lower_bound(marks.begin(), marks.end(), start < kWord ? 0 : start - kWord + 1);
  const auto last = std::lower_bound(first, marks.end(), start + data.size());
  for (auto mark = first; mark != last; ++mark) {
    for (std::uint64_t i = 0; i < kWord; ++i) {
      if (*mark + i >= start && *mark + i - start < data.size()) {
        data[static_cast<std::size_t>(*mark + i - start)] = static_cast<std::uint8_t>(value >> (8 * i));
      }
    }
  }
  return first != last;
}

bool OverwriteNames(const std::vector<Marks::Name>& names, std::uint64_t start, base::Bytes& data) {
  bool any = false;
  for (const Marks::Name& name : names) {
    const std::uint64_t from = std::max(name.offset, start);
    const std::uint64_t to = std::min(name.offset + name.length, start + data.size());
    for (std::uint64_t i = from; i < to; ++i) {
      std::uint8_t& byte = data[static_cast<std::size_t>(i - start)];
      if (byte == 0) byte = kNameFiller;
    }
    any = any || from < to;
  }
  return any;
}

bool ReadsSelection(const FalsifiedCommand& about) {
  return Is(about.command, kelva::Operation::kReadChunk) && about.marks != nullptr;
}

void WrongNumber(const FalsifiedCommand& about, const std::vector<std::uint64_t> Marks::*marks, std::uint32_t value,
                 wire::Reply& reply) {
  if (ReadsSelection(about) && OverwriteMarks(about.marks->*marks, StartOf(about.command), value, reply.data)) return;
  if (!about.isTheOne) return;
  if (reply.data.size() >= kWord) {
    base::Store(std::span(reply.data), 0, value);
  } else {
    reply.moved = value;
  }
}

void MissingNul(const FalsifiedCommand& about, wire::Reply& reply) {
  if (ReadsSelection(about) && OverwriteNames(about.marks->names, StartOf(about.command), reply.data)) return;
  if (!about.isTheOne) return;
  if (reply.data.empty()) --reply.moved;
  std::replace(reply.data.begin(), reply.data.end(), std::uint8_t{0}, kNameFiller);
}

void NeverEnding(const FalsifiedCommand& about, wire::Reply& reply) {
  const wire::Command& command = about.command;
  const bool isConsole = IsQuery(command, kelva::query::kConsoleLog);
  if (command.direction == wire::Direction::kFromCamera && (Is(command, kelva::Operation::kReadChunk) || isConsole)) {
    if (command.length > wire::kMaxTransferLength) return;
    reply.status = wire::kScsiGood;
    reply.data.resize(command.length, kFiller);
    reply.moved = command.length;
    if (isConsole && reply.data.size() >= 2 * kWord) base::Store(std::span(reply.data), kWord, std::uint32_t{1});
  } else if (about.isTheOne) {
    Add(reply, 1);
  }
}

void AnotherAnswer(const FalsifiedCommand& about, wire::Reply& reply) {
  if (!reply.data.empty()) {
    reply.data.front() = static_cast<std::uint8_t>(reply.data.front() + about.ordinal);
  } else if (about.ordinal % 2 == 1) {
    reply = Refuse(sense::kInternalFailure);
  }
}

void LieAboutSize(const FalsifiedCommand& about, wire::Reply& reply) {
  if (IsQuery(about.command, kelva::query::kSelectedSize) && reply.data.size() == kWord) {
    base::Store(std::span(reply.data), 0, base::Load<std::uint32_t>(reply.data, 0) + kSizeLie);
  } else if (about.isTheOne) {
    reply.moved += kSizeLie;
  }
}

}  // namespace

void Falsify(FaultKind kind, const FalsifiedCommand& about, wire::Reply& reply) {
  if (reply.transport != wire::Transport::kOk) return;
  // An endless answer goes on where a real one would be refused.
  if (!reply.Good() && kind != FaultKind::kEndless) return;
  switch (kind) {
    case FaultKind::kShort:
      return TakeOne(reply);
    case FaultKind::kSurplusOne:
      return Add(reply, 1);
    case FaultKind::kSurplusTwo:
      return Add(reply, 2);
    case FaultKind::kLieAboutSize:
      return LieAboutSize(about, reply);
    case FaultKind::kWrongCount:
      return WrongNumber(about, &Marks::counts, kWrongCountValue, reply);
    case FaultKind::kWrongOffset:
      return WrongNumber(about, &Marks::offsets, kWrongOffsetValue, reply);
    case FaultKind::kUnterminatedName:
      return MissingNul(about, reply);
    case FaultKind::kEndless:
      return NeverEnding(about, reply);
    case FaultKind::kChanging:
      return AnotherAnswer(about, reply);
    default:
      return;
  }
}

}  // namespace vcam
