#include "tools/zel/help.hpp"

namespace zel::tool {
namespace {

constexpr std::size_t kWidth = 96;
constexpr std::size_t kColumn = 28;

/// Text in lines of at most kWidth columns, the later ones indented; line ends in it stay.
std::string wrapped(const std::string &text, std::size_t indent) {
  std::string result;
  std::size_t column = indent;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = std::min(text.find_first_of(" \n", at), text.size());
    if (column != indent && column + 1 + (end - at) > kWidth) {
      result += "\n" + std::string(indent, ' ');
      column = indent;
    }
    if (column != indent) {
      result += ' ';
      ++column;
    }
    result += text.substr(at, end - at);
    column += end - at;
    if (end < text.size() && text[end] == '\n') {
      result += "\n" + std::string(indent, ' ');
      column = indent;
    }
    at = end + 1;
  }
  return result + "\n";
}

std::string row(const std::string &name, const std::string &description) {
  std::string line = "  " + name;
  if (line.size() + 2 > kColumn) {
    line += "\n" + std::string(kColumn, ' ');
  } else {
    line.resize(kColumn, ' ');
  }
  return line + wrapped(description, kColumn);
}

std::string option_row(const Option &option) {
  // Long names stand in one column, whether or not there is a short one.
  std::string name = option.short_name.empty() ? "    " : "-" + option.short_name + ", ";
  name += "--" + option.long_name + (option.type.empty() ? "" : " " + option.type);
  return row(name, option.description);
}

}  // namespace

std::string usage_arguments(const Command &command) {
  std::string text;
  for (const Option &argument : command.positionals)
    text += " [" + argument.type + "]" + (argument.is_many() ? "..." : "");
  return text;
}

std::string command_help(const Command &command) {
  std::string help =
      "Usage: zel " + command.name + " [OPTION]..." + usage_arguments(command) + "\n";
  help += command.summary + ".\n\n" + wrapped(command.description, 0);
  if (!command.positionals.empty()) help += "\nArguments:\n";
  for (const Option &argument : command.positionals)
    help += row(argument.type, argument.description);
  if (!command.options.empty()) help += "\nOptions:\n";
  for (const Option &option : command.options)
    help += option_row(option);
  help += "\nOptions of every command:\n";
  for (const Option &option : shared_options())
    help += option_row(option);
  help += "\nExamples:\n";
  for (const Example &example : command.examples)
    help += "  # " + example.purpose + "\n  " + example.line + "\n";
  return help +
         "\nExit codes: 0 done, 1 verification failed, 2 usage, 3 file error, 4 refused by the "
         "module's\nstate, 5 self-test or integrity failure, 6 malformed input, 7 entropy, 70 "
         "internal.\n";
}

std::string program_help(const Commands &commands) {
  std::string help =
      "Usage: zel COMMAND [OPTION]... [ARGUMENT]...\n"
      "What libzel_cc-3.2 can do, for people and scripts.\n\nCommands:\n";
  for (const Command &command : commands) {
    if (!command.hidden) help += row(command.name, command.summary);
  }
  return help +
         "\n'zel COMMAND --help' tells all about one, 'zel --version' the version.\n"
         "Try: zel hash /bin/sh\n";
}

}  // namespace zel::tool
