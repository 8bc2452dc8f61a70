#include "host_program/event_command_line.h"

#include <QProcess>
#include <QStringList>
#include <algorithm>
#include <string>
#include <vector>

namespace keplo::host {

namespace {

/// Program and arguments of a run action; none for any other value.
std::optional<QStringList> WordsOf(const nlohmann::json& action) {
  if (!action.is_object() || action.value("kind", nlohmann::json()) != "run") return {};
  const nlohmann::json program = action.value("program", nlohmann::json());
  const nlohmann::json arguments = action.value("arguments", nlohmann::json::array());
  const auto isText = [](const nlohmann::json& value) { return value.is_string(); };
  if (!isText(program) || !arguments.is_array() || !std::all_of(arguments.begin(), arguments.end(), isText))
    return {};
  QStringList words{QString::fromStdString(program.get<std::string>())};
  for (const auto& argument : arguments) words << QString::fromStdString(argument.get<std::string>());
  return words;
}

/// Quotes a word for QProcess::splitCommand.
QString Quoted(QString word) {
  const bool divided = std::any_of(word.begin(), word.end(), [](QChar c) { return c.isSpace(); });
  word.replace(QLatin1Char('"'), QLatin1String(R"(""")"));
  return divided ? QLatin1Char('"') + word + QLatin1Char('"') : word;
}

}  // namespace

std::optional<QString> CommandLineOf(const nlohmann::json& actions) {
  if (actions.empty()) return QString();
  if (actions.size() != 1) return {};
  const auto words = WordsOf(actions.front());
  if (!words) return {};
  QStringList quoted;
  for (const QString& word : *words) quoted << Quoted(word);
  const QString line = quoted.join(QLatin1Char(' '));
  return QProcess::splitCommand(line) == *words ? std::optional(line) : std::nullopt;
}

nlohmann::json WithCommandLine(const nlohmann::json& actions, const QString& commandLine) {
  const QStringList words = QProcess::splitCommand(commandLine);
  if (words.isEmpty()) return nlohmann::json::array();
  std::vector<std::string> arguments;
  for (const QString& word : words.mid(1)) arguments.push_back(word.toStdString());
  const bool keeps = !actions.empty() && CommandLineOf(actions);
  nlohmann::json action = keeps ? actions.front() : nlohmann::json{{"kind", "run"}};
  action["program"] = words.front().toStdString();
  action["arguments"] = arguments;
  return nlohmann::json::array({action});
}

}  // namespace keplo::host
