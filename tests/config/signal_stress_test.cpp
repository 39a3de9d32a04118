// Connect, emit and destroy signals and subscribers from several threads at once. Meant to run
// under ThreadSanitizer as well.
#include <velmor2/signal.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

using velmor2::_internal::signal_t;
using velmor2::_internal::subscriber_base_t;
using int_signal_t = signal_t<int>;

constexpr int thread_count = 4;
constexpr int rounds = 300;

// Counts calls; emits again for one argument; destroys itself for its owner's argument.
struct counter_t : subscriber_base_t {
    counter_t(std::atomic<long>& calls, int_signal_t* signal, int owner)
        : calls(calls), signal(signal), owner(owner) {}
    ~counter_t() override {
        // Emissions on other threads may still call in until this returns.
        disconnect_signals();
    }
    void on(int value) {
        ++calls;
        if (value == nested_code(owner)) {
            (*signal)(-1);
        } else if (value == death_code(owner)) {
            delete this;
        }
    }
    static int nested_code(int owner) { return 1000 + owner; }
    static int death_code(int owner) { return 2000 + owner; }

    std::atomic<long>& calls;
    int_signal_t* signal;
    int owner;
};

TEST(signal_stress, threads_connect_emit_and_destroy_concurrently) {
    std::atomic<long> calls{0};
    int_signal_t shared[2];
    // Long-lived subscribers, connected to the shared signals and to short-lived ones.
    std::vector<std::unique_ptr<counter_t>> resident;
    for (int i = 0; i < 2; ++i) {
        resident.push_back(std::make_unique<counter_t>(calls, &shared[i], -1));
        shared[i].connect(resident.back().get(), &counter_t::on);
    }

    auto work = [&](int owner) {
        for (int round = 0; round < rounds; ++round) {
            int_signal_t& signal = shared[round % 2];
            {
                counter_t local(calls, &signal, owner);
                signal.connect(&local, &counter_t::on);
                signal(round);
                signal(counter_t::nested_code(owner));
            }
            auto* doomed = new counter_t(calls, &signal, owner);
            signal.connect(doomed, &counter_t::on);
            signal(counter_t::death_code(owner));

            auto own = std::make_unique<int_signal_t>();
            own->connect(resident[0].get(), &counter_t::on);
            own->connect(resident[1].get(), &counter_t::on);
            int_signal_t copy(*own);
            (*own)(round);
            copy = *own;
            own.reset();
            copy(round);
        }
    };
    std::vector<std::thread> threads;
    for (int owner = 0; owner < thread_count; ++owner) {
        threads.emplace_back(work, owner);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(shared[0].connection_count(), 1u);
    EXPECT_EQ(shared[1].connection_count(), 1u);
    // Every round makes at least these calls of this thread's own subscribers.
    EXPECT_GE(calls.load(), static_cast<long>(thread_count) * rounds * 6);
}

} // namespace
