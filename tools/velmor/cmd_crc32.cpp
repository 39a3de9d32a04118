// velmor crc32: CRC-32 of files, printed as md5sum prints digests.
#include "command.hpp"
#include "file_arguments.hpp"

#include <velmor2/hash.hpp>

#include <cwchar>

namespace velmor_tool {
namespace {

int run(const std::vector<std::wstring>& args) {
    std::vector<std::wstring> files;
    if (!file_arguments(L"crc32", args, files)) {
        return exit_usage;
    }
    int status = exit_ok;
    for (const std::wstring& file : files) {
        const velmor2::path_t path(file);
        // The hash cannot tell an unreadable file from an empty one: ask first.
        if (!path.is_exists() || path.is_directory()) {
            err(L"velmor crc32: " + file + L": cannot be read\n");
            status = exit_failed;
            continue;
        }
        wchar_t hex[9];
        std::swprintf(hex, 9, L"%08lx", velmor2::generate_hash(path));
        out(std::wstring(hex) + L"  " + file + L"\n");
    }
    return status;
}

const command_registrar_t registered({"crc32", "print CRC-32 hashes of files",
                                      "usage: velmor crc32 FILE...\n"
                                      "Prints the CRC-32 of each FILE as 8 hexadecimal digits, "
                                      "two spaces and its\nname (the CRC of zlib and PNG; "
                                      "\"123456789\" gives cbf43926). Exits with 1\nwhen a file "
                                      "cannot be read.\n",
                                      run});

} // namespace
} // namespace velmor_tool
