// Keeps a thread on one processor, and others off it.
#include "platform/Processors.h"

#include <algorithm>

namespace platform {
namespace {

// What the thread could use before it had one of its own; empty without one.
thread_local std::vector<int> beforeOwn;

}  // namespace

OwnProcessor::OwnProcessor(std::size_t threads) : before_(Processors()) {
  const int own = CurrentProcessor();
  const bool few = before_.size() > 1 && before_.size() < threads;
  if (!few || std::find(before_.begin(), before_.end(), own) == before_.end() || !UseOnly({own})) return;
  others_ = before_;
  std::erase(others_, own);
  beforeOwn = before_;
}

OwnProcessor::~OwnProcessor() {
  if (others_.empty()) return;
  beforeOwn.clear();
  UseOnly(before_);
}

void OwnProcessor::KeepOff() const {
  if (!others_.empty()) UseOnly(others_);
}

NoOwnProcessor::NoOwnProcessor() {
  if (beforeOwn.empty()) return;
  own_ = Processors();
  UseOnly(beforeOwn);
}

NoOwnProcessor::~NoOwnProcessor() {
  if (!own_.empty()) UseOnly(own_);
}

}  // namespace platform
