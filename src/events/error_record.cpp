#include "events/error_record.h"

#include <utility>

#include "failure.h"

namespace keplo {

namespace {

// "Invalid procedure call"; used for exceptions without a number, such as std::bad_alloc.
constexpr int kFailureWithoutNumber = 5;

}  // namespace

HostErrorRecord ErrorRecordOf(const std::exception& failure, std::string source, std::string procedure,
                              std::string date) {
  HostErrorRecord record;
  record.ErrorDate = std::move(date);
  record.ErrorDescription = failure.what();
  record.ErrorProcedure = std::move(procedure);
  const auto* numbered = dynamic_cast<const Failure*>(&failure);
  record.ErrorNumber = numbered != nullptr ? numbered->Number() : kFailureWithoutNumber;
  record.ErrorSource = std::move(source);
  return record;
}

}  // namespace keplo
