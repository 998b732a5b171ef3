#pragma once

#include <cstdint>

#include "host/ae/sdk_records.h"

namespace vireon {

/// Puts `message` into the command's return message and marks it as an error to be shown.
void ReportError(const SdkRecords& records, const char* message);

/// Acquires a suite through the host's basic suite.
/// \param message  shown to the user on failure; null shows a general one
/// \param suite  the suite's table, owned by the host; null after a failure
/// \return 0, or 516 when the host has no basic suite or not this one
std::int32_t AcquireSuite(const SdkRecords& records, const sdk::SuiteId& id, const char* message,
                          const void** suite);

/// Gives a suite back by the name and version it was acquired by.
/// \return 0, or 516 when the host has no basic suite
std::int32_t ReleaseSuite(const SdkRecords& records, const sdk::SuiteId& id, const char* message);

}  // namespace vireon
