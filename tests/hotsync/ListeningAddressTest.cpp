#include "hotsync/ListeningAddress.h"

#include <gtest/gtest.h>

TEST(ListeningAddress, IsAStarOrAnAddressInNumbers) {
    for (const char* address :
         {"*", "0.0.0.0", "127.0.0.1", "255.255.255.255", "::", "::1", "fe80::1", "2001:db8:0:0:0:0:2:1",
          "1:2:3:4:5:6:7:8", "1::8", "::FFFF:192.168.1.33", "1:2:3:4:5:6:1.2.3.4", "1:2:3:4:5:6:7::"})
        EXPECT_TRUE(IsListeningAddress(address)) << address;
    for (const char* address : {"",
                                "**",
                                "localhost",
                                "1.2.3",
                                "1.2.3.4.5",
                                "1.2.3.",
                                ".1.2.3",
                                "1..2.3",
                                "256.1.1.1",
                                "01.2.3.4",
                                "1.2.3.4 ",
                                "-1.2.3.4",
                                "+1.2.3.4",
                                "0x1.2.3.4",
                                "1",
                                ":",
                                ":::",
                                "1:2:3:4:5:6:7",
                                "1:2:3:4:5:6:7:8:9",
                                "1:2:3:4:5:6:7:8::",
                                "1::2::3",
                                "12345::",
                                "g::",
                                "fe80::1%eth0",
                                "1.2.3.4::",
                                "::1.2.3.4:5",
                                "1:2:3:4:5:6:7:1.2.3.4",
                                ":1:2:3:4:5:6:7:8",
                                "1:2:3:4:5:6:7:",
                                "::1:",
                                "[::1]"})
        EXPECT_FALSE(IsListeningAddress(address)) << address;
}
