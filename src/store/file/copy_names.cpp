#include "store/file/copy_names.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>

#include "platform/program_folder.h"

namespace numalink {

namespace {

constexpr std::string_view dateForm = "storage-YYYY-MM-DD.dat";

bool isCopyName(const std::string &name) {
    int year = 0;
    unsigned month = 0, day = 0;
    // NOLINTNEXTLINE(cert-err34-c): the widths keep the numbers small, and the name has to come out of them again
    if (name.size() != dateForm.size() || std::sscanf(name.c_str(), "storage-%4d-%2u-%2u", &year, &month, &day) != 3)
        return false;
    char same[dateForm.size() + 1] = {};
    std::snprintf(same, sizeof same, "storage-%04d-%02u-%02u.dat", year, month, day);
    return name == same && (std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)).ok();
}

}  // namespace

std::string dailyCopyFolder() { return libraryFolder() + "backups/"; }

std::vector<std::string> dailyCopyNames() {
    std::vector<std::string> names;
    std::error_code error;
    std::filesystem::directory_iterator entry(dailyCopyFolder(), error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        std::string name = entry->path().filename().string();
        if (isCopyName(name)) names.push_back(std::move(name));
        entry.increment(error);
    }
    std::ranges::sort(names);
    return names;
}

}  // namespace numalink
