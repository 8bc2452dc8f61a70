#include "window/dialogue.h"

#include <utility>

#include "failure.h"

namespace keplo {

bool Dialogue::Told(const std::function<void()>& action) {
  bool done = true;
  try {
    action();
  } catch (const Failure& failure) {
    TellFailure(failure.what());
    done = false;
  }
  if (const auto aside = std::exchange(store_.KeptAside, {}); !aside.empty()) {
    TellFailure(store_.Path.string() + " had been changed by another program. What it wrote is kept in " +
                aside.string() + "; take its new commands and settings over from there.");
  }
  return done;
}

bool Dialogue::Changed(const std::function<void()>& change) {
  const std::string before = store_.CfgText;
  return Told(change) || store_.CfgText != before;
}

void Dialogue::TellGathered() {
  const std::optional<std::string> failures = std::exchange(gathered_, std::nullopt);
  if (failures && !failures->empty()) Tell(*failures);
}

void Dialogue::TellFailure(const std::string& text) {
  if (!gathered_) {
    Tell(text);
  } else if (gathered_->find(text) == std::string::npos) {
    *gathered_ += (gathered_->empty() ? "" : "\r\n") + text;
  }
}

}  // namespace keplo
