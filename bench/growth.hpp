// Growth rows: one workload at several sizes, registered smallest first. Each row prints
// `growth`, its time per item divided by that of the family's smallest size: about 1 when the
// cost is linear, about the size ratio (10 for sizes ten apart) when it is quadratic.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <map>
#include <string>

namespace velmor_bench {

/// Runs `body` once per iteration and records the `growth` counter of a row of `family`
/// handling `items` items (the size of the row).
template <typename Body>
void run_growth(benchmark::State& state, const std::string& family, double items, Body&& body) {
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        body();
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    const double per_item = elapsed.count() / static_cast<double>(state.iterations()) / items;
    // The smallest size runs first; its last (longest) run is its reported one.
    struct first_t {
        double items;
        double per_item;
    };
    static std::map<std::string, first_t> smallest;
    first_t& first = smallest.emplace(family, first_t{items, per_item}).first->second;
    if (first.items == items) {
        first.per_item = per_item;
    }
    state.counters["growth"] = per_item / first.per_item;
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * items));
}

} // namespace velmor_bench
