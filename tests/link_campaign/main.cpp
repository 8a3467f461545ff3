// link_campaign [COUNT [FIRST-SEED]]: the whole campaign, 20,000 conversations unless told.
#include <cstdio>
#include <cstdlib>

#include "link/campaign.h"
#include "settings/language_table.h"

int main(int argc, char **argv) {
    using namespace numalink;
    languageLoad("English", "English");
    const std::uint64_t count = argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 20000;
    const std::uint64_t first = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
    const CampaignResult result = runCampaign(first, count);
    std::printf("conversations %llu, of them without a fault %llu; items stored %llu, transmitted %llu\n",
                static_cast<unsigned long long>(result.conversations),
                static_cast<unsigned long long>(result.faultless), static_cast<unsigned long long>(result.stored),
                static_cast<unsigned long long>(result.transmitted));
    for (const auto &[number, times] : result.shown)
        std::printf("box %s: %llu\n", number.c_str(), static_cast<unsigned long long>(times));
    if (!result.fault.empty()) std::printf("FAILED: %s\n", result.fault.c_str());
    return result.fault.empty() ? 0 : 1;
}
