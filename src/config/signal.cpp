// Connection bookkeeping and emission of signals.
//
// Every read and write of a signal's connection list and emission state happens under the
// signal's lock, and every read and write of a subscriber's signal list under the subscriber's
// lock. Lock order: a signal's lock, then a subscriber's, everywhere; a dying subscriber takes
// the signals' locks only after letting go of its own.
#include <velmor2/signal.hpp>

#include <algorithm>

namespace velmor2::_internal {

subscriber_base_t::subscriber_base_t() = default;

subscriber_base_t::subscriber_base_t(const subscriber_base_t&) {}

subscriber_base_t& subscriber_base_t::operator=(const subscriber_base_t&) {
    return *this;
}

subscriber_base_t::~subscriber_base_t() {
    disconnect_signals();
}

void subscriber_base_t::disconnect_signals() {
    // The own lock is not held while a signal's is taken: connect and a dying signal take the
    // signal's lock first, and one order for every pair keeps the locks deadlock-free. The
    // signals in the copy stay alive meanwhile, since a signal and a subscriber connected to
    // each other are not destroyed at the same moment on two threads.
    std::list<signal_base_t*> signals;
    {
        threading::mutex_guard_t own(subscriber_mutex);
        signals.swap(connected_signals);
    }
    signals.sort();
    signals.unique();
    for (signal_base_t* signal : signals) {
        threading::mutex_guard_t guard(*signal->connections_mutex);
        signal->erase_subscriber(this);
    }
}

signal_base_t::signal_base_t() : connections_mutex(new threading::mutex_t) {}

signal_base_t::signal_base_t(const signal_base_t& other)
    : subscriber_base_t(), connections_mutex(new threading::mutex_t) {
    threading::mutex_guard_t guard(*other.connections_mutex);
    for (const connection_t& connection : other.connections) {
        if (connection.subscriber != nullptr) {
            add_connection(connection);
        }
    }
}

signal_base_t& signal_base_t::operator=(const signal_base_t& other) {
    threading::mutex_guard_t source(*other.connections_mutex);
    threading::mutex_guard_t target(*connections_mutex);
    // On self-assignment every connection is already there, so the walked list never grows.
    for (const connection_t& connection : other.connections) {
        if (connection.subscriber != nullptr) {
            add_connection(connection);
        }
    }
    return *this;
}

signal_base_t::~signal_base_t() {
    threading::mutex_t* mutex = connections_mutex;
    bool emitting = false;
    {
        threading::mutex_guard_t guard(*mutex);
        if (emission_flag != nullptr) {
            // Only the emitting thread can see the flag set: others wait for the lock until
            // the emission has cleared it.
            *emission_flag = false;
            emitting = true;
        }
        disconnect_all();
    }
    if (!emitting) {
        delete mutex;
    }
}

std::size_t signal_base_t::connection_count() const {
    threading::mutex_guard_t guard(*connections_mutex);
    return static_cast<std::size_t>(
        std::count_if(connections.begin(), connections.end(), [](const connection_t& connection) {
            return connection.subscriber != nullptr;
        }));
}

bool signal_base_t::has_connection(const connection_t& connection) const {
    return std::any_of(connections.begin(), connections.end(), [&](const connection_t& c) {
        return c.subscriber != nullptr && c.target == connection.target &&
               std::memcmp(c.method.bytes, connection.method.bytes, sizeof(c.method.bytes)) == 0;
    });
}

void signal_base_t::add_connection(const connection_t& connection) {
    threading::mutex_guard_t guard(*connections_mutex);
    if (has_connection(connection)) {
        return;
    }
    {
        threading::mutex_guard_t subscriber(connection.subscriber->subscriber_mutex);
        connection.subscriber->connected_signals.push_back(this);
    }
    connections.push_back(connection);
}

void signal_base_t::erase_subscriber(subscriber_base_t* subscriber) {
    if (emission_flag != nullptr) {
        for (connection_t& connection : connections) {
            if (connection.subscriber == subscriber) {
                connection = connection_t();
            }
        }
        return;
    }
    connections.remove_if([&](const connection_t& c) { return c.subscriber == subscriber; });
}

void signal_base_t::disconnect_all() {
    for (connection_t& connection : connections) {
        if (connection.subscriber != nullptr) {
            threading::mutex_guard_t guard(connection.subscriber->subscriber_mutex);
            connection.subscriber->connected_signals.remove(this);
        }
        if (emission_flag != nullptr) {
            connection = connection_t();
        }
    }
    if (emission_flag == nullptr) {
        connections.clear();
    }
}

void signal_base_t::emit_packed(caller_t caller, void* arguments) {
    // Ends the emission on every way out, a throwing callback's too: the lock is released and
    // the outermost emission clears the walk state and erases dead entries, unless a callback
    // destroyed the signal, when nothing of it may be touched and the outermost emission frees
    // the lock.
    struct emission_t {
        signal_base_t* signal;
        threading::mutex_t* mutex;
        bool alive = true;
        bool outermost = false;
        bool* flag = nullptr;

        ~emission_t() {
            if (*flag && outermost) {
                signal->emission_flag = nullptr;
                signal->connections.remove_if(
                    [](const connection_t& c) { return c.subscriber == nullptr; });
            }
            mutex->release();
            if (!*flag && outermost) {
                delete mutex;
            }
        }
    };
    connections_mutex->acquire();
    emission_t emission{this, connections_mutex};
    emission.outermost = emission_flag == nullptr;
    if (emission.outermost) {
        emission_flag = &emission.alive;
    }
    emission.flag = emission_flag;
    // Entries are never erased during an emission, so the iterator stays valid; `end()` is
    // read again each round so that connections added by callbacks are reached.
    for (auto it = connections.begin(); it != connections.end(); ++it) {
        if (it->subscriber == nullptr) {
            continue;
        }
        const connection_t connection = *it;
        caller(connection, arguments);
        if (!*emission.flag) {
            // A callback destroyed the signal: nothing of it may be touched any more.
            return;
        }
    }
}

} // namespace velmor2::_internal
