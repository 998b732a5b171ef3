#pragma once

#include <string>

#include <gtest/gtest.h>

#include "tools/vireon/tool_error.h"

namespace vireon::tool {

/// Expects a ToolError with a code and answers its text.
template <typename Call>
std::string ExpectError(ExitCode code, Call call) {
    try {
        call();
    } catch (const ToolError& error) {
        EXPECT_EQ(error.code(), code) << error.what();
        EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos) << "more than one line";
        return error.what();
    }
    ADD_FAILURE() << "no error";
    return {};
}

}  // namespace vireon::tool
