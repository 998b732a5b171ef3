#include <gtest/gtest.h>

#include <vector>

#include "command.h"

namespace vireon::test {
namespace {

thread_local std::vector<double> arguments;
thread_local double answer;

double Note(double x) {
    arguments = {x};
    return answer;
}

double NotePair(double x, double y) {
    arguments = {x, y};
    return answer;
}

double Wrong(double) {
    ADD_FAILURE() << "another function was meant";
    return 0.0;
}

struct Function {
    const char* name;
    double (*sdk::PF_ANSICallbacks::*slot)(double);
    float (PluginHost_API::*single)(float);
    double (PluginHost_API::*precise)(double);
};
const Function kFunctions[] = {
    {"sqrt", &sdk::PF_ANSICallbacks::sqrt, &PluginHost_API::mathSqrt, &PluginHost_API::mathSqrt},
    {"floor", &sdk::PF_ANSICallbacks::floor, &PluginHost_API::mathFloor,
     &PluginHost_API::mathFloor},
    {"ceil", &sdk::PF_ANSICallbacks::ceil, &PluginHost_API::mathCeil, &PluginHost_API::mathCeil},
    {"fabs", &sdk::PF_ANSICallbacks::fabs, &PluginHost_API::mathAbs, &PluginHost_API::mathAbs},
    {"sin", &sdk::PF_ANSICallbacks::sin, &PluginHost_API::mathSin, &PluginHost_API::mathSin},
    {"cos", &sdk::PF_ANSICallbacks::cos, &PluginHost_API::mathCos, &PluginHost_API::mathCos},
    {"tan", &sdk::PF_ANSICallbacks::tan, &PluginHost_API::mathTan, &PluginHost_API::mathTan},
    {"atan", &sdk::PF_ANSICallbacks::atan, &PluginHost_API::mathAtan, &PluginHost_API::mathAtan},
    {"exp", &sdk::PF_ANSICallbacks::exp, &PluginHost_API::mathExp, &PluginHost_API::mathExp},
    {"log", &sdk::PF_ANSICallbacks::log, &PluginHost_API::mathLog, &PluginHost_API::mathLog},
};

// Neither survives the way through single precision.
constexpr double kPrecise = 0.1;
constexpr double kAnswer = 1.0 / 3.0;

TEST(Maths, IsTheHostsInBothPrecisions) {
    InRender([](Command& command) {
        answer = kAnswer;
        for (const Function& function : kFunctions) {
            SCOPED_TRACE(function.name);
            for (const Function& other : kFunctions) command.utils.ansi.*other.slot = Wrong;
            command.utils.ansi.*function.slot = Note;
            PluginHost_AE_Impl ae = command.makeHost();
            PluginHost_API& host = ae;
            EXPECT_EQ((host.*function.precise)(kPrecise), kAnswer);
            EXPECT_EQ(arguments, std::vector<double>{kPrecise});
            const auto single = static_cast<float>(kPrecise);
            EXPECT_EQ((host.*function.single)(single), static_cast<float>(kAnswer));
            EXPECT_EQ(arguments, std::vector<double>{static_cast<double>(single)});
        }
    });
}

TEST(Maths, PowersTakeBaseAndExponentInThatOrder) {
    InRender([](Command& command) {
        answer = kAnswer;
        command.utils.ansi.pow = NotePair;
        PluginHost_AE_Impl host = command.makeHost();
        EXPECT_EQ(host.mathPow(kPrecise, 2.5), kAnswer);
        EXPECT_EQ(arguments, (std::vector<double>{kPrecise, 2.5}));
        EXPECT_EQ(host.mathPow(0.1f, 2.5f), static_cast<float>(kAnswer));
        EXPECT_EQ(arguments, (std::vector<double>{static_cast<double>(0.1f), 2.5}));
    });
}

}  // namespace
}  // namespace vireon::test
