// Keeps the window's last wishes beyond the end of a process.
#include "apps/desktop/worker/Wishes.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "apps/commandline/Words.h"

namespace apps {

Wishes& Wishes::OfThisProgram() {
  static Wishes wishes;
  return wishes;
}

void Wishes::Keep(const Command& command) {
  if (!file_) return;
  std::vector<Command> commands = Kept();
  std::erase_if(commands, [&](const Command& kept) { return kept.front() == command.front(); });
  commands.push_back(command);
  std::string text;
  for (const Command& kept : commands) {
    for (const std::string& word : kept) text += (&word == &kept.front() ? "" : "\t") + EncodedWord(word);
    text += '\n';
  }
  // The processes have the file's position in common, so none uses it.
  const int file = ::fileno(file_.get());
  if (::ftruncate(file, 0) != 0 || ::pwrite(file, text.data(), text.size(), 0) < 0) file_.reset();
}

std::vector<Command> Wishes::Kept() const {
  Input input;
  struct stat status {};
  if (!file_ || ::fstat(::fileno(file_.get()), &status) != 0) return {};
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t count = ::pread(::fileno(file_.get()), text.data(), text.size(), 0);
  input.Add(std::string_view(text).substr(0, static_cast<std::size_t>(std::max<ssize_t>(count, 0))));
  std::vector<Command> commands;
  while (auto command = input.Next({}, Stop())) commands.push_back(*std::move(command));
  return commands;
}

}  // namespace apps
