#include <velmor2/signal.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using velmor2::_internal::signal_t;
using velmor2::_internal::subscriber_base_t;

using int_signal_t = signal_t<int>;
using log_t = std::vector<std::string>;

// Writes "name:argument" to a shared log; can be told to destroy a signal or itself, or to
// emit again, from inside the callback.
struct listener_t : subscriber_base_t {
    listener_t(std::string name, log_t& log) : name(std::move(name)), log(log) {}

    void on_event(int value) {
        log.push_back(name + ":" + std::to_string(value));
        if (signal_to_destroy != nullptr) {
            signal_to_destroy->reset();
        }
        if (nested != nullptr && value == 0) {
            (*nested)(1);
        }
    }
    void on_other(int value) { log.push_back(name + "/other:" + std::to_string(value)); }
    void destroy_self(int) {
        log.push_back(name + ":dies");
        delete this;
    }

    std::string name;
    log_t& log;
    std::unique_ptr<int_signal_t>* signal_to_destroy = nullptr;
    int_signal_t* nested = nullptr;
};

TEST(signal, same_member_of_same_object_connects_once) {
    log_t log;
    listener_t a("a", log);
    int_signal_t signal;
    signal.connect(&a, &listener_t::on_event);
    signal.connect(&a, &listener_t::on_event);
    signal.connect(&a, &listener_t::on_other);
    EXPECT_EQ(signal.connection_count(), 2u);
    signal(7);
    EXPECT_EQ(log, (log_t{"a:7", "a/other:7"}));
}

TEST(signal, calls_connections_in_order_with_the_arguments) {
    log_t log;
    listener_t a("a", log), b("b", log);
    signal_t<const std::wstring&, int> signal;
    struct pair_listener_t : subscriber_base_t {
        std::wstring seen;
        int number = 0;
        void on(const std::wstring& text, int value) {
            seen += text;
            number += value;
        }
    } first, second;
    signal.connect(&first, &pair_listener_t::on);
    signal.connect(&second, &pair_listener_t::on);
    signal(L"key", 3);
    signal(L"!", 4);
    EXPECT_EQ(first.seen, L"key!");
    EXPECT_EQ(second.number, 7);
}

TEST(signal, copy_calls_the_source_connections_and_the_source_still_calls_each_once) {
    log_t log;
    listener_t a("a", log), b("b", log);
    int_signal_t source;
    source.connect(&a, &listener_t::on_event);
    source.connect(&b, &listener_t::on_event);
    int_signal_t copy(source);
    copy(1);
    source(2);
    EXPECT_EQ(log, (log_t{"a:1", "b:1", "a:2", "b:2"}));
}

TEST(signal, assignment_appends_the_missing_connections) {
    log_t log;
    listener_t a("a", log), b("b", log), c("c", log);
    int_signal_t source, target;
    source.connect(&a, &listener_t::on_event);
    source.connect(&b, &listener_t::on_event);
    target.connect(&b, &listener_t::on_event);
    target.connect(&c, &listener_t::on_event);
    target = source;
    target(0);
    EXPECT_EQ(log, (log_t{"b:0", "c:0", "a:0"}));
    const int_signal_t& same = target;
    target = same;
    EXPECT_EQ(target.connection_count(), 3u);
}

TEST(signal, subscriber_destroyed_first_leaves_the_signal_and_the_other_way_round) {
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
}

TEST(signal, subscriber_destroyed_in_its_own_callback_is_skipped_then_erased) {
    log_t log;
    listener_t before("before", log), after("after", log);
    auto* dying = new listener_t("dying", log);
    int_signal_t signal;
    signal.connect(&before, &listener_t::on_event);
    signal.connect(dying, &listener_t::destroy_self);
    signal.connect(dying, &listener_t::on_event);
    signal.connect(&after, &listener_t::on_event);
    signal(5);
    EXPECT_EQ(log, (log_t{"before:5", "dying:dies", "after:5"}));
    EXPECT_EQ(signal.connection_count(), 2u);
}

TEST(signal, signal_destroyed_in_a_callback_ends_the_emission) {
    log_t log;
    listener_t a("a", log), b("b", log);
    auto signal = std::make_unique<int_signal_t>();
    a.signal_to_destroy = &signal;
    signal->connect(&a, &listener_t::on_event);
    signal->connect(&b, &listener_t::on_event);
    (*signal)(3);
    EXPECT_EQ(signal, nullptr);
    EXPECT_EQ(log, (log_t{"a:3"}));
    // Both subscribers outlive the signal; their destructors must not reach it.
}

TEST(signal, signal_destroyed_in_a_nested_emission_ends_both) {
    log_t log;
    auto signal = std::make_unique<int_signal_t>();
    listener_t outer("outer", log), killer("killer", log), last("last", log);
    outer.nested = signal.get();
    signal->connect(&outer, &listener_t::on_event);
    signal->connect(&killer, &listener_t::on_other);
    signal->connect(&last, &listener_t::on_event);
    struct destroyer_t : subscriber_base_t {
        std::unique_ptr<int_signal_t>* signal;
        void on(int value) {
            if (value == 1) {
                signal->reset();
            }
        }
    } destroyer;
    destroyer.signal = &signal;
    signal->connect(&destroyer, &destroyer_t::on);
    (*signal)(0);
    EXPECT_EQ(signal, nullptr);
    // outer:0 emits 1 inside: outer:1, killer/other:1, last:1, then the destroyer ends it all.
    EXPECT_EQ(log, (log_t{"outer:0", "outer:1", "killer/other:1", "last:1"}));
}

TEST(signal, nested_emission_calls_every_connection_again) {
    log_t log;
    int_signal_t signal;
    listener_t a("a", log), b("b", log);
    a.nested = &signal;
    auto* dying = new listener_t("dying", log);
    signal.connect(&a, &listener_t::on_event);
    signal.connect(dying, &listener_t::destroy_self);
    signal.connect(&b, &listener_t::on_event);
    signal(0);
    EXPECT_EQ(log, (log_t{"a:0", "a:1", "dying:dies", "b:1", "b:0"}));
    EXPECT_EQ(signal.connection_count(), 2u);
    log.clear();
    signal(2);
    EXPECT_EQ(log, (log_t{"a:2", "b:2"}));
}

TEST(signal, connection_made_during_an_emission_is_reached_by_it) {
    log_t log;
    int_signal_t signal;
    listener_t late("late", log);
    struct connector_t : subscriber_base_t {
        int_signal_t* signal;
        listener_t* late;
        void on(int) { signal->connect(late, &listener_t::on_event); }
    } connector;
    connector.signal = &signal;
    connector.late = &late;
    signal.connect(&connector, &connector_t::on);
    signal(9);
    EXPECT_EQ(log, (log_t{"late:9"}));
}

TEST(signal, copied_subscriber_is_not_connected) {
    log_t log;
    int_signal_t signal;
    listener_t a("a", log);
    signal.connect(&a, &listener_t::on_event);
    {
        listener_t copy(a);
        copy.name = "copy";
    }
    signal(4);
    EXPECT_EQ(log, (log_t{"a:4"}));
}

} // namespace
