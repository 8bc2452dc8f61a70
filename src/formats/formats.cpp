#include "formats/formats.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <utility>

#include "formats/remote_presses.h"

namespace keplo {

namespace {

/// Text has no control characters but blanks and line ends; the bytes of a capture always have some, since a
/// capture ends in silence.
bool IsText(std::string_view bytes) {
  return std::none_of(bytes.begin(), bytes.end(), [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return (code < 0x20 && !(code >= '\t' && code <= '\r')) || code == 0x7F;
  });
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): all formats of the table take the bytes over
std::vector<Press> ReadText(std::string bytes, std::string_view name, std::vector<std::string>& complaints) {
  std::optional<std::vector<PulseTrain>> remotes = PressesOfRemotes(bytes, std::string(name), complaints);
  std::vector<PulseTrain> trains = remotes ? *std::move(remotes) : ParsePulseText(bytes, name);
  return {std::make_move_iterator(trains.begin()), std::make_move_iterator(trains.end())};
}

bool IsCapture(std::string_view bytes) { return !IsText(bytes); }

std::vector<Press> ReadCaptureBytes(std::string bytes, std::string_view /*name*/,
                                    std::vector<std::string>& /*complaints*/) {
  return {RawBytes{std::move(bytes)}};
}

template <std::string (*TextOf)(const PulseTrain&)>
std::string WriteEach(std::span<const PulseTrain> presses) {
  std::string text;
  for (const PulseTrain& press : presses) text += TextOf(press);
  return text;
}

constexpr std::array kFormats = {
    Format{kMode2Format, {".mode2"}, IsText, ReadText, WriteEach<Mode2Text>},
    Format{kOneLineFormat, {}, IsText, ReadText, WriteEach<OneLineText>},
    Format{"capture", {".cap", ".CAP"}, IsCapture, ReadCaptureBytes, nullptr},
};

template <typename Fits>
const Format& FirstThat(Fits fits) {
  const auto* const found = std::find_if(kFormats.begin(), kFormats.end(), fits);
  return found == kFormats.end() ? kFormats.front() : *found;
}

}  // namespace

std::span<const Format> Formats() { return kFormats; }

const Format& FormatOfFile(std::string_view path) {
  const std::string ending = std::filesystem::path(path).extension().string();
  return FirstThat([&](const Format& format) {
    return !ending.empty() &&
           std::find(format.Endings.begin(), format.Endings.end(), ending) != format.Endings.end();
  });
}

const Format& FormatOfBytes(std::string_view bytes) {
  return FirstThat([&](const Format& format) { return format.Sniff(bytes); });
}

const Format& FormatToWrite(std::string_view path) {
  const Format& format = FormatOfFile(path);
  return format.Write != nullptr ? format : kFormats.front();
}

std::string WriteAs(std::string_view name, std::span<const PulseTrain> presses) {
  return FirstThat([&](const Format& format) { return format.Name == name; }).Write(presses);
}

}  // namespace keplo
