#include <velmor2/signal.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using velmor2::_internal::signal_t;
using velmor2::_internal::subscriber_base_t;

using int_signal_t = signal_t<int>;
using log_t = std::vector<std::string>;

// Writes "name:argument" to a shared log, then runs `then` (which may emit, connect or destroy
// the signal); `destroy_self` deletes the listener from inside its callback.
struct listener_t : subscriber_base_t {
    listener_t(std::string name, log_t& log) : name(std::move(name)), log(log) {}

    void on_event(int value) {
        log.push_back(name + ":" + std::to_string(value));
        if (then) {
            then(value);
        }
    }
    void on_other(int value) { log.push_back(name + "/other:" + std::to_string(value)); }
    void destroy_self(int) {
        log.push_back(name + ":dies");
        delete this;
    }

    std::string name;
    log_t& log;
    std::function<void(int)> then;
};

TEST(signal, same_member_connects_once_and_a_connection_made_while_emitting_is_reached) {
    log_t log;
    listener_t a("a", log), late("late", log);
    int_signal_t signal;
    signal.connect(&a, &listener_t::on_event);
    signal.connect(&a, &listener_t::on_event);
    signal.connect(&a, &listener_t::on_other);
    EXPECT_EQ(signal.connection_count(), 2u);
    a.then = [&](int) { signal.connect(&late, &listener_t::on_event); };
    signal(7);
    EXPECT_EQ(log, (log_t{"a:7", "a/other:7", "late:7"}));
}

TEST(signal, copy_calls_the_same_connections_and_assignment_appends_the_missing_ones) {
    log_t log;
    listener_t a("a", log), b("b", log), c("c", log);
    int_signal_t source;
    source.connect(&a, &listener_t::on_event);
    source.connect(&b, &listener_t::on_event);
    int_signal_t copy(source);
    copy(1);
    source(2);
    EXPECT_EQ(log, (log_t{"a:1", "b:1", "a:2", "b:2"}));

    log.clear();
    int_signal_t target;
    target.connect(&b, &listener_t::on_event);
    target.connect(&c, &listener_t::on_event);
    target = source;
    target(0);
    EXPECT_EQ(log, (log_t{"b:0", "c:0", "a:0"}));
    const int_signal_t& same = target;
    target = same;
    EXPECT_EQ(target.connection_count(), 3u);
}

TEST(signal, destroyed_subscribers_leave_the_signal_nested_emission_skips_the_dead) {
    log_t log;
    int_signal_t signal;
    {
        listener_t a("a", log);
        signal.connect(&a, &listener_t::on_event);
        auto other = std::make_unique<int_signal_t>();
        other->connect(&a, &listener_t::on_event);
        other.reset();
        EXPECT_EQ(signal.connection_count(), 1u);
    }
    EXPECT_EQ(signal.connection_count(), 0u);
    signal(1);
    EXPECT_TRUE(log.empty());

    // A nested emission calls every connection again and skips the dead.
    listener_t a("a", log), b("b", log);
    a.then = [&](int value) {
        if (value == 0) {
            signal(1);
        }
    };
    auto* dying = new listener_t("dying", log);
    signal.connect(&a, &listener_t::on_event);
    signal.connect(dying, &listener_t::destroy_self);
    // The second connection of the dead subscriber is skipped, then erased.
    signal.connect(dying, &listener_t::on_event);
    signal.connect(&b, &listener_t::on_event);
    signal(0);
    EXPECT_EQ(log, (log_t{"a:0", "a:1", "dying:dies", "b:1", "b:0"}));
    EXPECT_EQ(signal.connection_count(), 2u);
    log.clear();
    signal(2);
    EXPECT_EQ(log, (log_t{"a:2", "b:2"}));
}

TEST(signal, signal_destroyed_in_a_callback_ends_the_emission_nested_or_not) {
    log_t log;
    listener_t a("a", log), b("b", log);
    auto signal = std::make_unique<int_signal_t>();
    a.then = [&](int) { signal.reset(); };
    signal->connect(&a, &listener_t::on_event);
    signal->connect(&b, &listener_t::on_event);
    (*signal)(3);
    EXPECT_EQ(signal, nullptr);
    EXPECT_EQ(log, (log_t{"a:3"}));
    // Both subscribers outlive the signal; their destructors must not reach it.

    // Destroyed in a nested emission, it ends both.
    log.clear();
    signal = std::make_unique<int_signal_t>();
    listener_t outer("outer", log), middle("middle", log), last("last", log);
    outer.then = [&](int value) {
        if (value == 0) {
            (*signal)(1);
        }
    };
    last.then = [&](int value) {
        if (value == 1) {
            signal.reset();
        }
    };
    signal->connect(&outer, &listener_t::on_event);
    signal->connect(&middle, &listener_t::on_other);
    signal->connect(&last, &listener_t::on_event);
    (*signal)(0);
    EXPECT_EQ(signal, nullptr);
    // outer:0 emits 1 inside, whose last call ends it all: nothing more of the outer emission.
    EXPECT_EQ(log, (log_t{"outer:0", "outer:1", "middle/other:1", "last:1"}));
}

TEST(signal, a_throwing_callback_leaves_the_signal_whole) {
    log_t log;
    auto signal = std::make_unique<int_signal_t>();
    listener_t a("a", log), b("b", log), c("c", log);
    auto* dying = new listener_t("dying", log);
    b.then = [&](int value) {
        if (value == 1) {
            throw value;
        }
        if (value == 2) {
            (*signal)(1);
        }
        if (value == 3) {
            signal.reset();
            throw value;
        }
    };
    signal->connect(&a, &listener_t::on_event);
    signal->connect(dying, &listener_t::destroy_self);
    signal->connect(&b, &listener_t::on_event);
    signal->connect(&c, &listener_t::on_event);
    // Thrown directly, and from a nested emission; the dead entry goes either way.
    EXPECT_THROW((*signal)(1), int);
    EXPECT_THROW((*signal)(2), int);
    EXPECT_EQ(signal->connection_count(), 3u);
    // The lock is free: another thread connects without waiting for anything.
    listener_t d("d", log);
    std::thread([&] { signal->connect(&d, &listener_t::on_event); }).join();
    log.clear();
    (*signal)(4);
    EXPECT_EQ(log, (log_t{"a:4", "b:4", "c:4", "d:4"}));
    // A callback destroys the signal, then throws: the lock is freed all the same.
    EXPECT_THROW((*signal)(3), int);
    EXPECT_EQ(signal, nullptr);
}

} // namespace
