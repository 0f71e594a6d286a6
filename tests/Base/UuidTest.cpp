#include "Base/Uuid.h"

#include <gtest/gtest.h>

namespace corvellan::test {
namespace {

using namespace Qt::StringLiterals;

TEST(UuidTest, takesTheUsualFormInEitherCase) {
    const auto lower = parseUuid(u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6");
    ASSERT_TRUE(lower);
    EXPECT_EQ(lower->toString(QUuid::WithoutBraces), u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6"_s);
    EXPECT_EQ(parseUuid(u"0B5F9C1E-3D7A-4C2B-9E8F-A1B2C3D4E5F6"), lower);
    EXPECT_EQ(parseUuid(u"00000000-0000-0000-0000-000000000000"), QUuid{});
}

TEST(UuidTest, takesNothingElse) {
    for (const auto* text : {u"", u"{0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6}", u"0b5f9c1e3d7a4c2b9e8fa1b2c3d4e5f6",
                             u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f", u"0b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6 ",
                             u"0b5f9c1e-3d7a-4c2b-9e8fa-1b2c3d4e5f6", u"0b5f9c1g-3d7a-4c2b-9e8f-a1b2c3d4e5f6",
                             u"٠b5f9c1e-3d7a-4c2b-9e8f-a1b2c3d4e5f6"})
        EXPECT_EQ(parseUuid(text), std::nullopt) << QString::fromUtf16(text).toStdString();
}

}  // namespace
}  // namespace corvellan::test
