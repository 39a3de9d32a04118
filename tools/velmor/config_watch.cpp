// velmor config FILE watch. The wait is the platform's own: poll on the descriptor on POSIX,
// a timed wait on the handle on Windows; SIGINT ends it either way.
#include "config_watch.hpp"

#include "command.hpp"
#include "files.hpp"
#include "value_text.hpp"

#include <csignal>
#include <cstdio>

#if defined(_WIN32)
#include <windows.h>
#else
#include <poll.h>
#endif

namespace velmor_tool {
namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void on_interrupt(int) {
    interrupted = 1;
}

// Waits until the handle signals a change; false once SIGINT has arrived.
bool wait_for_change(std::intptr_t handle) {
    while (interrupted == 0) {
#if defined(_WIN32)
        if (WaitForSingleObject(reinterpret_cast<HANDLE>(handle), 200) == WAIT_OBJECT_0) {
            return true;
        }
#else
        pollfd fd{static_cast<int>(handle), POLLIN, 0};
        if (poll(&fd, 1, -1) == 1) {
            return true;
        }
#endif
    }
    return false;
}

struct printer_t : velmor2::_internal::subscriber_base_t {
    bool failed = false;
    void on_change(const std::wstring& key, const boost::any&, const boost::any& value) {
        const auto [type_name, text] = describe_value(value);
        out(key + (value.empty() ? L"\t(removed)\n" : L"\t" + type_name + L"\t" + text + L"\n"));
        failed = failed || std::fflush(stdout) != 0;
    }
};

} // namespace

int watch_changes(velmor2::advanced_xml_config_t& store, const std::wstring& name,
                  const velmor2::path_t& file) {
    if (!store.watch_file(file)) {
        report(L"config", name, L"its folder cannot be watched");
        return exit_failed;
    }
#if defined(_WIN32)
    std::signal(SIGINT, on_interrupt);
#else
    // Without SA_RESTART, so that the signal ends the wait.
    struct sigaction action = {};
    action.sa_handler = on_interrupt;
    sigaction(SIGINT, &action, nullptr);
#endif
    printer_t printer;
    store.value_changed.connect(&printer, &printer_t::on_change);
    while (!printer.failed && wait_for_change(store.watch_handle())) {
        store.reload_changes();
    }
    return printer.failed ? exit_failed : exit_ok;
}

} // namespace velmor_tool
