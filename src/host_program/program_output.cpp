#include "host_program/program_output.h"

#include <algorithm>

namespace keplo::host {

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

std::string_view WithoutBlanksAround(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

void ProgramOutput::Take(std::string_view bytes) {
  for (std::size_t end = 0; (end = bytes.find('\n')) != std::string_view::npos;) {
    Append(bytes.substr(0, end));
    EndLine();
    bytes.remove_prefix(end + 1);
  }
  Append(bytes);
}

void ProgramOutput::End() {
  if (lineBytes_ > 0) EndLine();
  if (leftOut_ == 0) return;
  write_(LogLevel::Warning, std::to_string(leftOut_) + " bytes that " + program_ + " wrote were not logged.");
}

void ProgramOutput::Append(std::string_view part) {
  line_ += part.substr(0, kMostLineBytes - line_.size());
  lineBytes_ += part.size();
}

void ProgramOutput::EndLine() {
  const bool fits = lines_ < kMostLines && bytes_ + line_.size() <= kMostBytes;
  const std::size_t cut = lineBytes_ - line_.size();
  if (fits && leftOut_ == 0) {
    std::string text(WithoutBlanksAround(line_));
    if (cut > 0) text += " ... and " + std::to_string(cut) + " bytes more in this line";
    write_(LogLevel::Info, text);
    bytes_ += line_.size();
    ++lines_;
  } else {
    if (leftOut_ == 0) {
      write_(LogLevel::Warning, program_ + " writes more than the " + std::to_string(kMostLines) +
                                    " lines or " + std::to_string(kMostBytes) +
                                    " bytes that are logged of one program.");
    }
    leftOut_ += lineBytes_ + 1;
  }
  line_.clear();
  lineBytes_ = 0;
}

}  // namespace keplo::host
