// Seeded conversations with a calculator whose cable and manners are bad: lost, doubled, flipped and late bytes,
// unknown heads, lengths beyond all bounds, closing frames at odd places. No time is really waited for.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace numalink {

struct CampaignResult {
    std::uint64_t conversations = 0;
    std::uint64_t faultless = 0;  // of them without any fault: these have to carry every item over unchanged
    std::uint64_t stored = 0;
    std::uint64_t transmitted = 0;
    std::map<std::string, std::uint64_t> shown;  // boxes, by number
    std::string fault;                           // the first thing that went wrong, with its seed
};

// Conversations with the seeds first to first + count - 1, on a library of their own in folder.
CampaignResult runCampaign(std::uint64_t first, std::uint64_t count);

}  // namespace numalink
