#pragma once

#include <curl/curl.h>

class QLibrary;

/// The functions of libcurl that this program calls. The library is loaded with the first question
/// and not with the program: with the twenty libraries that it needs, that takes 3 to 8 ms.
struct CurlLibrary
{
    /// The loaded library; null where this machine has none, or one older than 7.87. Loads it on
    /// the first call. May be called on any thread.
    static const CurlLibrary *instance();

    decltype(&curl_easy_init) easyInit = nullptr;
    decltype(&curl_easy_setopt) easySetopt = nullptr;
    decltype(&curl_easy_getinfo) easyGetinfo = nullptr;
    decltype(&curl_easy_header) easyHeader = nullptr;
    decltype(&curl_easy_cleanup) easyCleanup = nullptr;
    decltype(&curl_multi_init) multiInit = nullptr;
    decltype(&curl_multi_add_handle) multiAddHandle = nullptr;
    decltype(&curl_multi_perform) multiPerform = nullptr;
    decltype(&curl_multi_poll) multiPoll = nullptr;
    decltype(&curl_multi_wakeup) multiWakeup = nullptr;
    decltype(&curl_multi_info_read) multiInfoRead = nullptr;
    decltype(&curl_multi_remove_handle) multiRemoveHandle = nullptr;
    decltype(&curl_multi_cleanup) multiCleanup = nullptr;
    decltype(&curl_slist_append) slistAppend = nullptr;
    decltype(&curl_slist_free_all) slistFreeAll = nullptr;

private:
    /// False when `library` lacks one of the functions.
    bool load(QLibrary &library);
};
