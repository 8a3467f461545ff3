// Some hundred conversations of the campaign at each run; link_campaign runs tens of thousands.
#include "link/campaign.h"

#include <gtest/gtest.h>

namespace numalink {

TEST(Campaign, alwaysEndsIdleWithNothingHalfStored) {
    const CampaignResult result = runCampaign(1, 400);
    EXPECT_EQ(result.fault, "");
    EXPECT_EQ(result.conversations, 400u);
    EXPECT_GT(result.faultless, 50u);
    EXPECT_GT(result.stored, 60u);
    EXPECT_GT(result.transmitted, 100u);
}

}  // namespace numalink
