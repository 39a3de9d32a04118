// Folder watches through change notifications. They do not say which entry changed, so every
// notification counts as concerning the watched file; the store's comparison of values then
// finds out whether anything did.
#include "os/file_watch.hpp"

#include <windows.h>

namespace velmor2::_internal::os {

std::intptr_t open_folder_watch(const std::wstring& printed_folder) {
    const HANDLE handle = FindFirstChangeNotificationW(
        printed_folder.c_str(), FALSE,
        FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE | FILE_NOTIFY_CHANGE_SIZE);
    return handle == INVALID_HANDLE_VALUE ? no_watch : reinterpret_cast<std::intptr_t>(handle);
}

bool drain_folder_watch(std::intptr_t watch, const std::wstring&) {
    const HANDLE handle = reinterpret_cast<HANDLE>(watch);
    bool signalled = false;
    while (WaitForSingleObject(handle, 0) == WAIT_OBJECT_0) {
        signalled = true;
        if (!FindNextChangeNotification(handle)) {
            break;
        }
    }
    return signalled;
}

void close_folder_watch(std::intptr_t watch) {
    if (watch != no_watch) {
        FindCloseChangeNotification(reinterpret_cast<HANDLE>(watch));
    }
}

} // namespace velmor2::_internal::os
