#include "jet/file.h"

#include "jet/error.h"

#include <algorithm>
#include <thread>

namespace jet
{

std::string displayName(const std::filesystem::path &path)
{
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

void throwFileNotFound(const std::filesystem::path &path)
{
    throw Error(ErrorCode::FileNotFound, "Could not find file '" + displayName(path) + "'.");
}

std::filesystem::path lockPath(std::filesystem::path database)
{
    return database.replace_extension(".ldb");
}

bool LockFile::lock(Part part, Mode mode, std::chrono::milliseconds timeout)
{
    // Holders need milliseconds, so the first tries come close together.
    using namespace std::chrono_literals;
    const auto end = std::chrono::steady_clock::now() + timeout;
    auto pause = 1ms;
    while (!tryLock(part, mode)) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, 16ms);
    }
    return true;
}

} // namespace jet
