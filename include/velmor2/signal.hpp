// Signals and subscribers: member functions called in connection order when a signal is
// emitted, with both ends removing the connection when either is destroyed.
#pragma once

#include <velmor2/export.hpp>
#include <velmor2/threading.hpp>

#include <cstring>
#include <list>
#include <tuple>
#include <type_traits>

namespace velmor2::_internal {

class signal_base_t;

/// Fills the argument slots that a signal does not use.
struct dummy_t {};

/// Base of every object whose member functions are connected to signals. Destroying it removes
/// its connections from every signal, also from one that is emitting at the time.
///
/// A signal and a subscriber connected to each other must not be destroyed at the same moment
/// on two threads. An object destroyed on a thread other than the one emitting should call
/// `disconnect_signals()` first thing in its destructor: the base destructor runs only after
/// the derived parts are gone, too late to stop an emission on another thread from calling in.
class VELMOR_API subscriber_base_t {
  public:
    /// A subscriber with no connections.
    subscriber_base_t();
    /// A subscriber with no connections: signals connected to `other` do not call the copy.
    subscriber_base_t(const subscriber_base_t& other);
    /// Keeps this object's own connections.
    subscriber_base_t& operator=(const subscriber_base_t& other);
    /// Removes every connection to this object (see `disconnect_signals`).
    virtual ~subscriber_base_t();

  protected:
    /// Removes every connection to this object from the signals that hold one. Waits for
    /// emissions on other threads to end; an emission on this thread skips the object from
    /// now on. Afterwards no signal calls this object.
    void disconnect_signals();

  private:
    friend class signal_base_t;

    /// Signals holding a connection to this object, one entry per connection.
    std::list<signal_base_t*> connected_signals;
    /// Guards `connected_signals`.
    threading::mutex_t subscriber_mutex;
};

/// The argument-independent part of a signal: the connection list, its lock and the emission
/// state. A signal is itself a subscriber, so it may be connected to another signal.
class VELMOR_API signal_base_t : public subscriber_base_t {
  public:
    /// A signal with no connections.
    signal_base_t();
    /// A new signal that holds every connection of `other` as well.
    signal_base_t(const signal_base_t& other);
    /// Adds the connections of `other` that this signal lacks; its own stay.
    signal_base_t& operator=(const signal_base_t& other);
    /// Ends a running emission at once and removes every connection from its subscriber.
    ~signal_base_t() override;

    /// Number of live connections.
    std::size_t connection_count() const;

  protected:
    /// Code pointer of the generated function that calls a member function.
    using erased_invoker_t = void (*)();

    /// Room for any member-function pointer (several words with some ABIs' virtual bases).
    struct method_storage_t {
        alignas(void*) unsigned char bytes[4 * sizeof(void*)] = {};
    };

    /// One connection; a dead entry has every field cleared.
    struct connection_t {
        /// The object `method` is called on.
        void* target = nullptr;
        /// The same object seen as a subscriber; null marks a dead entry.
        subscriber_base_t* subscriber = nullptr;
        /// The member function, compared bit for bit.
        method_storage_t method;
        /// Calls `method` on `target` with the emitted arguments.
        erased_invoker_t invoker = nullptr;
    };

    /// Calls one connection with the arguments packed at `arguments`.
    using caller_t = void (*)(const connection_t& connection, void* arguments);

    /// Adds `connection` unless one with the same target and method exists.
    void add_connection(const connection_t& connection);
    /// Calls every live connection in order through `caller`; exception-safe.
    void emit_packed(caller_t caller, void* arguments);

  private:
    void disconnect_all();
    bool has_connection(const connection_t& connection) const;
    void erase_subscriber(subscriber_base_t* subscriber);

    friend class subscriber_base_t;

    /// The connections, in connection order.
    std::list<connection_t> connections;
    /// Null when no emission runs; otherwise the alive flag of the outermost emission.
    bool* emission_flag = nullptr;
    /// On the heap so that an emission can release it after a callback destroyed the signal.
    threading::mutex_t* connections_mutex;
};

/// A signal whose subscribers' member functions take `Args...`.
template <typename... Args> struct signal_templ : signal_base_t {
    /// Connects `method` of `target`; connecting the same pair twice leaves one connection.
    /// Callbacks run on the emitting thread with the signal's lock held; they may connect,
    /// emit or destroy the signal or themselves.
    template <typename T> void connect(T* target, void (T::*method)(Args...)) {
        static_assert(std::is_base_of<subscriber_base_t, T>::value,
                      "a connected object derives from subscriber_base_t");
        static_assert(sizeof(method) <= sizeof(method_storage_t), "member pointer too large");
        connection_t connection;
        connection.target = target;
        connection.subscriber = target;
        std::memcpy(connection.method.bytes, &method, sizeof(method));
        connection.invoker = reinterpret_cast<erased_invoker_t>(&invoke<T>);
        add_connection(connection);
    }

    /// Emits: calls every connection, in connection order, with `args`. A callback that
    /// throws ends the emission there: the exception reaches the caller, and the signal is
    /// whole (lock released, ready for the next emission).
    void operator()(Args... args) {
        std::tuple<Args&...> packed(args...);
        emit_packed(&call, &packed);
    }

  private:
    using invoker_t = void (*)(void* target, const void* method, Args&... args);

    template <typename T> static void invoke(void* target, const void* method, Args&... args) {
        void (T::*member)(Args...);
        std::memcpy(&member, method, sizeof(member));
        (static_cast<T*>(target)->*member)(args...);
    }

    static void call(const connection_t& connection, void* arguments) {
        auto& packed = *static_cast<std::tuple<Args&...>*>(arguments);
        const auto invoker = reinterpret_cast<invoker_t>(connection.invoker);
        std::apply([&](Args&... args) { invoker(connection.target, &connection.method, args...); },
                   packed);
    }
};

/// Picks the `signal_templ` of the argument types that are not `dummy_t`.
template <typename Kept, typename... Rest> struct signal_of;
template <typename... Kept> struct signal_of<std::tuple<Kept...>> {
    using type = signal_templ<Kept...>;
};
template <typename... Kept, typename... Rest>
struct signal_of<std::tuple<Kept...>, dummy_t, Rest...> : signal_of<std::tuple<Kept...>, Rest...> {
};
template <typename... Kept, typename First, typename... Rest>
struct signal_of<std::tuple<Kept...>, First, Rest...>
    : signal_of<std::tuple<Kept..., First>, Rest...> {};

/// A signal of up to six arguments; unused slots are `dummy_t`:
///
///   signal_t<const std::wstring&, int>  => connect(obj, &T::f) with void T::f(const std::wstring&,
///   int)
///                                          emit as signal(L"key", 3)
template <typename A1 = dummy_t, typename A2 = dummy_t, typename A3 = dummy_t,
          typename A4 = dummy_t, typename A5 = dummy_t, typename A6 = dummy_t>
class signal_t : public signal_of<std::tuple<>, A1, A2, A3, A4, A5, A6>::type {};

} // namespace velmor2::_internal
