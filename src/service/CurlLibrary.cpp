#include "CurlLibrary.h"

#include <QLibrary>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// The version of libcurl's binary interface, which has not changed since 2006.
constexpr int interfaceVersion = 4;

template <typename Function>
bool resolve(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}

} // namespace

const CurlLibrary *CurlLibrary::instance()
{
    static const std::optional<CurlLibrary> instance = []() -> std::optional<CurlLibrary> {
        QLibrary library(u"curl"_s, interfaceVersion);
        CurlLibrary functions;
        decltype(&curl_global_init) globalInit = nullptr;
        if (!functions.load(library) || !resolve(library, "curl_global_init", globalInit)
            || globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK)
            return std::nullopt;
        return functions;
    }();
    return instance ? &*instance : nullptr;
}

bool CurlLibrary::load(QLibrary &library)
{
    return resolve(library, "curl_easy_init", easyInit)
        && resolve(library, "curl_easy_setopt", easySetopt)
        && resolve(library, "curl_easy_getinfo", easyGetinfo)
        && resolve(library, "curl_easy_header", easyHeader)
        && resolve(library, "curl_easy_cleanup", easyCleanup)
        && resolve(library, "curl_multi_init", multiInit)
        && resolve(library, "curl_multi_add_handle", multiAddHandle)
        && resolve(library, "curl_multi_perform", multiPerform)
        && resolve(library, "curl_multi_poll", multiPoll)
        && resolve(library, "curl_multi_wakeup", multiWakeup)
        && resolve(library, "curl_multi_info_read", multiInfoRead)
        && resolve(library, "curl_multi_remove_handle", multiRemoveHandle)
        && resolve(library, "curl_multi_cleanup", multiCleanup)
        && resolve(library, "curl_slist_append", slistAppend)
        && resolve(library, "curl_slist_free_all", slistFreeAll);
}
