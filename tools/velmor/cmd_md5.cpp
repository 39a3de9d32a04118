// velmor md5: MD5 digests of files, printed as md5sum prints them.
#include "command.hpp"
#include "file_arguments.hpp"

#include <velmor2/hash.hpp>

namespace velmor_tool {
namespace {

int run(const std::vector<std::wstring>& args) {
    std::vector<std::wstring> files;
    if (!file_arguments(L"md5", args, files)) {
        return exit_usage;
    }
    int status = exit_ok;
    for (const std::wstring& file : files) {
        velmor2::md5_t md5;
        if (!md5.update_from_file(velmor2::path_t(file))) {
            err(L"velmor md5: " + file + L": cannot be read\n");
            status = exit_failed;
            continue;
        }
        out(md5.get_digest_base16() + L"  " + file + L"\n");
    }
    return status;
}

const command_registrar_t registered({"md5", "print MD5 digests of files",
                                      "usage: velmor md5 FILE...\n"
                                      "Prints the MD5 digest of each FILE, two spaces and its "
                                      "name, as md5sum does.\nExits with 1 when a file cannot be "
                                      "read.\n",
                                      run});

} // namespace
} // namespace velmor_tool
