#include "tools/zel/program.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <new>

#include "tools/zel/console.hpp"
#include "tools/zel/help.hpp"
#include "zel_cc/base.h"

namespace zel::tool {
namespace {

/// Tells the parser of one option or positional argument.
void declare(CLI::App &app, const Option &option) {
  std::string names = option.type;
  if (const auto spellings = option.spellings(); !spellings.empty()) {
    names = CLI::detail::join(spellings, ",");
  }
  const auto add = [&](auto *target) {
    using Value = std::remove_pointer_t<decltype(target)>;
    if constexpr (std::is_same_v<Value, bool>) {
      app.add_flag(names, *target);
    } else {
      CLI::Option *added = app.add_option(names, *target);
      // An option that may be repeated takes one value at a time.
      if (option.is_many() && !option.long_name.empty()) added->allow_extra_args(false);
    }
  };
  std::visit(add, option.target);
}

/// The arguments of `zel help X` as those of `zel X --help`, last first as the parser wants them.
std::vector<std::string> arguments_of(int argc, char **argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (!arguments.empty() && arguments.front() == "help") {
    arguments.erase(arguments.begin());
    arguments.insert(arguments.begin() + (arguments.empty() ? 0 : 1), "--help");
  }
  return {arguments.rbegin(), arguments.rend()};
}

ProgressMode progress_mode(const SharedFlags &flags) {
  const std::string value = flags.progress.value_or("auto");
  if (value == "auto") return ProgressMode::kAuto;
  if (value == "always") return ProgressMode::kAlways;
  if (value == "never") return ProgressMode::kNever;
  if (value == "json") return ProgressMode::kJson;
  throw Failure(Exit::kUsage, "--progress=" + value, "no such kind of progress",
                "choose auto, always, never or json");
}

int run_command(const Command &command, const SharedFlags &flags) {
  Session session(command.name, flags);
  try {
    session.set_progress_mode(progress_mode(flags));
    if (command.service == Service::kApproved) session.choose_service();
    command.run(session);
    session.close();
  } catch (const Failure &failure) {
    session.abandon_output();
    session.complain(failure);
    try {
      session.close();
    } catch (const Failure &second) {
      session.complain(second);
    }
  }
  return static_cast<int>(session.exit());
}

/// What the parser did not understand, with the argument first as in all errors.
std::string problem_of(const CLI::ParseError &error) {
  const std::string text = error.what();
  const std::size_t colon = text.find(": ");
  const bool extra = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
  if (!extra || colon == std::string::npos) return text;
  return text.substr(colon + 2) + ": not expected here";
}

/// What stands where the command should.
std::string first_word(int argc, char **argv) {
  const auto is_word = [](const char *argument) { return argument[0] != '-'; };
  char **found = std::find_if(argv + 1, argv + argc, is_word);
  return found == argv + argc ? argv[1] : *found;
}

int usage_error(const std::string &name, const std::string &problem) {
  console::line(name + ": " + shown(problem) + "; see '" + name + " --help'");
  return static_cast<int>(Exit::kUsage);
}

int parse_and_run(const Commands &commands, int argc, char **argv) {
  SharedFlags flags;
  bool version = false;
  CLI::App app;
  // At most one, so that the name of a command may stand as an argument of another.
  app.require_subcommand(0, 1);
  app.set_help_flag();
  app.add_flag("--version", version);
  const auto shared = shared_options(flags);
  for (const Option &option : shared)  // they may stand before the command too
    declare(app, option);
  for (const Command &command : commands) {
    CLI::App *parser = app.add_subcommand(command.name);
    parser->set_help_flag();
    for (const auto *options : {&command.positionals, &command.options, &shared}) {
      for (const Option &option : *options)
        declare(*parser, option);
    }
  }
  try {
    app.parse(arguments_of(argc, argv));
  } catch (const CLI::ParseError &error) {
    const auto chosen = app.get_subcommands();
    if (!chosen.empty()) return usage_error("zel " + chosen.front()->get_name(), problem_of(error));
    return usage_error("zel", first_word(argc, argv) + ": no such command");
  }
  for (const Command &command : commands) {
    if (!app.got_subcommand(command.name)) continue;
    if (!flags.help) return run_command(command, flags);
    std::cout << command_help(command);
    return static_cast<int>(Exit::kDone);
  }
  if (version) std::cout << "zel " ZEL_CC_VERSION "\n";
  if (flags.help) std::cout << program_help(commands);
  if (version || flags.help) return static_cast<int>(Exit::kDone);
  std::cerr << program_help(commands);
  return static_cast<int>(Exit::kUsage);
}

}  // namespace

int run_program(const Commands &commands, int argc, char **argv) {
  install_signal_handlers();
  try {
    return parse_and_run(commands, argc, argv);
  } catch (const std::bad_alloc &) {
    console::line("zel: out of memory; close other programs, or give it a smaller input");
  } catch (const std::exception &error) {
    console::line(std::string("zel: internal error: ") + error.what());
  }
  return static_cast<int>(Exit::kInternal);
}

}  // namespace zel::tool
