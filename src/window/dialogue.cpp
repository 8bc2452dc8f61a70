#include "window/dialogue.h"

#include <utility>

#include "failure.h"

namespace keplo {

class Dialogue::OpenBox {
 public:
  explicit OpenBox(Dialogue& dialogue) : open_(dialogue.open_) { ++open_; }
  ~OpenBox() { --open_; }
  OpenBox(const OpenBox&) = delete;
  OpenBox& operator=(const OpenBox&) = delete;

 private:
  int& open_;
};

void Dialogue::Tell(std::string_view text, std::string_view reason, std::string_view title) {
  const OpenBox box(*this);
  boxes_.Explain(text, title, reason);
}

void Dialogue::ReportError(std::string_view text, std::string_view reason) {
  const OpenBox box(*this);
  boxes_.Error(text, kBoxTitle, reason);
}

bool Dialogue::Ask(std::string_view text) {
  const OpenBox box(*this);
  return boxes_.Question(text, kBoxTitle);
}

bool Dialogue::Confirm(std::string_view text, std::string_view title) {
  const OpenBox box(*this);
  return boxes_.Confirm(text, title);
}

std::string Dialogue::Input(std::string_view text, std::string_view title, std::string_view preset) {
  const OpenBox box(*this);
  return boxes_.Input(text, title, preset);
}

bool Dialogue::RunAndReport(const std::function<void()>& action) {
  bool done = true;
  try {
    action();
  } catch (const Failure& failure) {
    ReportFailure(failure.what());
    done = false;
  }
  if (const auto aside = std::exchange(store_.ConflictCopy, {}); !aside.empty()) {
    ReportFailure(store_.Path.string() + " had been changed by another program. What it wrote is kept in " +
                  aside.string() + "; take its new commands and settings over from there.");
  }
  return done;
}

bool Dialogue::ChangeAndReport(const std::function<void()>& change) {
  const std::string before = store_.CfgText;
  RunAndReport(change);
  return store_.CfgText != before;
}

void Dialogue::ReportCollected() {
  const std::optional<std::string> failures = std::exchange(collected_, std::nullopt);
  if (failures && !failures->empty()) Tell(*failures);
}

void Dialogue::ReportFailure(const std::string& text) {
  if (!collected_) {
    Tell(text);
  } else if (collected_->find(text) == std::string::npos) {
    *collected_ += (collected_->empty() ? "" : "\r\n") + text;
  }
}

}  // namespace keplo
