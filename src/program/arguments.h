#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace keplo {

/// Thrown by a command whose arguments make no sense: the program prints the text and a hint at --help, and
/// ends with the exit status for wrong use.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A range of numbers, inclusive.
template <typename Value>
struct Between {
  Value Least, Most;
};

template <typename Value>
constexpr Between<Value> AllOf() {
  return {std::numeric_limits<Value>::lowest(), std::numeric_limits<Value>::max()};
}

/// A word or an option of a command, for setting further properties.
class Argument {
 public:
  explicit Argument(CLI::Option& option) : option_(&option) {}

  Argument& Required();
  /// Shows the current value of the variable in the help.
  Argument& ShowDefault();
  Argument& Excludes(const Argument& other);
  Argument& Needs(const Argument& other);
  Argument& MustBeFile();
  Argument& MustBeFolder();

 private:
  friend class Command;

  CLI::Option* option_;
};

struct CommandLineState;

/// A command with its words and options. A name with leading dashes is an option, any other name a positional
/// word. Variables are written when the command line is parsed, and must live until then.
///
/// The value of an option is the next word, or the text after its =, which may be empty. Only Text accepts an
/// empty value.
class Command {
 public:
  Command(CLI::App& app, CommandLineState& state) : app_(&app), state_(&state) {}

  /// A text that may be empty.
  Argument Text(const std::string& name, std::string& value, const std::string& about);
  Argument Text(const std::string& name, std::optional<std::string>& value, const std::string& about);
  /// A text that may not be empty.
  Argument Word(const std::string& name, std::string& value, const std::string& about);
  /// Any number of non-empty texts.
  Argument Words(const std::string& name, std::vector<std::string>& values, const std::string& about);
  /// An option that may also be given before the name of the command, or of its parent.
  Argument WordAlsoBefore(const std::string& name, std::string& value, const std::string& about);
  /// One of some words.
  enum class Case { Sensitive, Ignored };
  Argument Choice(const std::string& name, std::string& value, const std::vector<std::string>& choices,
                  const std::string& about, Case letterCase = Case::Sensitive);
  Argument Choice(const std::string& name, std::optional<std::string>& value,
                  const std::vector<std::string>& choices, const std::string& about,
                  Case letterCase = Case::Sensitive);
  /// @param whenGiven the value that the flag writes
  Argument Flag(const std::string& name, bool& value, const std::string& about, bool whenGiven = true);

  /// A decimal number; the help shows the range if it is narrower than that of the type.
  template <typename Value>
  requires std::is_arithmetic_v<Value> Argument Number(const std::string& name, Value& value,
                                                       const std::string& about,
                                                       Between<Value> range = AllOf<Value>()) {
    return AddNumber<Value>(
        name, range, [&value](Value number) { value = number; }, [&value] { return ShownNumber(value); },
        about);
  }
  template <typename Value>
  Argument Number(const std::string& name, std::optional<Value>& value, const std::string& about,
                  Between<Value> range = AllOf<Value>()) {
    return AddNumber<Value>(
        name, range, [&value](Value number) { value = number; }, {}, about);
  }
  /// Any number of decimal numbers, separated by commas.
  Argument Numbers(const std::string& name, std::vector<std::int32_t>& values, const std::string& about,
                   Between<std::int32_t> range);

  /// A subcommand; if there are any, one must be given.
  Command Sub(const std::string& name, const std::string& about);
  /// A subcommand that need not be given. A word of that name is always the subcommand.
  Command OptionalSub(const std::string& name, const std::string& about);
  /// A group of options of which at least one must be given.
  Command AtLeastOneOf(const std::string& title);
  /// Lines at the end of the help.
  Command& Examples(const std::vector<std::string>& lines);
  /// Sets what the command does.
  /// @param work returns the exit status
  Command& Runs(std::function<int()> work);

 private:
  using Take = std::function<void(const std::vector<std::string>&)>;
  using Show = std::function<std::string()>;
  enum class Sign { Never, Possible };

  template <typename Value>
  Argument AddNumber(const std::string& name, Between<Value> range, const std::function<void(Value)>& take,
                     const Show& show, const std::string& about) {
    if constexpr (std::is_floating_point_v<Value>) {
      return AddReal(name, range, take, show, about);
    } else {
      static_assert(sizeof(Value) < sizeof(std::int64_t) || std::is_signed_v<Value>);
      const bool narrow = range.Least != AllOf<Value>().Least || range.Most != AllOf<Value>().Most;
      return AddWhole(
          name, std::is_signed_v<Value> ? Sign::Possible : Sign::Never, {range.Least, range.Most}, narrow,
          [take](std::int64_t number) { take(static_cast<Value>(number)); }, show, about);
    }
  }
  static std::string ShownNumber(double value);

  Argument Add(const std::string& name, const std::string& kind, const Take& take, const Show& show,
               const std::string& about);
  Argument AddWhole(const std::string& name, Sign sign, Between<std::int64_t> range, bool showRange,
                    const std::function<void(std::int64_t)>& take, const Show& show,
                    const std::string& about);
  Argument AddReal(const std::string& name, Between<double> range, const std::function<void(double)>& take,
                   const Show& show, const std::string& about);

  CLI::App* app_;
  CommandLineState* state_;
};

/// The command line of a program.
class CommandLine {
 public:
  CommandLine(const std::string& program, const std::string& version, const std::string& about);
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  Command Root();
  /// Makes `PROGRAM help WORD...` the same as `PROGRAM WORD... --help`.
  void AddHelpCommand();

  /// Writes the variables. Prints the output of --help and --version to standard output, and errors to
  /// standard error.
  /// @return the exit status if the program should end at once
  std::optional<int> Parse(int argc, char** argv);
  /// Parses, and runs the command.
  int Run(int argc, char** argv);

 private:
  std::unique_ptr<CommandLineState> state_;
};

}  // namespace keplo
