// zel completion: what bash, zsh and fish need to complete a command line, made from the options
// themselves.
#include <algorithm>

#include "tools/zel/command.hpp"

namespace zel::tool {
namespace {

std::string joined(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words)
    text += (text.empty() ? "" : " ") + word;
  return text;
}

std::vector<Option> options_of(const Command &command) {
  std::vector<Option> options = command.options;
  options.insert(options.end(), shared_options().begin(), shared_options().end());
  return options;
}

/// The words that the first positional argument may be.
std::vector<std::string> first_words(const Command &command) {
  return command.positionals.empty() ? std::vector<std::string>{}
                                     : command.positionals.front().suggestions;
}

std::string bash_case(const Command &command) {
  std::string words;
  std::string arguments;
  for (const Option &option : options_of(command)) {
    std::string pattern;
    for (const std::string &name : option.spellings()) {
      words += name + " ";
      pattern += (pattern.empty() ? "" : "|") + name;
    }
    if (option.is_flag()) continue;
    arguments += "        " + pattern + ") ";
    if (!option.suggestions.empty()) {
      arguments += "choices='" + joined(option.suggestions) + "' ;;\n";
    } else {
      arguments += option.is_file() ? "files=1 ;;\n" : "return ;;\n";
    }
  }
  return "    " + command.name + ")\n      options='" + words + "'\n      positional='" +
         joined(first_words(command)) + "'\n      case $previous in\n" + arguments +
         "      esac ;;\n";
}

std::string bash_script(const Commands &commands) {
  std::string names;
  std::string cases;
  for (const Command &command : commands) {
    names += command.name + " ";
    cases += bash_case(command);
  }
  return "# bash completion for zel\n"
         "_zel() {\n"
         "  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local options='' choices='' positional='' files='' word\n"
         "  if [[ $current == = ]]; then current=''; fi\n"
         "  if [[ $previous == = ]]; then previous=${COMP_WORDS[COMP_CWORD-2]}; fi\n"
         "  if ((COMP_CWORD == 1)); then\n"
         "    mapfile -t COMPREPLY < <(compgen -W '" +
         names +
         "--help --version' -- \"$current\")\n"
         "    return\n"
         "  fi\n"
         "  case ${COMP_WORDS[1]} in\n" +
         cases +
         "    *) return ;;\n"
         "  esac\n"
         "  for word in \"${COMP_WORDS[@]:2:COMP_CWORD-2}\"; do\n"
         "    if [[ \" $positional \" == *\" $word \"* ]]; then positional=''; fi\n"
         "  done\n"
         "  if [[ $choices ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$choices\" -- \"$current\")\n"
         "  elif [[ ! $files && $current == -* ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$current\")\n"
         "  elif [[ ! $files && $positional ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$positional\" -- \"$current\")\n"
         "  else\n"
         "    compopt -o filenames\n"
         "    mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
         "  fi\n"
         "}\n"
         "complete -F _zel zel\n";
}

/// For text inside the brackets and colons of an _arguments line, in single quotes.
std::string zsh_text(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':') result += '\\';
    result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return result;
}

std::string zsh_option(const Option &option) {
  std::string lines;
  for (const std::string &name : option.spellings()) {
    const char *joint = option.is_flag() ? "" : name.starts_with("--") ? "=" : "+";
    lines += "        '" + name + joint + "[" + zsh_text(option.description) + "]";
    if (!option.suggestions.empty()) {
      lines += ":value:(" + joined(option.suggestions) + ")";
    } else if (!option.is_flag()) {
      lines += option.is_file() ? ":file:_files" : ":" + zsh_text(option.type) + ":";
    }
    lines += "' \\\n";
  }
  return lines;
}

std::string zsh_script(const Commands &commands) {
  std::string names;
  std::string cases;
  for (const Command &command : commands) {
    names += "    '" + command.name + ":" + zsh_text(command.summary) + "'\n";
    cases += "      " + command.name + ")\n      _arguments -s -S \\\n";
    for (const Option &option : options_of(command))
      cases += zsh_option(option);
    const auto choices = first_words(command);
    if (!choices.empty()) cases += "        '1:word:(" + joined(choices) + ")'";
    const bool files = choices.empty() || command.positionals.size() > 1;
    if (files) cases += std::string(choices.empty() ? "" : " \\\n") + "        '*:file:_files'";
    cases += " ;;\n";
  }
  return "#compdef zel\n"
         "_zel() {\n"
         "  local -a commands=(\n" +
         names +
         "  )\n"
         "  if ((CURRENT == 2)); then\n"
         "    _describe command commands\n"
         "    return\n"
         "  fi\n"
         "  local command=$words[2]\n"
         "  shift words\n"
         "  ((CURRENT--))\n"
         "  case $command in\n" +
         cases +
         "  esac\n"
         "}\n"
         "if [[ $funcstack[1] == _zel ]]; then _zel \"$@\"; else compdef _zel zel; fi\n";
}

std::string fish_text(std::string_view text) {
  std::string result = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') result += '\\';
    result += c;
  }
  return result + "'";
}

std::string fish_option(const std::string &when, const Option &option) {
  std::string line = when;
  if (!option.short_name.empty()) line += " -s " + option.short_name;
  line += " -l " + option.long_name;
  if (!option.suggestions.empty()) {
    line += " -x -a '" + joined(option.suggestions) + "'";
  } else if (!option.is_flag()) {
    line += option.is_file() ? " -r -F" : " -x";
  }
  return line + " -d " + fish_text(option.description) + "\n";
}

std::string fish_script(const Commands &commands) {
  std::string script = "# fish completion for zel\n";
  for (const Command &command : commands) {
    const std::string when =
        "complete -c zel -n '__fish_seen_subcommand_from " + command.name + "'";
    script += "complete -c zel -f -n __fish_use_subcommand -a " + command.name + " -d " +
              fish_text(command.summary) + "\n";
    for (const Option &option : options_of(command))
      script += fish_option(when, option);
    const auto words = first_words(command);
    const char *files = command.positionals.size() > 1 ? "" : " -f";
    if (!words.empty()) script += when + files + " -a '" + joined(words) + "'\n";
  }
  return script;
}

}  // namespace

Command completion_command(const Commands &commands) {
  const auto shell = std::make_shared<std::optional<std::string>>();
  Command command{"completion",
                  "Completion scripts for bash, zsh and fish",
                  "Prints the script that lets SHELL complete the commands and options of zel. An "
                  "installed zel "
                  "has them in the places where the three shells look.",
                  {{"complete in this bash", "source <(zel completion bash)"},
                   {"in zsh, after compinit", "source <(zel completion zsh)"},
                   {"in fish", "zel completion fish | source"}}};
  command.positionals = {
      {"", "", "SHELL", "bash, zsh or fish", shell.get(), {"bash", "zsh", "fish"}}};
  command.service = Service::kAsStarted;
  command.run = [shell, &commands](Session &session) {
    Commands visible;
    std::copy_if(commands.begin(), commands.end(), std::back_inserter(visible),
                 [](const Command &known) { return !known.hidden; });
    const std::string name = shell->value_or("");
    if (name == "bash") return session.print(bash_script(visible));
    if (name == "zsh") return session.print(zsh_script(visible));
    if (name == "fish") return session.print(fish_script(visible));
    throw Failure(Exit::kUsage, *shell ? name : "SHELL",
                  *shell ? "no completion for that shell" : "not given",
                  "there are bash, zsh and fish");
  };
  return command;
}

}  // namespace zel::tool
