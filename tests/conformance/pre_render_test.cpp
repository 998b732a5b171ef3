#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/conformance/support.h"

namespace vireon::conformance {
namespace {

using headless::CommandResult;
using headless::Depth;
using headless::Host;
using sdk::PF_LRect;

std::vector<std::int32_t> Edges(const PF_LRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

bool Empty(const PF_LRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

PF_LRect Union(const PF_LRect& rect, const PF_LRect& layer) {
    if (Empty(rect)) {
        return layer;
    }
    if (Empty(layer)) {
        return rect;
    }
    return {std::min(rect.left, layer.left), std::min(rect.top, layer.top),
            std::max(rect.right, layer.right), std::max(rect.bottom, layer.bottom)};
}

PF_LRect Intersection(const PF_LRect& a, const PF_LRect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

/// The host's side of one pre-render, answered by the test itself.
struct Checkout {
    PF_LRect resultRect{};
    PF_LRect maxRect{};
    sdk::PF_Err code = 0;

    int calls = 0;
    sdk::PF_ProgPtr effectRef = nullptr;
    std::int32_t index = -1;
    std::int32_t id = -1;
    sdk::PF_RenderRequest request{};
    std::int32_t time = 0;
    std::int32_t step = 0;
    std::uint32_t scale = 0;
};

Checkout* checkout = nullptr;

sdk::PF_Err AnswerCheckout(sdk::PF_ProgPtr effectRef, std::int32_t index, std::int32_t id,
                           const sdk::PF_RenderRequest* request, std::int32_t time,
                           std::int32_t step, std::uint32_t scale, sdk::PF_CheckoutResult* result) {
    ++checkout->calls;
    checkout->effectRef = effectRef;
    checkout->index = index;
    checkout->id = id;
    checkout->request = *request;
    checkout->time = time;
    checkout->step = step;
    checkout->scale = scale;
    if (checkout->code == 0) {
        result->result_rect = checkout->resultRect;
        result->max_result_rect = checkout->maxRect;
    }
    return checkout->code;
}

struct Answer {
    CommandResult result;
    sdk::PF_PreRenderOutput output{};
    Checkout seen;
};

/// One pre-render with the answers of `prepared` and an output record full of 0x55.
Answer PreRender(Host& host, const PF_LRect& request, const Checkout& prepared,
                 std::int32_t field = sdk::PF_Field_FRAME, bool preserve = false) {
    Answer answer;
    answer.seen = prepared;
    checkout = &answer.seen;
    sdk::PF_PreRenderInput input{};
    input.output_request.rect = request;
    input.output_request.field = field;
    input.output_request.channel_mask = 0xA;
    input.output_request.preserve_rgb_of_zero_alpha = preserve ? 1 : 0;
    input.output_request.reserved[2] = 4711;
    input.bitdepth = 32;
    std::memset(&answer.output, 0x55, sizeof(answer.output));
    sdk::PF_PreRenderCallbacks callbacks{};
    callbacks.checkout_layer = AnswerCheckout;
    sdk::PF_PreRenderExtra extra{&input, &answer.output, &callbacks};
    answer.result = host.send(sdk::PF_Cmd_SMART_PRE_RENDER, {nullptr, nullptr, &extra});
    checkout = nullptr;
    return answer;
}

headless::HostSettings SizedHost(std::int32_t width, std::int32_t height,
                                 sdk::PF_RationalScale x = {1, 1},
                                 sdk::PF_RationalScale y = {1, 1}) {
    headless::HostSettings settings;
    settings.adjustInData = [=](sdk::PF_InData& inData) {
        inData.width = width;
        inData.height = height;
        inData.downsample_x = x;
        inData.downsample_y = y;
    };
    return settings;
}

TEST(PreRender, ChecksOutTheInputForTheRequestAsAWholeFrameWithColourUnderTransparency) {
    sdk::PF_InData captured{};
    headless::HostSettings settings = SizedHost(100, 80);
    settings.time.current = -7;
    settings.time.step = 3;
    settings.time.scale = 2997;
    const auto fill = settings.adjustInData;
    settings.adjustInData = [&](sdk::PF_InData& inData) {
        fill(inData);
        captured = inData;
    };
    const auto host = ReadyHost(settings);
    const Answer answer = PreRender(*host, {5, -6, 70, 90}, {{0, 0, 100, 80}, {0, 0, 100, 80}, 0},
                                    sdk::PF_Field_LOWER, false);
    EXPECT_EQ(answer.result.error, 0);
    EXPECT_TRUE(answer.result.clean()) << answer.result.report();
    EXPECT_EQ(answer.seen.calls, 1);
    EXPECT_EQ(answer.seen.effectRef, captured.effect_ref);
    EXPECT_EQ(answer.seen.index, 0);
    EXPECT_EQ(answer.seen.id, 0);
    EXPECT_EQ(answer.seen.time, -7);
    EXPECT_EQ(answer.seen.step, 3);
    EXPECT_EQ(answer.seen.scale, 2997u);
    EXPECT_EQ(Edges(answer.seen.request.rect), (std::vector<std::int32_t>{5, -6, 70, 90}));
    EXPECT_EQ(answer.seen.request.field, sdk::PF_Field_FRAME);
    EXPECT_EQ(answer.seen.request.preserve_rgb_of_zero_alpha, 1);
    EXPECT_EQ(answer.seen.request.channel_mask, 0xA);
    EXPECT_EQ(answer.seen.request.reserved[2], 4711);
}

TEST(PreRender, SetsTheTwoRectanglesAndNothingElse) {
    const auto host = ReadyHost(SizedHost(100, 80));
    Answer answer = PreRender(*host, {0, 0, 100, 80}, {{0, 0, 100, 80}, {0, 0, 100, 80}, 0});
    sdk::PF_PreRenderOutput expected;
    std::memset(&expected, 0x55, sizeof(expected));
    expected.result_rect = {0, 0, 100, 80};
    expected.max_result_rect = {0, 0, 100, 80};
    EXPECT_EQ(std::memcmp(&answer.output, &expected, sizeof(expected)), 0);
}

TEST(PreRender, JoinsTheLayerAndCutsByTheRequest) {
    const std::vector<PF_LRect> layers{
        {0, 0, 100, 80},      {10, 20, 60, 70}, {-30, -20, 40, 30},
        {-30, -20, 140, 110}, {50, 40, 50, 60}, {50, 60, 70, 60},
        {0, 0, 0, 0},         {90, 70, 10, 10}, {200, 200, 300, 300}};
    const std::vector<PF_LRect> requests{
        {0, 0, 100, 80},    {20, 10, 30, 50},     {-50, -50, 200, 200},
        {90, 70, 300, 300}, {-60, -60, -10, -10}, {0, 0, 0, 0},
        {40, 40, 20, 20},   {150, 0, 250, 80},    {30, 30, 30, 60}};
    const auto host = ReadyHost(SizedHost(100, 80));
    const PF_LRect bounds{0, 0, 100, 80};
    for (const PF_LRect& layer : layers) {
        for (const PF_LRect& maximum : layers) {
            for (const PF_LRect& request : requests) {
                const Answer answer = PreRender(*host, request, {layer, maximum, 0});
                ASSERT_EQ(answer.result.error, 0);
                ASSERT_EQ(Edges(answer.output.result_rect),
                          Edges(Intersection(Union(layer, bounds), request)))
                    << ::testing::PrintToString(Edges(layer)) << " asked for "
                    << ::testing::PrintToString(Edges(request));
                ASSERT_EQ(Edges(answer.output.max_result_rect), Edges(Union(maximum, bounds)))
                    << ::testing::PrintToString(Edges(maximum));
            }
        }
    }
}

TEST(PreRender, ALayerOfNoSizeLeavesTheCheckedOutRectangle) {
    const auto host = ReadyHost(SizedHost(0, 80));
    const PF_LRect everything{-1000, -1000, 1000, 1000};
    Answer answer = PreRender(*host, everything, {{10, 20, 60, 70}, {-5, -5, 200, 200}, 0});
    EXPECT_EQ(Edges(answer.output.result_rect), (std::vector<std::int32_t>{10, 20, 60, 70}));
    EXPECT_EQ(Edges(answer.output.max_result_rect), (std::vector<std::int32_t>{-5, -5, 200, 200}));
    answer = PreRender(*host, everything, {{4, 4, 4, 4}, {9, 9, 3, 3}, 0});
    EXPECT_EQ(Edges(answer.output.result_rect), (std::vector<std::int32_t>{0, 0, 0, 80}));
    EXPECT_EQ(Edges(answer.output.max_result_rect), (std::vector<std::int32_t>{0, 0, 0, 80}));
}

/// A rectangle for every way in which an interval can be empty or lie to the other one's, in x
/// combined with those in y.
std::vector<PF_LRect> AllRelations() {
    const std::vector<std::pair<std::int32_t, std::int32_t>> spans{
        {0, 50},  {10, 40},  {-10, 60}, {-20, 20}, {30, 70}, {-20, 0},
        {50, 80}, {-40, -9}, {60, 90},  {25, 25},  {40, 10}, {0, 0}};
    std::vector<PF_LRect> rectangles;
    for (const auto& [left, right] : spans) {
        for (const auto& [top, bottom] : spans) {
            rectangles.push_back({left, top, right, bottom});
        }
    }
    return rectangles;
}

TEST(PreRender, JoinsAndCutsInEveryRelationOfTheRectanglesEmptyOnesOnEitherSide) {
    for (const auto& [width, height] :
         {std::pair{50, 50}, std::pair{0, 50}, std::pair{50, 0}, std::pair{0, 0}}) {
        const auto host = ReadyHost(SizedHost(width, height));
        const PF_LRect bounds{0, 0, width, height};
        for (const PF_LRect& layer : AllRelations()) {
            for (const PF_LRect& request :
                 {PF_LRect{0, 0, 50, 50}, PF_LRect{5, 6, 30, 31}, PF_LRect{-90, -90, 90, 90},
                  PF_LRect{45, -20, 70, 5}, PF_LRect{50, 50, 60, 60}, PF_LRect{9, 9, 9, 20},
                  PF_LRect{30, 20, 10, 40}}) {
                const Answer answer = PreRender(*host, request, {layer, layer, 0});
                ASSERT_EQ(answer.result.error, 0);
                ASSERT_TRUE(answer.result.leaks.empty()) << answer.result.report();
                ASSERT_EQ(Edges(answer.output.result_rect),
                          Edges(Intersection(Union(layer, bounds), request)))
                    << ::testing::PrintToString(Edges(layer)) << " asked for "
                    << ::testing::PrintToString(Edges(request));
                ASSERT_EQ(Edges(answer.output.max_result_rect), Edges(Union(layer, bounds)))
                    << ::testing::PrintToString(Edges(layer));
            }
        }
    }
}

TEST(PreRender, MeasuresTheLayerAtThePresentResolutionTowardsZero) {
    struct Case {
        std::int32_t width, height;
        sdk::PF_RationalScale x, y;
        std::int32_t right, bottom;
    };
    const std::vector<Case> cases{
        {101, 81, {1, 2}, {1, 2}, 50, 40},
        {100, 100, {1, 3}, {2, 3}, 33, 66},
        {101, 81, {1, 1}, {1, 4}, 101, 20},
        {1, 1, {1, 2}, {1, 2}, 0, 0},
        {99, 99, {1, 3}, {1, 3}, 33, 33},
        {101, 81, {1, 0}, {1, 0}, 101, 81},
        {101, 81, {0, 0}, {3, 0}, 101, 81},
        {101, 81, {1, 2}, {7, 0}, 50, 81},
        {30000, 30000, {1, 1}, {1, 1}, 30000, 30000},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.width) + " x " + std::to_string(c.height) + " at " +
                     std::to_string(c.x.num) + "/" + std::to_string(c.x.den) + ", " +
                     std::to_string(c.y.num) + "/" + std::to_string(c.y.den));
        const auto host = ReadyHost(SizedHost(c.width, c.height, c.x, c.y));
        const Answer answer = PreRender(*host, {-100000, -100000, 100000, 100000}, {});
        EXPECT_EQ(answer.result.error, 0);
        EXPECT_EQ(Edges(answer.output.result_rect),
                  (std::vector<std::int32_t>{0, 0, c.right, c.bottom}));
        EXPECT_EQ(Edges(answer.output.max_result_rect),
                  (std::vector<std::int32_t>{0, 0, c.right, c.bottom}));
    }
}

TEST(PreRender, ReturnsTheCodeOfAFailedCheckoutAndStillSetsTheRectangles) {
    const auto host = ReadyHost(SizedHost(100, 80));
    for (const sdk::PF_Err code : {4, 512, 517, 1}) {
        const Answer answer =
            PreRender(*host, {10, 10, 200, 50}, {{-500, -500, 500, 500}, {}, code});
        EXPECT_EQ(answer.result.error, code);
        EXPECT_EQ(Edges(answer.output.result_rect), (std::vector<std::int32_t>{10, 10, 100, 50}));
        EXPECT_EQ(Edges(answer.output.max_result_rect), (std::vector<std::int32_t>{0, 0, 100, 80}));
    }
}

TEST(PreRender, WorksWithoutParametersAndAcquiresNothing) {
    const auto host = ReadyHost(SizedHost(100, 80));
    host->resetCalls();
    PreRender(*host, {0, 0, 100, 80}, {{0, 0, 100, 80}, {0, 0, 100, 80}, 0});
    EXPECT_EQ(host->calls()[headless::Slot::kCheckoutParam], 0u);
    EXPECT_TRUE(host->balance().empty()) << host->balance().text();
}

TEST(PreRender, CoversTheWholeLayerRoundASmallInput) {
    headless::HostSettings settings;
    settings.fullWidth = 60;
    settings.fullHeight = 40;
    const auto host = ReadyHost(settings);
    host->setInput(MakeWorld(OpaquePicture(12, 10), Depth::k8, 20, 15));
    const headless::PreRender preRender = host->smartPreRender(host->fullRequest(Depth::k8));
    EXPECT_EQ(preRender.result.error, 0);
    EXPECT_TRUE(preRender.result.clean()) << preRender.result.report();
    EXPECT_EQ(Edges(preRender.output.result_rect), (std::vector<std::int32_t>{0, 0, 60, 40}));
    EXPECT_EQ(Edges(preRender.output.max_result_rect), (std::vector<std::int32_t>{0, 0, 60, 40}));
    EXPECT_EQ(preRender.output.pre_render_data, nullptr);
    ASSERT_EQ(preRender.layers.size(), 1u);
    EXPECT_EQ(preRender.layers[0].index, 0);
}

}  // namespace
}  // namespace vireon::conformance
