// The scoped time logger.
#include <velmor2/runtime.hpp>

#include "os/diagnostics.hpp"
#include "runtime/time_log_line.hpp"
#include "unicode/convert.hpp"

#include <sstream>

namespace velmor2 {

namespace _internal {

std::wstring time_log_line(const std::wstring& name, std::int32_t elapsed_ms) {
    std::wostringstream line;
    line << name << L' ' << elapsed_ms / 1000.0;
    return line.str();
}

} // namespace _internal

namespace debugging {

time_logger_t::time_logger_t(const std::wstring& name)
    : start_(_internal::os::elapsed_clock_ms()), name_(name) {}

time_logger_t::time_logger_t(const char* name)
    : start_(_internal::os::elapsed_clock_ms()), name_(_internal::to_ustring(name)) {}

time_logger_t::time_logger_t(const time_logger_t& other) = default;

time_logger_t& time_logger_t::operator=(const time_logger_t& other) = default;

time_logger_t::~time_logger_t() {
    // The clock wraps around in 32 bits; the difference is taken the same way.
    const auto elapsed =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(_internal::os::elapsed_clock_ms()) -
                                  static_cast<std::uint32_t>(start_));
    try {
        debug_print(_internal::time_log_line(name_, elapsed));
    } catch (...) {
        // A diagnostic line is not worth ending the process over (out of memory).
    }
}

void time_logger_t::debug_print(const std::wstring& text) {
    _internal::os::debug_output(text);
    _internal::os::debug_output(L"\n");
}

} // namespace debugging
} // namespace velmor2
