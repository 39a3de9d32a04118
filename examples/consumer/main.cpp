// Uses the installed library: normalises a path and prints it, exit status 0 when it is right.
#include <velmor2/velmor2.hpp>

#include <cstdio>

int main() {
    velmor2::path_t path = velmor2::make_path(L"C:/Tools/../Data//settings.xml");
    const bool ok = path.as_string() == L"C:\\Data\\settings.xml" && path.match(L"*.xml");
    std::puts(ok ? "velmor_core consumer: ok" : "velmor_core consumer: unexpected result");
    return ok ? 0 : 1;
}
