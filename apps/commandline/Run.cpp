// What every program does around its verbs: messages in the style asked for, --help and --version, failures.
#include "apps/commandline/Run.h"

#include <unistd.h>

#include <utility>

#include "apps/commandline/Completion.h"
#include "apps/commandline/Context.h"
#include "apps/commandline/Help.h"
#include "apps/commandline/Printable.h"

namespace apps {
namespace {

bool Mentions(std::span<const char* const> arguments, std::string_view option) {
  for (const std::string_view argument : arguments) {
    if (argument == option) return true;
  }
  return false;
}

ExitCode RunVerb(const Invocation& call, Output& out, Reporter& reporter, StdoutDiversion& diversion) {
  if (const auto text = Answer(call)) return GiveText(out, reporter.Style(), call, *text);
  const Stop never;
  Context context(call, out, reporter, never, diversion);
  return call.verb->run(context);
}

}  // namespace

ReportStyle StyleFor(int fd, std::span<const char* const> arguments) {
  ReportStyle style =
      StyleFor(fd, Mentions(arguments, "--json"), Mentions(arguments, "--quiet") || Mentions(arguments, "-q"));
  style.verbose = Mentions(arguments, "--verbose") || Mentions(arguments, "-v");
  return style;
}

std::optional<std::string> Answer(const Invocation& call) {
  if (call.version) return std::string(call.program->name) + " " + std::string(call.program->version) + "\n";
  if (!call.Has("help")) return std::nullopt;
  return call.verb == nullptr ? Overview(*call.program) : HelpFor(*call.program, *call.verb);
}

ExitCode GiveText(Output& out, const ReportStyle& style, const Invocation& call, const std::string& text) {
  out.Add(style.json ? ResultLine(call.Name(), ExitCode::kDone, Json::Object().Set("text", text)) : text);
  out.Flush();
  return ExitCode::kDone;
}

Json ErrorMembers(const Outcome& outcome) {
  return Json::Object().Set("reason", WordOf(outcome.code)).Set("error", outcome.sentence);
}

ExitCode GiveError(Reporter& reporter, Output& out, const Invocation& call, const Outcome& outcome, Json more) {
  reporter.Error(outcome.sentence, outcome.code);
  if (reporter.Style().json && out.TakeEnd()) {
    try {
      out.Add(ResultLine(call.Name(), outcome.code, ErrorMembers(outcome).Merge(std::move(more))));
      out.Flush();
    } catch (const Failure&) {
      // Standard output has failed, and standard error has reported it.
    } catch (const ReaderGone&) {
      // Nobody reads the document.
    }
  }
  return outcome.code;
}

bool AnswerShell(const Program& program, std::span<const char* const> arguments) {
  if (arguments.size() < 2 || std::string_view(arguments[0]) != "__complete") return false;
  const StdoutDiversion diversion;
  try {
    Output out(diversion.Real());
    out.Add(Offers(program, arguments[1], arguments.subspan(2)));
    out.Flush();
  } catch (const ReaderGone&) {
    // The line was typed on.
  } catch (const std::exception&) {
    // Nobody reads a message while a line is being typed; there is nothing to offer.
  }
  return true;
}

int RunProgram(const Program& program, std::span<const char* const> arguments) {
  FillStandardDescriptors();
  if (AnswerShell(program, arguments)) return 0;
  StdoutDiversion diversion;
  Reporter reporter(program.name, STDERR_FILENO, StyleFor(STDERR_FILENO, arguments));
  Output out(diversion.Real());
  Invocation call;
  try {
    call = Parse(program, arguments);
    return static_cast<int>(RunVerb(call, out, reporter, diversion));
  } catch (const ReaderGone&) {
    return static_cast<int>(ExitCode::kReaderGone);
  } catch (const Failure& failure) {
    return static_cast<int>(GiveError(reporter, out, call, {failure.Code(), failure.what()}));
  } catch (const std::exception& error) {
    return static_cast<int>(GiveError(reporter, out, call, {ExitCode::kFailed, Printable(error.what())}));
  }
}

}  // namespace apps
