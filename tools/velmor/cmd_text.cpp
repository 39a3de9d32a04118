// velmor text: encoding detection and conversion of text files.
#include "code_page_name.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "files.hpp"

#include <velmor2/text_file.hpp>

#include <cerrno>
#include <cstdio>

namespace velmor_tool {
namespace {

class code_page_summary_t : public file_summary_t {
  public:
    void start() override { bytes.clear(); }
    void take(const char* data, std::size_t size) override { bytes.append(data, size); }
    std::wstring result() override {
        return code_page_name(velmor2::get_bytes_cp(bytes.data(), bytes.size()));
    }

  private:
    std::string bytes;
};

int detect(const std::vector<std::wstring>& args) {
    std::vector<std::wstring> files;
    if (!file_arguments(L"text detect", args, files)) {
        return exit_usage;
    }
    code_page_summary_t summary;
    return print_summaries(L"text detect", files, summary);
}

int usage_error(const std::wstring& message) {
    err(L"velmor text convert: " + message + L" (see velmor text --help)\n");
    return exit_usage;
}

int convert(const std::vector<std::wstring>& args) {
    std::wstring file, target, output;
    bool have_target = false, have_output = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == L"--to" || args[i] == L"-o") {
            if (i + 1 == args.size()) {
                return usage_error(L"'" + args[i] + L"' needs a value");
            }
            (args[i] == L"--to" ? target : output) = args[i + 1];
            (args[i] == L"--to" ? have_target : have_output) = true;
            ++i;
        } else if (args[i].size() > 1 && args[i][0] == L'-') {
            return usage_error(L"unknown option '" + args[i] + L"'");
        } else if (file.empty()) {
            file = args[i];
        } else {
            return usage_error(L"unexpected argument '" + args[i] + L"'");
        }
    }
    if (file.empty() || !have_target) {
        return usage_error(L"FILE and --to are required");
    }
    velmor2::code_page_t to;
    if (target == L"utf8") {
        to = velmor2::cp_utf8;
    } else if (target == L"utf16") {
        to = velmor2::cp_utf16;
    } else if (target == L"ansi") {
        to = velmor2::cp_ansi;
    } else {
        return usage_error(L"'" + target + L"' is not utf8, utf16 or ansi");
    }
    if (have_output && output.empty()) {
        return usage_error(L"-o needs a file name");
    }
    // The library says only that it cannot read a file: the reason comes from the system.
    const int error = file_error(file);
    if (error != 0) {
        report(L"text convert", file, reason(error));
        return exit_failed;
    }
    const velmor2::path_t source = exact_path(L"text convert", file);
    if (source.is_empty()) {
        return exit_failed;
    }
    const velmor2::code_page_t from = velmor2::get_file_cp(source);
    if (from == velmor2::cp_unknown) {
        report(L"text convert", file, L"cannot be read");
        return exit_failed;
    }
    std::wstring text = velmor2::get_file_content(from, source);
    // A byte-order mark is the encoding's business, not the text's.
    if (!text.empty() && text[0] == L'\uFEFF') {
        text.erase(0, 1);
    }
    const std::string bytes = velmor2::encode_text(text, to);
    if (have_output && !write_file(output, bytes)) {
        report(L"text convert", output, reason(errno));
        return exit_failed;
    }
    if (!have_output) {
        std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    }
    return exit_ok;
}

int run(const std::vector<std::wstring>& args) {
    if (args.empty()) {
        err(L"velmor text: give 'detect' or 'convert' (see velmor text --help)\n");
        return exit_usage;
    }
    const std::vector<std::wstring> rest(args.begin() + 1, args.end());
    if (args[0] == L"detect") {
        return detect(rest);
    }
    if (args[0] == L"convert") {
        return convert(rest);
    }
    err(L"velmor text: unknown action '" + args[0] + L"' (see velmor text --help)\n");
    return exit_usage;
}

const command_registrar_t registered(
    {"text", "detect and convert the encoding of text files",
     "usage: velmor text detect [FILE]...\n"
     "       velmor text convert FILE --to utf8|utf16|ansi [-o OUT]\n"
     "detect prints the encoding of each FILE (utf8, utf16 or ansi), two spaces and its\n"
     "name: utf16 when it starts with FF FE, utf8 when its bytes are valid UTF-8, ansi\n"
     "otherwise (an empty file is ansi); with no FILE, or when FILE is -, reads standard\n"
     "input. convert reads FILE in its detected encoding and writes it in the one\n"
     "given, to OUT or to standard output; utf16 output starts with FF FE, utf8 output\n"
     "has no mark. The text ends at the first zero character of FILE.\n",
     run});

} // namespace
} // namespace velmor_tool
