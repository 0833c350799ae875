// Preloaded into the program: the store is not synced while there is a file called "dead-disk" in
// the home folder, as on a disk that does not answer.
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

static bool isOfStore(int file)
{
    std::array<char, 4096> path;
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
    return size > 0
        && std::string_view(path.data(), size_t(size)).find("/preferences.sqlite")
        != std::string_view::npos;
}

extern "C" int fdatasync(int file)
{
    constexpr unsigned lookInterval = 10'000;
    const char *home = std::getenv("HOME");
    while (home && isOfStore(file)
           && ::access((std::string(home) + "/dead-disk").c_str(), F_OK) == 0)
        ::usleep(lookInterval);
    return int(::syscall(SYS_fdatasync, file));
}
