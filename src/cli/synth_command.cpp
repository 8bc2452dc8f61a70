#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.h"
#include "cli/write_file.h"
#include "formats/pulse_text.h"
#include "signal/timing.h"
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
  for (const SamplePress& press : SamplePresses()) WriteFile(folder / press.File, press.Text());
  WriteFile(folder / "index.json", SampleIndex());
  return kDone;
}

int Synth(const SynthChoice& choice) {
  const std::int16_t kind = choice.Protocol == "NEC" ? kNec : choice.Protocol == "SONY" ? kSony : kRc5;
  const PulseTrain train = SynthPress(kind, choice.Code, choice.Options);
  std::cout << (choice.OneLine ? OneLineText(train) : Mode2Text(train));
  return kDone;
}

}  // namespace

void AddSynthCommand(CLI::App& app, int& status) {
  auto* command =
      app.add_subcommand("synth", "Make up a key press as a receiver would record it, as mode2 text");
  const auto choice = std::make_shared<SynthChoice>();
  SynthOptions& options = choice->Options;
  command->add_option("--protocol", choice->Protocol, "NEC, SONY or RC5")
      ->check(CLI::IsMember({"NEC", "SONY", "RC5"}))
      ->capture_default_str();
  auto* code =
      command->add_option("--code", choice->Code, "Bits in the order sent; RC5 with start and toggle bits");
  command
      ->add_option("--mark-excess", options.MarkExcessUs,
                   "Microseconds by which the receiver lengthens marks")
      ->check(CLI::Range(-500, 500))
      ->capture_default_str();
  command->add_option("--jitter", options.JitterUs, "Standard deviation of each edge, microseconds")
      ->check(CLI::Range(0, 500))
      ->capture_default_str();
  command->add_option("--clock-error", options.ClockError, "0.02 makes the remote 2 % slow")
      ->check(CLI::Range(-0.5, 0.5))
      ->capture_default_str();
  command->add_option("--gap", options.GapUs, "Silence behind the press, microseconds")
      ->check(CLI::Range(0, 10000000))
      ->capture_default_str();
  command->add_option("--repeats", options.Repeats, "Frames behind the first; NEC sends dittos")
      ->check(CLI::Range(0, 100))
      ->capture_default_str();
  command->add_option("--seed", options.Seed, "The same seed gives the same press")->capture_default_str();
  command->add_flag("--one-line", choice->OneLine, "As one line of +N -N ...");
  auto* samples =
      command->add_option("--samples", choice->SamplesFolder, "Write the files of samples/ to this folder");
  samples->check(CLI::ExistingDirectory)->excludes(code);
  command->callback([choice, &status] {
    if (choice->SamplesFolder.empty() && choice->Code.empty())
      throw CLI::RequiredError("--code or --samples");
    status = choice->SamplesFolder.empty() ? Synth(*choice) : WriteSamples(choice->SamplesFolder);
  });
}

}  // namespace keplo::cli
