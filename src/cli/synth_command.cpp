#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/write_file.h"
#include "formats/formats.h"
#include "signal/first_analysis.h"
#include "synth/sample_presses.h"
#include "synth/synth.h"

namespace keplo::cli {

namespace {

struct SynthChoice {
  std::string Protocol = "NEC";
  std::string Code;
  std::string SamplesFolder;
  bool OneLine = false;
  SynthOptions Options;
};

int WriteSamples(const std::filesystem::path& folder) {
  Write([&] {
    for (const SamplePress& press : SamplePresses()) WriteFile(folder / press.File, press.Text());
    WriteFile(folder / "index.json", SampleIndex());
  });
  return kDone;
}

int Synth(const SynthChoice& choice) {
  const std::int16_t kind = choice.Protocol == "NEC" ? kNec : choice.Protocol == "SONY" ? kSony : kRc5;
  const PulseTrain press = SynthPress(kind, choice.Code, choice.Options);
  std::cout << WriteAs(choice.OneLine ? kOneLineFormat : kMode2Format, {&press, 1});
  return kDone;
}

}  // namespace

void AddSynthCommand(Command& root) {
  Command command = root.Sub("synth", "Make up a key press as a receiver would record it, as mode2 text");
  const auto choice = std::make_shared<SynthChoice>();
  SynthOptions& options = choice->Options;
  command.Choice("--protocol", choice->Protocol, {"NEC", "SONY", "RC5"}, "NEC, SONY or RC5").ShowDefault();
  command.Examples({"keplo synth --protocol SONY --code 001000100010 > press.mode2"});
  const Argument code =
      command.Word("--code", choice->Code, "Bits in the order sent; RC5 with start and toggle bits");
  command
      .Number("--mark-excess", options.MarkExcessUs, "Microseconds by which the receiver lengthens marks",
              {-500, 500})
      .ShowDefault();
  command.Number("--jitter", options.JitterUs, "Standard deviation of each edge, microseconds", {0, 500})
      .ShowDefault();
  command.Number("--clock-error", options.ClockError, "0.02 makes the remote 2 % slow", {-0.5, 0.5})
      .ShowDefault();
  command.Number("--gap", options.GapUs, "Silence after the press, microseconds", {0, 10000000})
      .ShowDefault();
  command.Number("--repeats", options.Repeats, "Frames after the first; NEC sends dittos", {0, 100})
      .ShowDefault();
  command.Number("--seed", options.Seed, "The same seed gives the same press").ShowDefault();
  command.Flag("--one-line", choice->OneLine, "As one line of +N -N ...");
  command.Word("--samples", choice->SamplesFolder, "Write the files of samples/ to this folder")
      .MustBeFolder()
      .Excludes(code);
  command.Runs([choice] {
    if (choice->SamplesFolder.empty() && choice->Code.empty()) {
      throw UsageError("--code or --samples is required");
    }
    return choice->SamplesFolder.empty() ? Synth(*choice) : WriteSamples(choice->SamplesFolder);
  });
}

}  // namespace keplo::cli
