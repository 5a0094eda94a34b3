#include "common/intime.h"

#include "common/mo_standard.h"

#include <memory>
#include <semaphore>
#include <system_error>
#include <thread>

namespace {

struct Asked {
    std::binary_semaphore answered { 0 };
    bool answer = false;
};

} // namespace

bool yesInTime(const std::function<bool()> &question, std::chrono::milliseconds patience)
{
    const auto asked = std::make_shared<Asked>();
    try {
        std::thread([asked, question] {
            asked->answer = question();
            asked->answered.release();
        }).detach();
    } catch (const std::system_error &) {
        return question(); // no thread to be had
    }
    return asked->answered.try_acquire_for(patience) && asked->answer;
}

bool isFolderInTime(const QString &folder)
{
    constexpr std::chrono::seconds patience { 2 };
    return yesInTime([folder] { return EnsureFolder(folder, false); }, patience);
}
