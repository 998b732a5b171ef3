#include "host/ae/suite_set.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace vireon {

using namespace sdk;

SuiteSet::~SuiteSet() {
    for (std::size_t i = 0; i < tables_.size(); ++i) {
        if (tables_[i] != nullptr) {
            basic_->ReleaseSuite(kAllSuites[i].name, kAllSuites[i].version);
        }
    }
}

const void* SuiteSet::get(const SuiteId& id) {
    const auto* const found =
        std::find_if(std::begin(kAllSuites), std::end(kAllSuites), [&id](const SuiteId& known) {
            return known.version == id.version && std::strcmp(known.name, id.name) == 0;
        });
    if (basic_ == nullptr || found == std::end(kAllSuites)) return nullptr;
    const void*& table = tables_[static_cast<std::size_t>(found - std::begin(kAllSuites))];
    if (table == nullptr && basic_->AcquireSuite(id.name, id.version, &table) != 0) table = nullptr;
    return table;
}

}  // namespace vireon
