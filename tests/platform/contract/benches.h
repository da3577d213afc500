// The workbenches that every contract suite runs on: the fakes first, then the real adapters.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "platform/contract/real_bench.h"
#include "platform/contract/virtual_bench.h"

namespace korvane::contract {

using Benches = testing::Types<VirtualBench, RealBench>;

struct BenchNames {
    template <class Bench>
    static std::string GetName(int) {
        return std::is_same_v<Bench, VirtualBench> ? "Virtual" : "Real";
    }
};

}  // namespace korvane::contract
