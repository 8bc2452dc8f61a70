#pragma once

#include <string>
#include <vector>

namespace keplo::tests {

/// Lines as they stand in the file.
inline std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

inline const std::string kGeneral = Lines(
    {"[General]", "COMPORT= 1", "PROTOCOL= 0", "PROCDELAY= 10", "ITYPE= 0", "BEEPON= 1", "VEXIL= 0", ""});

/// A protocol section with the given command lines.
inline std::string Protocol(const std::string& name, const std::vector<std::string>& commands) {
  return Lines({"[" + name + "]", "# made for a test", "GPROTO= 0", "SENDPLS= 560", "REPEAT= 0", "BITG= 1100",
                "BIT0= 10", "BIT1= 1000", "GREPEAT= 72", ""}) +
         Lines(commands) + "\r\n";
}

/// A whole file: settings, the sections, the template and the closing header.
inline std::string Config(const std::string& sections) {
  return kGeneral + sections + Protocol("Template", {"G10,EMPTY"}) + "[END]\r\n";
}

/// The parts of a row of a table, which has bars between them.
inline std::vector<std::string> Parts(const std::string& row) {
  std::vector<std::string> parts;
  for (std::size_t begin = 0; begin <= row.size(); begin += parts.back().size() + 1) {
    parts.push_back(row.substr(begin, row.find('|', begin) - begin));
  }
  return parts;
}

/// A text with the first place of a part that it holds given another one.
inline std::string Replaced(std::string text, const std::string& old, const std::string& fresh) {
  return text.replace(text.find(old), old.size(), fresh);
}

}  // namespace keplo::tests
