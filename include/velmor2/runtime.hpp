// Process and runtime services: a scoped timer, shared libraries, environment, host name.
#pragma once

#include <velmor2/export.hpp>
#include <velmor2/path.hpp>

#include <cstdint>
#include <string>

namespace velmor2 {

namespace debugging {

/// A scoped timer for diagnostics: when it is destroyed it writes its name, a space and its
/// lifetime in seconds (at most six significant digits) as one line to the debugger output
/// (`OutputDebugStringW` on Windows, the standard error stream elsewhere):
///
///   lived 1234 ms      => load 1.234
///   lived 2000000 ms   => load 2000
///   lived 12345678 ms  => load 12345.7
///   lived < 1 ms       => load 0
class VELMOR_API time_logger_t {
  public:
    /// Starts timing; nothing is printed yet.
    explicit time_logger_t(const std::wstring& name);
    /// Starts timing; `name` is UTF-8 (a null pointer gives the empty name).
    explicit time_logger_t(const char* name);
    /// Measures from the same start as `other` and prints a line of its own.
    time_logger_t(const time_logger_t& other);
    /// Takes the start and the name of `other`.
    time_logger_t& operator=(const time_logger_t& other);
    /// Prints the line.
    ~time_logger_t();

  protected:
    /// Writes `text` to the debugger output, then a line feed in a second write.
    void debug_print(const std::wstring& text);

  private:
    std::int32_t start_;
    std::wstring name_;
};

} // namespace debugging

/// A dynamic library loaded by name from a directory. Each object holds a reference of its
/// own: a copy loads the library again, and the library stays in memory until the last
/// holder lets go.
///
///   name foo,    dir d  => tries d/foo, then d/foo.so (d\foo.dll on Windows, .dylib on macOS)
///   name foo.so, dir d  => tries d/foo.so, then d/foo.so.so
///   name foo,    no dir => the system's search for foo, then foo.so
class VELMOR_API shared_lib_t {
  public:
    /// Nothing loaded.
    shared_lib_t();
    /// Loads as `initialize(name, dir)`; a failed load leaves an object that tests false.
    shared_lib_t(const std::wstring& name, const path_t& dir);
    /// Loads the library of `other` again (or retries its failed load).
    shared_lib_t(const shared_lib_t& other);
    /// Loads the library of `other` again, then releases this object's own.
    shared_lib_t& operator=(const shared_lib_t& other);
    /// Releases the library.
    ~shared_lib_t();

    /// Releases any library held, then loads `name` from `dir`; true when loaded. An empty
    /// `name` just releases and returns false. The name and directory are kept even when
    /// loading fails.
    bool initialize(const std::wstring& name, const path_t& dir);
    /// Releases the library held, if any, and forgets its name and directory.
    void uninitialize();
    /// True when a library is loaded.
    explicit operator bool() const;
    /// The address of the exported symbol `name`, or null (also when nothing is loaded).
    void* get_symbol(const std::wstring& name) const;

  private:
    void swap(shared_lib_t& other);

    void* handle_;
    std::wstring name_;
    path_t dir_;
};

/// The library name as `shared_lib_t` is given it: unchanged (the platform suffix is tried by
/// the loader itself).
///
///   foo  => foo
VELMOR_API std::wstring suffixize_lib_name(const std::wstring& name);

/// The value of the environment variable `name`; empty when it is not set or set to empty.
VELMOR_API std::wstring get_environ_value(const std::wstring& name);

/// Sets the environment variable `name` of this process to `value`; an empty `value` removes
/// it. A name the system refuses changes nothing (POSIX refuses an empty name and one holding
/// `=`; the Windows runtime reads `A=B` set to `v` as `A` set to `B=v`).
VELMOR_API void set_environ_value(const std::wstring& name, const std::wstring& value);

/// The fully qualified DNS name of this computer (`host.example.com`), the bare host name
/// when it has no domain, or empty when the system cannot tell.
VELMOR_API std::wstring get_fq_host_name();

} // namespace velmor2
