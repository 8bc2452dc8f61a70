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

/// Words that do not make up a command: the text is told with a hint at --help, and the program ends as after
/// any other wrong use.
class WrongUse : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Values that a number may have, both ends included.
template <typename Value>
struct Between {
  Value Least, Most;
};

template <typename Value>
constexpr Between<Value> AllOf() {
  return {std::numeric_limits<Value>::lowest(), std::numeric_limits<Value>::max()};
}

/// A word or an option of a command, for what else there is to say of it.
class Argument {
 public:
  explicit Argument(CLI::Option& option) : option_(&option) {}

  Argument& Required();
  /// Lets the help tell the value that the variable has now.
  Argument& ShowDefault();
  Argument& Excludes(const Argument& other);
  Argument& Needs(const Argument& other);
  Argument& MustBeFile();
  Argument& MustBeFolder();
  bool IsGiven() const;

 private:
  friend class Command;

  CLI::Option* option_;
};

struct CommandLineState;

/// A command with its words and options. A name with leading dashes is an option, any other one a word that
/// stands at its place. Variables are written when the command line is parsed, and must live until then.
///
/// The value of an option is the next word or what stands after its =, where it may be empty. Only Text takes
/// an empty value.
class Command {
 public:
  Command(CLI::App& app, CommandLineState& state) : app_(&app), state_(&state) {}

  /// A text that may be empty.
  Argument Text(const std::string& name, std::string& value, const std::string& about);
  Argument Text(const std::string& name, std::optional<std::string>& value, const std::string& about);
  /// A text that may not be empty.
  Argument Word(const std::string& name, std::string& value, const std::string& about);
  /// Any number of them.
  Argument Words(const std::string& name, std::vector<std::string>& values, const std::string& about);
  /// An option that may also stand before the name of the command, or of the one that it belongs to.
  Argument WordAlsoBefore(const std::string& name, std::string& value, const std::string& about);
  /// One of some words.
  enum class Case { Counts, Ignored };
  Argument Choice(const std::string& name, std::string& value, const std::vector<std::string>& choices,
                  const std::string& about, Case letterCase = Case::Counts);
  Argument Choice(const std::string& name, std::optional<std::string>& value,
                  const std::vector<std::string>& choices, const std::string& about,
                  Case letterCase = Case::Counts);
  /// @param whenGiven what the flag writes
  Argument Flag(const std::string& name, bool& value, const std::string& about, bool whenGiven = true);

  /// A decimal number; the help tells a range that is narrower than the type.
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
  /// Any number of them, with commas between.
  Argument Numbers(const std::string& name, std::vector<std::int32_t>& values, const std::string& about,
                   Between<std::int32_t> range);

  /// A command below this one, of which one has to be given then.
  Command Sub(const std::string& name, const std::string& about);
  /// A command below this one, which does without it as well. A word of that name is always the command.
  Command OptionalSub(const std::string& name, const std::string& about);
  /// Of the options of this group at least one has to be given.
  Command AtLeastOneOf(const std::string& title);
  /// Lines at the end of the help.
  Command& Examples(const std::vector<std::string>& lines);
  /// What the command does.
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
  Argument AddWhole(const std::string& name, Sign sign, Between<std::int64_t> range, bool tellRange,
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
  /// `PROGRAM help WORD...` tells what `PROGRAM WORD... --help` does.
  void AddHelpCommand();

  /// Writes the variables; tells on standard output what --help and --version ask for, and wrong use on
  /// standard error.
  /// @return the status if the program is to end at once
  std::optional<int> Parse(int argc, char** argv);
  /// Parses, and does the work of the command that was given.
  int Run(int argc, char** argv);

 private:
  std::unique_ptr<CommandLineState> state_;
};

}  // namespace keplo
