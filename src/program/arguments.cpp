#include "program/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "program/exit_codes.h"
#include "program/printable.h"

namespace keplo {

namespace {

constexpr std::string_view kHelpCommand = "help";
constexpr char kMoreHelp[] = "\nRun with --help for more information.\n";

const CLI::Validator& NotEmpty() {
  static const CLI::Validator check(
      [](std::string& value) { return value.empty() ? std::string("The value is empty") : std::string(); },
      "");
  return check;
}

CLI::Validator OneOf(const std::vector<std::string>& choices, Command::Case letterCase) {
  if (letterCase == Command::Case::Ignored) return CLI::IsMember(choices, CLI::ignore_case);
  return CLI::IsMember(choices);
}

/// A decimal number, which may begin with zeros and a plus sign; none if there is anything else in the text.
template <typename Value>
std::optional<Value> Decimal(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  Value value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

template <typename Value>
std::string Shown(Value value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

template <typename Value>
std::string RangeText(const std::string& kind, Between<Value> range) {
  return kind + ":" + kind + " in [" + Shown(range.Least) + " - " + Shown(range.Most) + "]";
}

template <typename Value>
Value NumberIn(Between<Value> range, const std::string& name, const std::string& word) {
  const auto number = Decimal<Value>(word);
  if (number && *number >= range.Least && *number <= range.Most) return *number;
  throw CLI::ValidationError(name, "Value " + word + " not in range " + std::to_string(range.Least) + " to " +
                                       std::to_string(range.Most));
}

/// The message for an error, without control characters from the words.
std::string UsageErrorText(const CLI::App* /*app*/, const CLI::Error& error) {
  return Printable(error.what()) + kMoreHelp;
}

const CLI::App* FindCommand(const CLI::App& app, const std::string& word) {
  const auto commands =
      app.get_subcommands([&](const CLI::App* command) { return command->get_name() == word; });
  return commands.empty() ? nullptr : commands.front();
}

}  // namespace

struct CommandLineState {
  CommandLineState(const std::string& about, const std::string& program) : App(about, program) {}

  CLI::App App;
  std::map<const CLI::App*, std::function<int()>> Works;
  std::set<std::string> Valued;  // names of options whose value is the next word
  std::vector<std::string> HelpOn;
  /// An option shared by a command and its subcommands, with the variables of all of them.
  struct SharedOption {
    CLI::Option* Option = nullptr;
    std::vector<std::string*> Variables;
  };
  std::map<std::pair<const CLI::App*, std::string>, SharedOption> Shared;

  std::vector<std::string> Words(int argc, char** argv) const;
  std::string UnknownCommand(const std::vector<std::string>& words) const;
  void AskForHelp(std::vector<std::string>& words) const;
};

Argument& Argument::Required() {
  option_->required();
  return *this;
}

Argument& Argument::ShowDefault() {
  option_->capture_default_str();
  return *this;
}

Argument& Argument::Excludes(const Argument& other) {
  option_->excludes(other.option_);
  return *this;
}

Argument& Argument::Needs(const Argument& other) {
  option_->needs(other.option_);
  return *this;
}

Argument& Argument::MustBeFile() {
  option_->check(CLI::ExistingFile);
  return *this;
}

Argument& Argument::MustBeFolder() {
  option_->check(CLI::ExistingDirectory);
  return *this;
}

Argument Command::Add(const std::string& name, const std::string& kind, const Take& take, const Show& show,
                      const std::string& about) {
  CLI::Option* option = app_->add_option(
      name,
      [take](const CLI::results_t& words) {
        take(words);
        return true;
      },
      about, false, show);
  option->type_name(kind);
  if (name.front() == '-') state_->Valued.insert(name);
  return Argument(*option);
}

Argument Command::Text(const std::string& name, std::string& value, const std::string& about) {
  return Add(
      name, "TEXT", [&value](const auto& words) { value = words.front(); }, [&value] { return value; },
      about);
}

Argument Command::Text(const std::string& name, std::optional<std::string>& value, const std::string& about) {
  return Add(
      name, "TEXT", [&value](const auto& words) { value = words.front(); }, {}, about);
}

Argument Command::Word(const std::string& name, std::string& value, const std::string& about) {
  const Argument word = Text(name, value, about);
  word.option_->check(NotEmpty());
  return word;
}

Argument Command::Words(const std::string& name, std::vector<std::string>& values, const std::string& about) {
  const Argument words = Add(
      name, "TEXT", [&values](const auto& given) { values = given; }, {}, about);
  words.option_->expected(CLI::detail::expected_max_vector_size)->check(NotEmpty());
  return words;
}

Argument Command::WordAlsoBefore(const std::string& name, std::string& value, const std::string& about) {
  const auto addTo = [&](CLI::App& app) {
    auto& [option, variables] = state_->Shared[{&app, name}];
    variables.push_back(&value);
    if (option != nullptr) return;
    const auto write = [&variables = variables](const auto& words) {
      for (std::string* variable : variables) *variable = words.front();
    };
    option = Command(app, *state_).Add(name, "TEXT", write, {}, about).option_;
    option->check(NotEmpty());
  };
  for (CLI::App* app = app_; app != nullptr; app = app->get_parent()) addTo(*app);
  return Argument(*state_->Shared[{app_, name}].Option);
}

Argument Command::Choice(const std::string& name, std::string& value, const std::vector<std::string>& choices,
                         const std::string& about, Case letterCase) {
  const Argument choice = Text(name, value, about);
  choice.option_->check(OneOf(choices, letterCase));
  return choice;
}

Argument Command::Choice(const std::string& name, std::optional<std::string>& value,
                         const std::vector<std::string>& choices, const std::string& about, Case letterCase) {
  const Argument choice = Text(name, value, about);
  choice.option_->check(OneOf(choices, letterCase));
  return choice;
}

Argument Command::Flag(const std::string& name, bool& value, const std::string& about, bool whenGiven) {
  return Argument(*(whenGiven ? app_->add_flag(name, value, about)
                              : app_->add_flag_callback(
                                    name, [&value] { value = false; }, about)));
}

Argument Command::AddWhole(const std::string& name, Sign sign, Between<std::int64_t> range, bool showRange,
                           const std::function<void(std::int64_t)>& take, const Show& show,
                           const std::string& about) {
  const std::string kind = sign == Sign::Never ? "UINT" : "INT";
  const auto takeWord = [=](const std::vector<std::string>& words) {
    if (showRange) return take(NumberIn(range, name, words.front()));
    const auto number = Decimal<std::int64_t>(words.front());
    if (!number || *number < range.Least || *number > range.Most) throw CLI::ConversionError(name, words);
    take(*number);
  };
  const Argument number = Add(name, showRange ? RangeText(kind, range) : kind, takeWord, show, about);
  number.option_->check(NotEmpty());
  return number;
}

Argument Command::AddReal(const std::string& name, Between<double> range,
                          const std::function<void(double)>& take, const Show& show,
                          const std::string& about) {
  const auto takeWord = [=](const auto& words) { take(NumberIn(range, name, words.front())); };
  const Argument number = Add(name, RangeText("FLOAT", range), takeWord, show, about);
  number.option_->check(NotEmpty());
  return number;
}

std::string Command::ShownNumber(double value) { return Shown(value); }

Argument Command::Numbers(const std::string& name, std::vector<std::int32_t>& values,
                          const std::string& about, Between<std::int32_t> range) {
  const auto takeWords = [=, &values](const auto& words) {
    for (const std::string& word : words) values.push_back(NumberIn(range, name, word));
  };
  const Argument numbers = Add(name, RangeText("INT", range), takeWords, {}, about);
  numbers.option_->expected(CLI::detail::expected_max_vector_size)->delimiter(',')->check(NotEmpty());
  return numbers;
}

Command Command::Sub(const std::string& name, const std::string& about) {
  app_->require_subcommand(1);
  return {*app_->add_subcommand(name, about), *state_};
}

Command Command::OptionalSub(const std::string& name, const std::string& about) {
  app_->require_subcommand(0, 1);
  return {*app_->add_subcommand(name, about), *state_};
}

Command Command::AtLeastOneOf(const std::string& title) {
  CLI::App* group = app_->add_option_group(title);
  group->require_option(1, 0);
  return {*group, *state_};
}

Command& Command::Examples(const std::vector<std::string>& lines) {
  std::string text = "Examples:";
  for (const std::string& line : lines) text += "\n  " + line;
  app_->footer(text);
  return *this;
}

Command& Command::Runs(std::function<int()> work) {
  state_->Works[app_] = std::move(work);
  return *this;
}

CommandLine::CommandLine(const std::string& program, const std::string& version, const std::string& about)
    : state_(std::make_unique<CommandLineState>(about, program)) {
  state_->App.set_version_flag("--version", program + " " + version);
  state_->App.failure_message(UsageErrorText);
}

CommandLine::~CommandLine() = default;

Command CommandLine::Root() { return {state_->App, *state_}; }

void CommandLine::AddHelpCommand() {
  Root()
      .Sub(std::string(kHelpCommand), "Tell about a command, as its --help does")
      .Words("COMMAND", state_->HelpOn, "Command to tell about; without one all are listed");
}

/// The words of the command line. `--option=` becomes the option and an empty word.
std::vector<std::string> CommandLineState::Words(int argc, char** argv) const {
  std::vector<std::string> words;
  for (int i = 1; i < argc; ++i) {
    words.emplace_back(argv[i]);
    std::string& word = words.back();
    if (word == "--") {
      words.insert(words.end(), argv + i + 1, argv + argc);
      break;
    }
    if (Valued.count(word) > 0 && i + 1 < argc) {
      words.emplace_back(argv[++i]);
    } else if (word.size() > 1 && word.back() == '=' && Valued.count(word.substr(0, word.size() - 1)) > 0) {
      word.pop_back();
      words.emplace_back();
    }
  }
  return words;
}

/// The first word that should be a command, but is not; empty if there is none.
std::string CommandLineState::UnknownCommand(const std::vector<std::string>& words) const {
  const CLI::App* command = &App;
  for (std::size_t i = 0; i < words.size() && command->get_require_subcommand_min() > 0; ++i) {
    if (Valued.count(words[i]) > 0) {
      ++i;
    } else if (words[i].empty() || words[i].front() == '-') {
      return {};  // handled with the options
    } else {
      command = FindCommand(*command, words[i]);
      if (command == nullptr) return words[i];
    }
  }
  return {};
}

/// Turns `help WORD...` into `WORD... --help`.
void CommandLineState::AskForHelp(std::vector<std::string>& words) const {
  const bool asks = FindCommand(App, std::string(kHelpCommand)) != nullptr && !words.empty() &&
                    words.front() == kHelpCommand &&
                    std::none_of(words.begin(), words.end(),
                                 [](const std::string& word) { return word.empty() || word.front() == '-'; });
  if (!asks) return;
  words.erase(words.begin());
  words.emplace_back("--help");
}

std::optional<int> CommandLine::Parse(int argc, char** argv) {
  std::vector<std::string> words = state_->Words(argc, argv);
  state_->AskForHelp(words);
  if (const std::string word = state_->UnknownCommand(words); !word.empty()) {
    std::cerr << state_->App.get_name() << ": there is no command '" << Printable(word)
              << "'; --help lists those that are\n";
    return kUsageError;
  }
  std::reverse(words.begin(), words.end());  // the order that the parser expects
  try {
    state_->App.parse(std::move(words));
  } catch (const CLI::ParseError& error) {
    return state_->App.exit(error) == 0 ? kDone : kUsageError;
  }
  return std::nullopt;
}

int CommandLine::Run(int argc, char** argv) {
  if (const auto status = Parse(argc, argv)) return *status;
  const CLI::App* command = &state_->App;
  while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
  try {
    return state_->Works.at(command)();
  } catch (const UsageError& error) {
    std::cerr << Printable(error.what()) << kMoreHelp;
    return kUsageError;
  }
}

}  // namespace keplo
