#include "host/ae/suite_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "command.h"

namespace vireon::test {
namespace {

constexpr std::size_t kSuiteCount = std::size(sdk::kAllSuites);

/// A table of its own for every suite; nothing calls into it.
const void* TableOf(std::size_t number) {
    static const char tables[kSuiteCount] = {};
    return &tables[number];
}

Scene SceneWithAllSuites() {
    Scene scene;
    scene.prepare = [](headless::Host& host) {
        for (std::size_t i = 0; i < kSuiteCount; ++i) {
            host.offerSuite(sdk::kAllSuites[i].name, sdk::kAllSuites[i].version, TableOf(i));
        }
    };
    return scene;
}

TEST(SuiteList, NamesEverySuiteOnce) {
    std::set<Spy::Suite> suites;
    for (const sdk::SuiteId& id : sdk::kAllSuites) suites.emplace(id.name, id.version);
    EXPECT_EQ(suites.size(), kSuiteCount);
    EXPECT_GE(kSuiteCount, 100u);
    for (const sdk::SuiteId& id :
         {sdk::kWorldSuite2, sdk::kColorParamSuite1, sdk::kParamUtilsSuite2, sdk::kHandleSuite2,
          sdk::kAppSuite6, sdk::kPathQuerySuite1, sdk::kPathDataSuite1}) {
        EXPECT_EQ(suites.count({id.name, id.version}), 1u) << id.name;
    }
    for (const char* name :
         {"PF World Transform Suite", "PF Sampling8 Suite", "PF Sampling16 Suite",
          "PF Iterate8 Suite", "PF iterate16 Suite", "PF iterateFloat Suite"}) {
        EXPECT_TRUE(std::any_of(suites.begin(), suites.end(), [&](const Spy::Suite& suite) {
            return suite.first == name;
        })) << name;
    }
}

TEST(SuiteSet, AcquiresEachSuiteWhenItIsFirstAskedForAndReleasesItOnce) {
    InRender(SceneWithAllSuites(), [](Command& command) {
        std::optional<SuiteSet> set(std::in_place, &command.basic);
        EXPECT_TRUE(command.spy.acquired.empty());
        std::vector<Spy::Suite> all;
        for (std::size_t i = 0; i < kSuiteCount; ++i) {
            const sdk::SuiteId& id = sdk::kAllSuites[i];
            all.emplace_back(id.name, id.version);
            EXPECT_EQ(set->get(id), TableOf(i)) << id.name << " " << id.version;
            EXPECT_EQ(command.spy.acquired.size(), i + 1);
            // By a name of equal letters elsewhere in memory.
            const std::string name = id.name;
            EXPECT_EQ(set->get({name.c_str(), id.version}), TableOf(i));
            EXPECT_EQ(command.spy.acquired.size(), i + 1);
        }
        EXPECT_EQ(command.spy.acquired, all);
        EXPECT_TRUE(command.spy.released.empty());
        set.reset();
        std::sort(command.spy.released.begin(), command.spy.released.end());
        std::sort(all.begin(), all.end());
        EXPECT_EQ(command.spy.released, all);
    });
}

TEST(SuiteSet, MissingSuitesAreNullAndNotReleased) {
    InRender([](Command& command) {
        std::optional<SuiteSet> set(std::in_place, &command.basic);
        EXPECT_EQ(set->get({"PF Transition Suite", 1}), nullptr);
        EXPECT_EQ(set->get({"AEGP Memory Suite", 1}), nullptr);
        EXPECT_NE(set->get(sdk::kHandleSuite2), nullptr);
        set.reset();
        EXPECT_EQ(command.spy.released, (std::vector<Spy::Suite>{{"PF Handle Suite", 2}}));
    });
}

TEST(SuiteSet, SuitesThatNoHostOffersAreNull) {
    InRender(SceneWithAllSuites(), [](Command& command) {
        SuiteSet set(&command.basic);
        EXPECT_EQ(set.get({"PF Handle Suite", 7}), nullptr);
        EXPECT_EQ(set.get({"pf handle suite", 2}), nullptr);
        EXPECT_EQ(set.get({"", 0}), nullptr);
    });
}

TEST(SuiteSet, HostsWithoutSuitesHaveNone) {
    SuiteSet set(nullptr);
    for (const sdk::SuiteId& id : sdk::kAllSuites) EXPECT_EQ(set.get(id), nullptr);
}

TEST(SuiteSet, OfTheHostObjectEndsWithIt) {
    InRender([](Command& command) {
        std::optional<PluginHost_AE_Impl> host(std::in_place, &command.in, &command.out,
                                               command.params, command.output);
        const std::size_t before = command.spy.acquired.size();
        EXPECT_NE(host->suites().get<sdk::PF_HandleSuite1>(sdk::kHandleSuite2), nullptr);
        EXPECT_EQ(command.spy.acquired.size(), before + 1);
        host.reset();
        EXPECT_EQ(std::count(command.spy.released.begin(), command.spy.released.end(),
                             Spy::Suite("PF Handle Suite", 2)),
                  1);
    });
}

}  // namespace
}  // namespace vireon::test
