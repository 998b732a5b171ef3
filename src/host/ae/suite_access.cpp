#include "host/ae/suite_access.h"

#include "host/result_codes.h"

namespace vireon {

using namespace sdk;

void ReportError(const SdkRecords& records, const char* message) {
    records.outData->out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
    // The buffer ends after 255 characters, which the host's sprintf does not know.
    records.inData->utils->ansi.sprintf(records.outData->return_msg, "%.255s", message);
}

std::int32_t AcquireSuite(const SdkRecords& records, const SuiteId& id, const char* message,
                          const void** suite) {
    *suite = nullptr;
    const SPBasicSuite* basic = records.inData->pica_basicP;
    if (basic != nullptr && basic->AcquireSuite(id.name, id.version, suite) != 0) *suite = nullptr;
    if (*suite != nullptr) return kSuccess;
    ReportError(records, message != nullptr ? message : "Not able to acquire AEFX Suite.");
    return kBadCallbackParameter;
}

std::int32_t ReleaseSuite(const SdkRecords& records, const SuiteId& id, const char* message) {
    const SPBasicSuite* basic = records.inData->pica_basicP;
    if (basic == nullptr) {
        ReportError(records, message != nullptr ? message : "Not able to release AEFX Suite.");
        return kBadCallbackParameter;
    }
    basic->ReleaseSuite(id.name, id.version);
    return kSuccess;
}

}  // namespace vireon
