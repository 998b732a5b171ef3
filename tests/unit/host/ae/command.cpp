#include "command.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/unit/headless/fake_effect.h"

namespace vireon::test {
namespace {

using headless::Depth;
using headless::Host;
using headless::World;
using headless::testing::Call;
using headless::testing::FakeEffect;

/// The spy of the command that runs, and where the calls go on to.
struct Wire {
    Spy* spy = nullptr;
    sdk::PF_InData real{};
    sdk::PF_UtilCallbacks utils{};
    sdk::SPBasicSuite basic{};
};
thread_local Wire wire;

std::optional<sdk::PF_LRect> Known(const sdk::PF_LRect* rectangle) {
    return rectangle == nullptr ? std::nullopt : std::optional(*rectangle);
}

sdk::PF_Err SpyCopy(sdk::PF_ProgPtr ref, sdk::PF_EffectWorld* source, sdk::PF_EffectWorld* dst,
                    sdk::PF_LRect* from, sdk::PF_LRect* to) {
    wire.spy->copies.push_back({source, dst, Known(from), Known(to)});
    return wire.utils.copy(ref, source, dst, from, to);
}

sdk::PF_Err SpyFill(sdk::PF_ProgPtr ref, const sdk::PF_Pixel* colour, const sdk::PF_LRect* rect,
                    sdk::PF_EffectWorld* world) {
    wire.spy->fills.push_back({colour, rect, world});
    return wire.utils.fill(ref, colour, rect, world);
}

sdk::PF_Err SpyNewWorld(sdk::PF_ProgPtr ref, std::int32_t width, std::int32_t height,
                        std::int32_t flags, sdk::PF_EffectWorld* world) {
    wire.spy->newWorlds.push_back({width, height, flags});
    return wire.utils.new_world(ref, width, height, flags, world);
}

sdk::PF_Err SpyCheckOut(sdk::PF_ProgPtr ref, std::int32_t index, std::int32_t time,
                        std::int32_t step, std::uint32_t scale, sdk::PF_ParamDef* def) {
    wire.spy->checkOuts.push_back({index, time, step, scale});
    return wire.real.inter.checkout_param(ref, index, time, step, scale, def);
}

std::int32_t SpyAcquire(const char* name, std::int32_t version, const void** suite) {
    wire.spy->acquired.emplace_back(name, version);
    return wire.basic.AcquireSuite(name, version, suite);
}

std::int32_t SpyRelease(const char* name, std::int32_t version) {
    wire.spy->released.emplace_back(name, version);
    return wire.basic.ReleaseSuite(name, version);
}

/// The parameters of fake_effect.h and three more.
sdk::PF_Err AddParameters(const Call& call) {
    if (const sdk::PF_Err error = headless::testing::AddSampleParameters(call); error != 0) {
        return error;
    }
    const auto add = [&](const char* name, std::int32_t id, std::int32_t kind) {
        sdk::PF_ParamDef def{};
        std::strcpy(def.name, name);
        def.uu.id = id;
        def.param_type = kind;
        return call.in.inter.add_param(call.in.effect_ref, -1, &def);
    };
    sdk::PF_Err error = add("Count", 17, sdk::PF_Param_SLIDER);
    if (error == 0) error = add("Tint", 18, sdk::PF_Param_COLOR);
    if (error == 0) error = add("Place", 19, sdk::PF_Param_POINT_3D);
    call.out.num_params = kParameterCount;
    return error;
}

sdk::PF_Err RunBody(const Call& call, Host& host, const Body& body) {
    Command command{host, call.in, *call.in.utils, {}, call.out, call.params, call.output, {}};
    wire = {&command.spy, call.in, *call.in.utils, {}};
    command.utils.copy = SpyCopy;
    command.utils.fill = SpyFill;
    command.utils.new_world = SpyNewWorld;
    command.in.inter.checkout_param = SpyCheckOut;
    command.in.utils = &command.utils;
    if (call.in.pica_basicP != nullptr) {
        wire.basic = command.basic = *call.in.pica_basicP;
        command.basic.AcquireSuite = SpyAcquire;
        command.basic.ReleaseSuite = SpyRelease;
        command.in.pica_basicP = &command.basic;
    }
    host.resetCalls();
    body(command);
    return command.result;
}

headless::CommandResult Send(Host& host, std::int32_t command, Depth depth) {
    switch (command) {
        case sdk::PF_Cmd_FRAME_SETUP:
        case sdk::PF_Cmd_RENDER:
            for (headless::CommandResult& result : host.renderPlain(depth).commands) {
                if (result.command == command) return result;
            }
            ADD_FAILURE() << "the frame had no " << headless::CommandName(command);
            return {};
        case sdk::PF_Cmd_USER_CHANGED_PARAM: return host.userChangedParam(kFloatSlider);
        case sdk::PF_Cmd_UPDATE_PARAMS_UI: return host.updateParamsUi();
        default: return host.send(command);
    }
}

}  // namespace

Scene SceneIn(std::int32_t application, std::int16_t major, std::int16_t minor) {
    Scene scene;
    scene.settings.applicationId = application;
    scene.settings.versionMajor = major;
    scene.settings.versionMinor = minor;
    return scene;
}

std::shared_ptr<World> MakeLayer(Depth depth, std::int32_t width, std::int32_t height,
                                 std::int32_t pixelFormat) {
    auto layer = std::make_shared<World>(headless::WorldOptions{
        .width = width, .height = height, .depth = depth, .pixelFormat = pixelFormat});
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            const auto part = [](std::int32_t i) { return static_cast<float>(i) / 64.0f; };
            layer->setColor(x, y, {part(63 - x), part(1 + x), part(2 + y), part(x + 8 * y)});
        }
    }
    return layer;
}

headless::CommandResult RunIn(std::int32_t command, const Scene& scene, const Body& body) {
    Host* host = nullptr;
    int runs = 0;
    const FakeEffect effect([&](const Call& call) -> sdk::PF_Err {
        if (call.command == sdk::PF_Cmd_PARAMS_SETUP) return AddParameters(call);
        if (call.command != command) return 0;
        ++runs;
        return RunBody(call, *host, body);
    });
    Host owned(effect.library(), scene.settings);
    host = &owned;
    for (const headless::CommandResult& result : owned.setUp()) {
        EXPECT_EQ(result.error, 0) << result.report();
    }
    owned.setInput(scene.input != nullptr ? scene.input : MakeLayer(scene.depth));
    if (scene.prepare) scene.prepare(owned);
    const headless::CommandResult result = Send(owned, command, scene.depth);
    EXPECT_EQ(runs, 1);
    return result;
}

headless::CommandResult RunCleanIn(std::int32_t command, const Scene& scene, const Body& body) {
    const headless::CommandResult result = RunIn(command, scene, body);
    EXPECT_TRUE(result.clean()) << result.report();
    return result;
}

headless::CommandResult InRender(const Scene& scene, const Body& body) {
    return RunCleanIn(sdk::PF_Cmd_RENDER, scene, body);
}

}  // namespace vireon::test
