#include "cmaterial.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

TEST(MaterialName, KeepsAtMost63CharactersAndIgnoresNull) {
    cmaterial fallback;
    EXPECT_STREQ(fallback.GetName(), "Mat1");
    cmaterial unnamed(nullptr);
    EXPECT_STREQ(unnamed.GetName(), "Mat1");

    const std::string seventy(70, 'm');
    cmaterial material(seventy.c_str());
    EXPECT_EQ(std::string(material.GetName()), seventy.substr(0, 63));

    material.SetName("Chrome");
    material.SetName(nullptr);
    char buffer[64];
    std::memset(buffer, 'x', sizeof buffer);
    material.GetName(buffer);
    EXPECT_STREQ(buffer, "Chrome") << "the copy ends at the terminator, no stale characters";
    EXPECT_EQ(buffer[7], '\0') << "the whole zero-padded field is copied";
    material.GetName(nullptr);
}
