#pragma once

#include "doubles/expect.h"

namespace keplo::tests {

/// Lines as they stand in the file.
inline std::string Lines(const Texts& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\r\n";
  return text;
}

/// The settings, from values with blanks between them.
inline std::string General(std::string values) {
  std::string text = "[General]\r\n";
  for (const std::string key : {"COMPORT", "PROTOCOL", "PROCDELAY", "ITYPE", "BEEPON", "VEXIL"}) {
    text += key + "= " + values.substr(0, values.find(' ')) + "\r\n";
    values.erase(0, values.find(' ') + 1);
  }
  return text + "\r\n";
}

inline const std::string kGeneral = General("1 0 10 0 1 0");

/// A protocol section with the given command lines.
inline std::string Protocol(const std::string& name, const Texts& commands) {
  return Lines({"[" + name + "]", "# made for a test", "GPROTO= 0", "SENDPLS= 560", "REPEAT= 0", "BITG= 1100",
                "BIT0= 10", "BIT1= 1000", "GREPEAT= 72", ""}) +
         Lines(commands) + "\r\n";
}

/// A whole file: settings, the sections, the template and the closing header.
inline std::string Config(const std::string& sections, const std::string& general = kGeneral) {
  return general + sections + Protocol("Template", {"G10,EMPTY"}) + "[END]\r\n";
}

/// The parts of a row of a table, which has bars between them.
inline Texts Parts(const std::string& row) {
  Texts parts;
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
