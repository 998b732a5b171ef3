#include "simd/level.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "simd/kernel_table.h"

namespace vireon::simd {
namespace {

TEST(Level, EveryNameIsItsOwn) {
    std::set<std::string> names;
    for (const Level level : kLevels) names.insert(LevelName(level));
    EXPECT_EQ(names, (std::set<std::string>{"plain", "scalar", "sse2", "avx2", "avx512"}));
}

TEST(Level, WhatEveryProcessorHasIsThere) {
    EXPECT_TRUE(HasLevel(Level::kPlain));
    EXPECT_TRUE(HasLevel(Level::kScalar));
    EXPECT_TRUE(HasLevel(Level::kSse2));
}

TEST(Level, TheActiveOneIsOneThatTheMachineHas) {
    EXPECT_TRUE(HasLevel(ActiveLevel()));
    EXPECT_EQ(ActiveLevel(), ActiveLevel());
    EXPECT_EQ(ActiveKernels(), KernelsOf(ActiveLevel()));
}

TEST(Level, OnlyThePlainOneHasNoKernels) {
    std::set<const KernelTable*> tables;
    for (const Level level : kLevels) {
        EXPECT_EQ(KernelsOf(level) == nullptr, level == Level::kPlain) << LevelName(level);
        tables.insert(KernelsOf(level));
    }
    EXPECT_EQ(tables.size(), std::size(kLevels)) << "every level has a table of its own";
}

}  // namespace
}  // namespace vireon::simd
