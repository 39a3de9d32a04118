// Subcommands of the velmor tool register themselves here.
#pragma once

#include <string>
#include <vector>

namespace velmor_tool {

/// Exit status of a subcommand.
enum exit_status_t { exit_ok = 0, exit_failed = 1, exit_usage = 2 };

/// One subcommand: its name, a one-line summary, its usage text and its entry point.
struct command_t {
    const char* name;
    const char* summary;
    const char* usage;
    int (*run)(const std::vector<std::wstring>& args);
};

/// Adds a subcommand to the tool; construct one at namespace scope in the command's file.
struct command_registrar_t {
    explicit command_registrar_t(const command_t& command);
};

/// Every registered subcommand, in name order.
const std::vector<command_t>& commands();

/// Writes wide text to standard output as UTF-8.
void out(const std::wstring& text);
/// Writes wide text to standard error as UTF-8.
void err(const std::wstring& text);

} // namespace velmor_tool
