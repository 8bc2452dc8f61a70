#include <gtest/gtest.h>

#include <algorithm>

#include "program.h"

namespace keplo::tests {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = KEPLO_SOURCE_DIR;

std::vector<fs::path> Pages() {
  std::vector<fs::path> pages;
  for (const auto& entry : fs::directory_iterator(kSource / "docs" / "sessions"))
    pages.push_back(entry.path());
  std::sort(pages.begin(), pages.end());
  return pages;
}

class Sessions : public testing::TestWithParam<fs::path> {};

TEST_P(Sessions, PrintWhatThePageSays) {
  // cram writes beside a page what it printed instead.
  const TempFolder folder;
  const fs::path page = folder.Path() / GetParam().filename();
  fs::copy_file(GetParam(), page);
  const Ran ran = RunShell("PATH=" + fs::path(KEPLO_PROGRAM).parent_path().string() +
                           ":$PATH KEPLO_HOME=home SAMPLES=" + (kSource / "samples").string() +
                           " cram3 --indent=4 --shell=/bin/bash" + Quoted(page));
  EXPECT_EQ(ran.Status, 0) << ran.Out << ran.Err;
}

INSTANTIATE_TEST_SUITE_P(Docs, Sessions, testing::ValuesIn(Pages()),
                         [](const auto& page) { return page.param.stem().string(); });

}  // namespace
}  // namespace keplo::tests
