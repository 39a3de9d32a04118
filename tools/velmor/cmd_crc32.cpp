// velmor crc32: CRC-32 of files, printed as md5sum prints digests.
#include "command.hpp"
#include "file_arguments.hpp"
#include "files.hpp"

#include <velmor2/hash.hpp>

#include <cwchar>

namespace velmor_tool {
namespace {

class crc32_summary_t : public file_summary_t {
  public:
    void start() override { crc = 0; }
    void take(const char* data, std::size_t size) override {
        crc = velmor2::update_hash(crc, data, size);
    }
    std::wstring result() override {
        wchar_t hex[9];
        std::swprintf(hex, 9, L"%08lx", crc);
        return hex;
    }

  private:
    unsigned long crc = 0;
};

int run(const std::vector<std::wstring>& args) {
    std::vector<std::wstring> files;
    if (!file_arguments(L"crc32", args, files)) {
        return exit_usage;
    }
    crc32_summary_t summary;
    return print_summaries(L"crc32", files, summary);
}

const command_registrar_t registered({"crc32", "print CRC-32 hashes of files",
                                      "usage: velmor crc32 [FILE]...\n"
                                      "Prints the CRC-32 of each FILE as 8 hexadecimal digits, "
                                      "two spaces and its\nname (the CRC of zlib and PNG; "
                                      "\"123456789\" gives cbf43926), as md5sum prints\n"
                                      "digests. With no FILE, or when FILE is -, reads standard "
                                      "input. Exits with 1\nwhen a file cannot be read.\n",
                                      run});

} // namespace
} // namespace velmor_tool
