// zel manual: the manual pages, made from the same texts and options as the help. man-pages(7).
#include "tools/zel/help.hpp"
#include "zel_cc/base.h"

namespace zel::tool {
namespace {

/// Text for roff: hyphens stay hyphens, and no line begins with a control character.
std::string roff(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\\') {
      result += "\\e";
    } else if (c == '-') {
      result += "\\-";
    } else if (c == '\'') {
      result += "\\(aq";
    } else if (c == '.' && (result.empty() || result.back() == '\n')) {
      result += "\\&.";
    } else {
      result += c;
    }
  }
  return result;
}

std::string paragraphs(const std::string &text) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    result += ".PP\n" + roff(text.substr(at, end - at)) + "\n";
    at = end + 1;
  }
  return result;
}

std::string option_entry(const Option &option) {
  std::string names;
  for (const std::string &name : option.spellings())
    names += (names.empty() ? "" : ", ") + ("\\fB" + roff(name) + "\\fR");
  if (!option.type.empty()) names += " \\fI" + roff(option.type) + "\\fR";
  return ".TP\n" + names + "\n" + roff(option.description) + ".\n";
}

std::string heading(const std::string &page) {
  return ".TH " + page + " 1 \"\" \"zel " ZEL_CC_VERSION "\" \"User Commands\"\n";
}

constexpr const char *kExitCodes =
    ".SH EXIT STATUS\n"
    ".TP\n0\nDone.\n.TP\n1\nVerification failed.\n.TP\n2\nUsage.\n.TP\n3\nFile error.\n"
    ".TP\n4\nRefused by the module's state.\n.TP\n5\nSelf-test or integrity failure.\n"
    ".TP\n6\nMalformed input.\n.TP\n7\nEntropy.\n.TP\n70\nInternal error.\n";

std::string command_page(const Command &command) {
  const std::string name = roff(command.name);
  std::string page = heading("ZEL\\-" + name);
  page += ".SH NAME\nzel\\-" + name + " \\- " + roff(command.summary) + "\n";
  page += ".SH SYNOPSIS\n\\fBzel " + name + "\\fR [\\fIOPTION\\fR]...\\fI" +
          roff(usage_arguments(command)) + "\\fR\n";
  page += ".SH DESCRIPTION\n" + paragraphs(command.description) + ".SH OPTIONS\n";
  for (const Option &option : command.options)
    page += option_entry(option);
  page += ".SS Of every command\n";
  for (const Option &option : shared_options())
    page += option_entry(option);
  page += ".SH EXAMPLES\n";
  for (const Example &example : command.examples) {
    page += ".PP\n" + roff(example.purpose) + ":\n.PP\n.RS 4\n.nf\n" + roff(example.line) +
            "\n.fi\n.RE\n";
  }
  return page + kExitCodes + ".SH SEE ALSO\n.BR zel (1)\n";
}

std::string program_page(const Commands &commands) {
  std::string page = heading("ZEL");
  page += ".SH NAME\nzel \\- hash, authenticate and more with libzel_cc\n";
  page += ".SH SYNOPSIS\n\\fBzel\\fR \\fICOMMAND\\fR [\\fIOPTION\\fR]... [\\fIARGUMENT\\fR]...\n";
  page += ".SH DESCRIPTION\n" +
          paragraphs(
              "The program starts in the approved service of the module; an algorithm that "
              "is not approved wants --legacy.\n"
              "Data goes to standard output, all else to standard error; - is standard input "
              "or output. A file is written under a temporary name in the same folder and "
              "renamed when it is complete; without -f no existing file is overwritten.");
  page += ".SH COMMANDS\n";
  std::string see_also;
  for (const Command &command : commands) {
    if (command.hidden) continue;
    page += ".TP\n\\fBzel\\-" + roff(command.name) + "\\fR(1)\n" + roff(command.summary) + ".\n";
    see_also += (see_also.empty() ? "" : " ,\n") + (".BR zel\\-" + roff(command.name) + " (1)");
  }
  return page + kExitCodes + ".SH SEE ALSO\n" + see_also + "\n";
}

}  // namespace

Command manual_command(const Commands &commands) {
  const auto name = std::make_shared<std::optional<std::string>>();
  Command command{"manual",
                  "Manual pages in roff",
                  "Prints the manual page of COMMAND, or of the program, for man -l.",
                  {{"read the page of 'zel hash'", "zel manual hash | man -l -"}}};
  command.positionals = {
      {"", "", "COMMAND", "The command; none is the program itself", name.get()}};
  command.hidden = true;
  command.service = Service::kAsStarted;
  command.run = [name, &commands](Session &session) {
    if (!*name) return session.print(program_page(commands));
    for (const Command &known : commands) {
      if (known.name == **name) return session.print(command_page(known));
    }
    throw Failure(Exit::kUsage, **name, "no such command", "see 'zel --help'");
  };
  return command;
}

}  // namespace zel::tool
