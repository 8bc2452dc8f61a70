#pragma once

#include <gtest/gtest.h>

#include <cerrno>
#include <new>
#include <string>
#include <vector>

#include "failure.h"

namespace keplo::tests {

using Texts = std::vector<std::string>;

/// Expects a part somewhere in a text.
inline void ExpectPart(const std::string& text, const std::string& part) {
  EXPECT_NE(text.find(part), std::string::npos) << "\"" << part << "\" is not in:\n" << text;
}

/// The failure of an action; one with number 0 if it came through.
template <typename Action>
Failure FailureOf(Action action) try {
  action();
  return {0, "done"};
} catch (const Failure& failure) {
  return failure;
} catch (const std::bad_alloc&) {
  return {ENOMEM, "out of memory"};
}

}  // namespace keplo::tests
